#include "faults.h"

#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/timerfd.h>
#include <unistd.h>

namespace campaign
{
namespace
{

thread_local Side thisSide = Side::kNone;

struct Armed
{
    std::atomic<Side> side{Side::kNone};
    std::atomic<const char*> name{""};
    std::atomic<int> error{0};
    std::atomic<int> left{0}; // calls before the one that fails
    std::atomic<bool> failed{false};
};

Armed armed;
std::atomic<long> blocks{0};

// True once, for the call that is to fail; errno is set then.
bool failsNow(const char* name)
{
    if (thisSide == Side::kNone || thisSide != armed.side || std::strcmp(name, armed.name) != 0)
        return false;
    if (armed.left.fetch_sub(1) != 1)
        return false;
    armed.failed = true;
    errno = armed.error;
    return true;
}

// The function that libc, or a sanitizer, has under this name.
template <typename Function>
Function* next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

const std::vector<FallibleCall>& fallibleCalls()
{
    static const std::vector<int> kNoDescriptor = {EMFILE, ENOMEM, ENFILE};
    static const std::vector<int> kNoRoom = {ENOMEM, ENOBUFS};
    static const std::vector<int> kSending = {EINTR, EAGAIN, ENOMEM, ECONNRESET, EPIPE, EIO};
    static const std::vector<int> kReceiving = {EINTR, EAGAIN, ENOMEM, ECONNRESET, EIO};
    static const std::vector<int> kAccepting = {EINTR, EMFILE, ENOMEM, EAGAIN, ENFILE, ECONNABORTED};
    static const std::vector<int> kFile = {EACCES, ENOMEM, EIO};
    static const std::vector<FallibleCall> kCalls = {
        {"new", {ENOMEM}},
        {"pthread_create", {EAGAIN}},
        {"socket", kNoDescriptor},
        {"eventfd", kNoDescriptor},
        {"timerfd_create", kNoDescriptor},
        {"timerfd_settime", {ENOMEM}},
        {"epoll_create1", kNoDescriptor},
        {"epoll_ctl", {ENOMEM, ENOSPC}},
        {"epoll_wait", {EINTR}},
        {"poll", {EINTR, ENOMEM}},
        {"connect", {EINTR, EAGAIN, ECONNREFUSED, EACCES, ENOMEM}},
        {"bind", {ENOMEM, EACCES}},
        {"listen", {ENOBUFS}},
        {"accept4", kAccepting},
        {"getsockopt", kNoRoom},
        {"setsockopt", kNoRoom},
        {"sendmsg", kSending},
        {"send", kSending},
        {"write", kSending},
        {"recv", kReceiving},
        {"read", kReceiving},
        {"open", {EINTR, EMFILE, ENOMEM, EACCES, ENOSPC, EIO}},
        {"fcntl", {EMFILE, EINTR}},
        {"close", {EINTR, EIO}},
        {"flock", {EINTR, ENOLCK, EWOULDBLOCK}},
        {"unlink", kFile},
        {"mkdir", {EACCES, ENOSPC, ENOMEM}},
        {"lstat", kFile},
        {"fstat", {ENOMEM}},
        {"access", {ENOENT, EACCES, ENOMEM}},
        {"chmod", kFile},
        {"lchown", kFile},
        {"getgroups", {EINVAL}},
        {"lseek", {EOVERFLOW}},
        {"ftruncate", {EIO, EINTR}},
        {"getcwd", {ENOENT, EACCES}},
    };
    return kCalls;
}

OnSide::OnSide(Side side) : before_(thisSide)
{
    thisSide = side;
}

OnSide::~OnSide()
{
    thisSide = before_;
}

void arm(Side side, const char* name, int error, int n)
{
    armed.name = name;
    armed.error = error;
    armed.left = n;
    armed.failed = false;
    armed.side = side;
}

bool disarm()
{
    armed.side = Side::kNone;
    return armed.failed;
}

std::string armedFault()
{
    return std::string(armed.name) + " fails with " + strerrorname_np(armed.error);
}

long liveBlocks()
{
    return blocks;
}

} // namespace campaign

// --- Memory ------------------------------------------------------------------------------------------------------------------

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    void* const block = campaign::failsNow("new") ? nullptr : std::malloc(size > 0 ? size : 1);
    if (block != nullptr)
        ++campaign::blocks;
    return block;
}

void* operator new(std::size_t size)
{
    void* const block = operator new(size, std::nothrow);
    return block != nullptr ? block : throw std::bad_alloc();
}

void* operator new[](std::size_t size)
{
    return operator new(size);
}

void operator delete(void* block) noexcept
{
    if (block != nullptr)
        --campaign::blocks;
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}

void operator delete[](void* block) noexcept
{
    operator delete(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    operator delete(block);
}

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): of parameters whose names libc reserves

// --- Threads -----------------------------------------------------------------------------------------------------------------

namespace
{

struct Start
{
    campaign::Side side;
    void* (*body)(void*);
    void* argument;
};

void* startOnSide(void* argument)
{
    const Start start = *static_cast<Start*>(argument);
    std::free(argument);
    campaign::thisSide = start.side;
    return start.body(start.argument);
}

} // namespace

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                              void* argument) noexcept
{
    static const auto kReal = campaign::next<int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>("pthread_create");
    if (campaign::failsNow("pthread_create"))
        return errno;
    auto* const start = static_cast<Start*>(std::malloc(sizeof(Start)));
    *start = {campaign::thisSide, body, argument};
    const int error = kReal(thread, attributes, startOnSide, start);
    if (error != 0)
        std::free(start);
    return error;
}

