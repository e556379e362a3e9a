// What gateways have executed, in a file, which outlives a gateway that is killed.
#pragma once

#include <chrono>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace fleet_test
{

// Of the clock that all processes of a machine share.
inline std::uint64_t microsecondsNow()
{
    using std::chrono::duration_cast, std::chrono::microseconds, std::chrono::steady_clock;
    return static_cast<std::uint64_t>(duration_cast<microseconds>(steady_clock::now().time_since_epoch()).count());
}

struct Execution
{
    std::uint32_t gateway = 0;
    std::uint32_t number = 0;  // of the call, which is an argument of it
    std::uint64_t begunAt = 0; // microsecondsNow
};

class Ledger
{
public:
    // Goes on in the file if it is there. Several processes may.
    explicit Ledger(const std::string& path)
        : path_(path), file_(open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600))
    {
    }
    ~Ledger()
    {
        close(file_);
    }
    Ledger(const Ledger&) = delete;
    Ledger& operator=(const Ledger&) = delete;

    // Before what is executed has any effect. From any thread. False if it cannot be written.
    bool record(std::uint32_t gateway, std::uint32_t number) const
    {
        const Execution execution{gateway, number, microsecondsNow()};
        return write(file_, &execution, sizeof execution) == static_cast<ssize_t>(sizeof execution);
    }
    std::vector<Execution> executions() const
    {
        std::vector<Execution> all;
        std::ifstream file(path_, std::ios::binary);
        for (Execution each; file.read(reinterpret_cast<char*>(&each), sizeof each);)
            all.push_back(each);
        return all;
    }
    const std::string& path() const
    {
        return path_;
    }

private:
    const std::string path_;
    const int file_;
};

} // namespace fleet_test
