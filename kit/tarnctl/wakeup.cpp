#include "wakeup.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace tarn::ctl
{

namespace
{

std::atomic<const Wakeup*> wokenBySignals{nullptr};
std::atomic<bool> signalCame{false}; // which threads ask that the signal has not come to
static_assert(std::atomic<bool>::is_always_lock_free, "or a signal handler could not set it");

void onSignal(int)
{
    const int errnoBefore = errno;
    signalCame = true;
    if (const Wakeup* const wakeup = wokenBySignals)
        wakeup->wake();
    errno = errnoBefore;
}

// In milliseconds, as poll wants it: rounded up, so that it does not return before the deadline.
int remaining(const Deadline& deadline)
{
    if (!deadline)
        return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - std::chrono::steady_clock::now()).count();
    return static_cast<int>(std::clamp<long long>(left, 0, INT_MAX));
}

} // namespace

Wakeup::Wakeup()
{
    if (pipe2(ends_, O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::system_error(errno, std::generic_category(), "no pipe to wait on");
}

Wakeup::~Wakeup()
{
    close(ends_[0]);
    close(ends_[1]);
}

void Wakeup::wake() const
{
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(ends_[1], &byte, 1); // when the pipe is full, it wakes as well
}

void Wakeup::wait(const Deadline& deadline) const
{
    pollfd readable = {ends_[0], POLLIN, 0};
    if (poll(&readable, 1, remaining(deadline)) <= 0)
        return;
    char bytes[256];
    while (read(ends_[0], bytes, sizeof bytes) > 0)
        continue;
}

StopSignals::StopSignals(const Wakeup& wakeup)
{
    signalCame = false;
    wokenBySignals = &wakeup;
    struct sigaction action = {};
    action.sa_handler = &onSignal;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &interruptBefore_);
    sigaction(SIGTERM, &action, &terminateBefore_);
}

StopSignals::~StopSignals()
{
    sigaction(SIGINT, &interruptBefore_, nullptr);
    sigaction(SIGTERM, &terminateBefore_, nullptr);
    wokenBySignals = nullptr;
}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): it is asked of the object that watches for them
bool StopSignals::haveCome() const
{
    return signalCame;
}

} // namespace tarn::ctl