// --- System calls ------------------------------------------------------------------------------------------------------------

// libc declares some with and some without noexcept.
#define FALLIBLE(result, name, parameters, arguments, specifier)                                                               \
    extern "C" result name parameters specifier                                                                                \
    {                                                                                                                          \
        static const auto kReal = campaign::next<result parameters>(#name);                                                    \
        return campaign::failsNow(#name) ? -1 : kReal arguments;                                                               \
    }

FALLIBLE(int, socket, (int domain, int type, int protocol), (domain, type, protocol), noexcept)
FALLIBLE(int, eventfd, (unsigned count, int flags), (count, flags), noexcept)
FALLIBLE(int, timerfd_create, (clockid_t clock, int flags), (clock, flags), noexcept)
FALLIBLE(int, timerfd_settime, (int file, int flags, const itimerspec* value, itimerspec* old), (file, flags, value, old),
         noexcept)
FALLIBLE(int, epoll_create1, (int flags), (flags), noexcept)
FALLIBLE(int, epoll_ctl, (int set, int operation, int file, epoll_event* event), (set, operation, file, event), noexcept)
FALLIBLE(int, epoll_wait, (int set, epoll_event* events, int most, int timeout), (set, events, most, timeout), noexcept(false))
FALLIBLE(int, poll, (pollfd * files, nfds_t count, int timeout), (files, count, timeout), noexcept(false))
FALLIBLE(int, connect, (int file, const sockaddr* address, socklen_t size), (file, address, size), noexcept(false))
FALLIBLE(int, bind, (int file, const sockaddr* address, socklen_t size), (file, address, size), noexcept)
FALLIBLE(int, listen, (int file, int backlog), (file, backlog), noexcept)
FALLIBLE(int, accept4, (int file, sockaddr* address, socklen_t* size, int flags), (file, address, size, flags), noexcept(false))
FALLIBLE(int, getsockopt, (int file, int level, int option, void* value, socklen_t* size), (file, level, option, value, size),
         noexcept)
FALLIBLE(int, setsockopt, (int file, int level, int option, const void* value, socklen_t size),
         (file, level, option, value, size), noexcept)
FALLIBLE(ssize_t, sendmsg, (int file, const msghdr* message, int flags), (file, message, flags), noexcept(false))
FALLIBLE(ssize_t, send, (int file, const void* bytes, size_t size, int flags), (file, bytes, size, flags), noexcept(false))
FALLIBLE(ssize_t, write, (int file, const void* bytes, size_t size), (file, bytes, size), noexcept(false))
FALLIBLE(ssize_t, recv, (int file, void* bytes, size_t size, int flags), (file, bytes, size, flags), noexcept(false))
FALLIBLE(ssize_t, read, (int file, void* bytes, size_t size), (file, bytes, size), noexcept(false))
FALLIBLE(int, flock, (int file, int operation), (file, operation), noexcept)
FALLIBLE(int, unlink, (const char* path), (path), noexcept)
FALLIBLE(int, mkdir, (const char* path, mode_t mode), (path, mode), noexcept)
FALLIBLE(int, lstat, (const char* path, struct stat* status), (path, status), noexcept)
FALLIBLE(int, fstat, (int file, struct stat* status), (file, status), noexcept)
FALLIBLE(int, access, (const char* path, int mode), (path, mode), noexcept)
FALLIBLE(int, chmod, (const char* path, mode_t mode), (path, mode), noexcept)
FALLIBLE(int, lchown, (const char* path, uid_t owner, gid_t group), (path, owner, group), noexcept)
FALLIBLE(int, getgroups, (int most, gid_t* groups), (most, groups), noexcept)
FALLIBLE(off_t, lseek, (int file, off_t offset, int from), (file, offset, from), noexcept)
FALLIBLE(int, ftruncate, (int file, off_t length), (file, length), noexcept)

extern "C" char* getcwd(char* path, size_t size) noexcept
{
    static const auto kReal = campaign::next<char*(char*, size_t)>("getcwd");
    return campaign::failsNow("getcwd") ? nullptr : kReal(path, size);
}

// The third argument of these is read whether or not there is one, as libc itself does.
extern "C" int open(const char* path, int flags, ...)
{
    static const auto kReal = campaign::next<int(const char*, int, ...)>("open");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    return campaign::failsNow("open") ? -1 : kReal(path, flags, mode);
}

extern "C" int fcntl(int file, int command, ...)
{
    static const auto kReal = campaign::next<int(int, int, ...)>("fcntl");
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return campaign::failsNow("fcntl") ? -1 : kReal(file, command, argument);
}

// The number is free afterwards, whatever it returns.
extern "C" int close(int file)
{
    static const auto kReal = campaign::next<int(int)>("close");
    const int result = kReal(file);
    return campaign::failsNow("close") ? -1 : result;
}

// NOLINTEND(readability-inconsistent-declaration-parameter-name)
