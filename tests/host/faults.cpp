#include "faults.h"

#include <atomic>
#include <cerrno>

#include <poll.h>
#include <sys/socket.h>

namespace
{

std::atomic<int> pollError{0}, deliveryError{0};

} // namespace

namespace host_test
{

void failNextPoll(int error)
{
    pollError = error;
}

void failNextDelivery(int error)
{
    deliveryError = error;
}

} // namespace host_test

extern "C" {

int __real_poll(pollfd* descriptors, nfds_t count, int timeout);
int __wrap_poll(pollfd* descriptors, nfds_t count, int timeout);
ssize_t __real_recv(int socket, void* buffer, size_t size, int flags);
ssize_t __wrap_recv(int socket, void* buffer, size_t size, int flags);

int __wrap_poll(pollfd* descriptors, nfds_t count, int timeout)
{
    if (const int error = pollError.exchange(0))
    {
        errno = error;
        return -1;
    }
    return __real_poll(descriptors, count, timeout);
}

// A delivering thread waits without a limit; callers have one, and the service does not wait.
ssize_t __wrap_recv(int socket, void* buffer, size_t size, int flags)
{
    const ssize_t received = __real_recv(socket, buffer, size, flags);
    timeval limit = {};
    socklen_t length = sizeof limit;
    if (received <= 0 || flags != MSG_TRUNC || deliveryError == 0 ||
        getsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &limit, &length) != 0 || limit.tv_sec != 0 || limit.tv_usec != 0)
        return received;
    errno = deliveryError.exchange(0);
    return -1;
}
}
