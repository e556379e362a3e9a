// What the host's threads are kept from for the time of a block: signals, and cancellation.
#pragma once

#include <csignal>
#include <ctime>

#include <pthread.h>

namespace koriil
{

// All signals: those to the process are handled by the application's threads, not by threads of this library, which inherit
// the mask of the one that starts them.
class SignalsBlocked
{
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalsBlocked()
    {
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t before_;
};

// The signals with which a write ends a process, SIGPIPE and SIGXFSZ: write fails with EPIPE or EFBIG all the same. Those that
// the block itself raised are taken back.
class WriteSignalsBlocked
{
public:
    WriteSignalsBlocked()
    {
        sigemptyset(&signals_);
        sigaddset(&signals_, SIGPIPE);
        sigaddset(&signals_, SIGXFSZ);
        sigset_t pending;
        sigpending(&pending);
        leaveOut(SIGPIPE, pending);
        leaveOut(SIGXFSZ, pending);
        pthread_sigmask(SIG_BLOCK, &signals_, &before_);
    }
    ~WriteSignalsBlocked()
    {
        const timespec now = {};
        while (sigtimedwait(&signals_, nullptr, &now) > 0)
        {
        }
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    WriteSignalsBlocked(const WriteSignalsBlocked&) = delete;
    WriteSignalsBlocked& operator=(const WriteSignalsBlocked&) = delete;

private:
    // A signal that is blocked, and waits, already.
    void leaveOut(int signal, const sigset_t& pending)
    {
        if (sigismember(&pending, signal) == 1)
            sigdelset(&signals_, signal);
    }

    sigset_t signals_;
    sigset_t before_;
};

// Cancelling a thread takes effect after the block, in which locks are held and connections are in use.
class CancellationDeferred
{
public:
    CancellationDeferred()
    {
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before_);
    }
    ~CancellationDeferred()
    {
        pthread_setcancelstate(before_, nullptr);
    }
    CancellationDeferred(const CancellationDeferred&) = delete;
    CancellationDeferred& operator=(const CancellationDeferred&) = delete;

private:
    int before_ = PTHREAD_CANCEL_ENABLE;
};

} // namespace koriil
