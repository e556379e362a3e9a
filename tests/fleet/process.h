// A program in a process of its own.
#pragma once

#include <string>
#include <vector>

namespace fleet_test
{

class Process
{
public:
    // Its standard output is this descriptor.
    Process(std::vector<std::string> words, int output);
    ~Process(); // kills it
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    int id() const
    {
        return id_;
    }
    void signal(int number) const;
    // Waits for its end. Its exit code; 128 and the signal that ended it.
    int finish();

private:
    int id_ = -1;
    int exitCode_ = 0;
};

} // namespace fleet_test
