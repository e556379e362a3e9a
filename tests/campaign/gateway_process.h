// tarn-gateway in a process of its own, whose log and memory are read while it runs.
#pragma once

#include "support/process.h"

#include <cstddef>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace campaign
{

class GatewayProcess
{
public:
    // Returns once it is ready. `onLine` gets each line of its standard error, on a thread of its own.
    GatewayProcess(const std::vector<std::string>& options, std::function<void(const std::string&)> onLine);
    ~GatewayProcess();
    GatewayProcess(const GatewayProcess&) = delete;
    GatewayProcess& operator=(const GatewayProcess&) = delete;

    std::size_t residentBytes() const;

    // Ends it. Returns its exit code, after the last line; 128 and the signal that ended it.
    int end();

private:
    tarn::test::Pipe log_;
    tarn::test::Process process_;
    std::thread reader_;
};

} // namespace campaign
