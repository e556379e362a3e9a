// A server program that a test starts, and that ends with the object at the latest.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

namespace fleet_test
{

class ServerProcess
{
public:
    using Environment = std::vector<std::pair<std::string, std::string>>; // in addition to the test's own

    ServerProcess() = default;
    ~ServerProcess();
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    // What it writes goes to the end of the file `log`.
    void start(const std::vector<std::string>& words, const std::string& log, const Environment& environment = {});
    // Whether it takes connections at a port of the loopback interface, within that time; false once it has ended.
    bool awaitPort(std::uint16_t port, std::chrono::seconds limit);
    pid_t id() const
    {
        return processId_;
    }
    void signal(int number) const;
    void kill();

private:
    pid_t processId_ = -1;
};

// A port of the loopback interface that nobody has at present, and that the kernel gives to no client.
std::uint16_t freePort();

} // namespace fleet_test
