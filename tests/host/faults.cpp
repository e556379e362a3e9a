#include "faults.h"

#include <atomic>
#include <cerrno>
#include <thread>

#include <poll.h>
#include <sys/socket.h>

namespace
{

std::atomic<int> pollError{0}, deliveryError{0};
std::thread::id testThread;

} // namespace

namespace host_test
{

void failNextPoll(int error)
{
    pollError = error;
}

void failNextDelivery(int error)
{
    testThread = std::this_thread::get_id();
    deliveryError = error;
}

} // namespace host_test

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the names are the linker's
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

// The only other threads of such a test that receive are the service's, which do not wait.
ssize_t __wrap_recv(int socket, void* buffer, size_t size, int flags)
{
    const ssize_t received = __real_recv(socket, buffer, size, flags);
    if (received <= 0 || flags != MSG_TRUNC || deliveryError == 0 || std::this_thread::get_id() == testThread)
        return received;
    errno = deliveryError.exchange(0);
    return -1;
}
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
