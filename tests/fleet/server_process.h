// A server program that a test starts, and that ends with the object at the latest.
#pragma once

#include "support/process.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace fleet_test
{

class ServerProcess
{
public:
    using Environment = tarn::test::Process::Environment;

    // What it writes goes to the end of the file `log`.
    void start(const std::vector<std::string>& words, const std::string& log, const Environment& environment = {});
    // Whether it takes connections at a port of the loopback interface, within that time; false once it has ended.
    bool awaitPort(std::uint16_t port, std::chrono::seconds limit);
    pid_t id() const
    {
        return process_.id();
    }
    void signal(int number) const;
    void kill();

private:
    tarn::test::Process process_;
};

// A port of the loopback interface that nobody has at present, and that the kernel gives to no client.
std::uint16_t freePort();

} // namespace fleet_test
