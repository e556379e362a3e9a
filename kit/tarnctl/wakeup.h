// Wakes a thread that waits, from another thread or from a signal handler.
#pragma once

#include <csignal>

#include <chrono>
#include <optional>

namespace tarn::ctl
{

using Deadline = std::optional<std::chrono::steady_clock::time_point>; // none: waits for ever

class Wakeup
{
public:
    // Throws std::system_error if there is no descriptor to be had.
    Wakeup();
    ~Wakeup();
    Wakeup(const Wakeup&) = delete;
    Wakeup& operator=(const Wakeup&) = delete;

    // From any thread, or a signal handler.
    void wake() const;

    // Returns when woken, which may have been before, or when the deadline has passed.
    void wait(const Deadline& deadline) const;

private:
    int ends_[2];
};

// SIGINT and SIGTERM wake a thread instead of ending the process, as long as this lives. One at a time.
class StopSignals
{
public:
    explicit StopSignals(const Wakeup& wakeup);
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    bool haveCome() const;

private:
    struct sigaction interruptBefore_;
    struct sigaction terminateBefore_;
};

} // namespace tarn::ctl
