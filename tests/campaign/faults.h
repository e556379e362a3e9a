// Lets one chosen call of one side fail once: system calls, allocations and the creation of threads.
//
// faults.cpp defines these functions in the test program, and the loader prefers them to libc's. They fail only on threads of
// the side under test: threads say which side they are on, and a thread belongs to the side of the thread that created it.
#pragma once

#include <cerrno>
#include <string>
#include <vector>

namespace campaign
{

enum class Side
{
    kNone,
    kClient,
    kService
};

// A function that can fail, and what it may fail with. `new` throws, or returns NULL where it must not throw.
struct FallibleCall
{
    const char* name;
    std::vector<int> errors;
};

const std::vector<FallibleCall>& fallibleCalls();

// The calling thread is on this side as long as the object lives.
class OnSide
{
public:
    explicit OnSide(Side side);
    ~OnSide();
    OnSide(const OnSide&) = delete;
    OnSide& operator=(const OnSide&) = delete;

private:
    Side before_;
};

// The n-th call of `name` on that side fails with `error`, counted from now, in all its threads together.
void arm(Side side, const char* name, int error, int n);

// True if that call has come and has failed.
bool disarm();

// What is armed, for messages.
std::string armedFault();

// Blocks that operator new has given, and operator delete has not taken back.
long liveBlocks();

} // namespace campaign
