#include "service_name.h"

#include "trace.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>

namespace koriil
{
namespace
{

constexpr int kBacklog = 128;

// Where a path leads.
enum class Target
{
    kSame,      // to this file
    kElsewhere, // to another one, or to none
    kUnknown    // it cannot be looked at for the moment
};

Target targetOf(const std::string& path, ino_t inode)
{
    struct stat status = {};
    if (lstat(path.c_str(), &status) == 0)
        return status.st_ino == inode ? Target::kSame : Target::kElsewhere;
    return errno == ENOENT ? Target::kElsewhere : Target::kUnknown;
}

} // namespace

ServiceName::ServiceName(const char* serviceId) : id_(serviceId)
{
}

ServiceName::~ServiceName()
{
    if (lock_)
        flock(lock_.get(), LOCK_UN); // closing alone would not release it while a child holds a copy
}

void ServiceName::withdraw()
{
    if (targetOf(lockPath_, lockInode_) == Target::kSame && targetOf(socketPath_, socketInode_) == Target::kSame)
        unlink(socketPath_.c_str());
    if (listener_)
        shutdown(listener_.get(), SHUT_RDWR); // ends it even if a child holds a copy
}

std::uint32_t ServiceName::failed(const char* what) const
{
    const std::uint32_t status = statusOfErrno();
    KORIIL_REPORT(kTraceWarning, "service %s: %s failed: %s", id_.c_str(), what, std::strerror(errno));
    return status;
}

std::uint32_t ServiceName::take()
{
    if (const std::uint32_t status = findRuntimeDirectory(directory_))
        return status;
    lockPath_ = lockPath(directory_.path, id_.c_str());
    socketPath_ = socketPath(directory_.path, id_.c_str());
    if (const std::uint32_t status = lock())
        return status;
    if (isAnswered()) // its lock file was removed: it will take the lock itself when this one has let it go
        return KOR_IIL_CONFLICT_ID;
    return listen();
}

std::uint32_t ServiceName::keep()
{
    const bool isPublished = targetOf(socketPath_, socketInode_) != Target::kElsewhere;
    if (targetOf(lockPath_, lockInode_) == Target::kElsewhere)
        if (const std::uint32_t status = lock(); status != KOR_IIL_OK && !isPublished)
            return status; // where the socket is still this one's, whoever has the lock will find it answered
    return isPublished ? static_cast<std::uint32_t>(KOR_IIL_OK) : listen();
}

std::uint32_t ServiceName::lock()
{
    for (;;)
    {
        Descriptor file(open(lockPath_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
        struct stat status = {};
        if (!file || fstat(file.get(), &status) != 0)
            return failed("opening its lock file");
        if (flock(file.get(), LOCK_EX | LOCK_NB) != 0)
            return errno == EWOULDBLOCK ? static_cast<std::uint32_t>(KOR_IIL_CONFLICT_ID) : failed("locking its lock file");
        switch (targetOf(lockPath_, status.st_ino))
        {
        case Target::kSame:
            lock_ = std::move(file);
            lockInode_ = status.st_ino;
            return KOR_IIL_OK;
        case Target::kElsewhere: // removed since it was opened
            break;
        case Target::kUnknown:
            return failed("looking at its lock file");
        }
    }
}

std::uint32_t ServiceName::listen()
{
    sockaddr_un address;
    if (const std::uint32_t status = socketAddress(socketPath_, address))
        return status;

    Descriptor listener(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!listener)
        return failed("opening its socket");
    if (unlink(socketPath_.c_str()) != 0 && errno != ENOENT)
        return failed("clearing away the socket of a predecessor");
    if (bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return failed("naming its socket");
    struct stat status = {};
    if (lstat(socketPath_.c_str(), &status) != 0)
        return failed("looking at its socket");
    socketInode_ = status.st_ino;
    if (directory_.isShared && (chmod(socketPath_.c_str(), S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP) != 0 ||
                                lchown(socketPath_.c_str(), static_cast<uid_t>(-1), directory_.group) != 0))
        return failed("giving its socket to the group");
    if (::listen(listener.get(), kBacklog) != 0)
        return failed("listening");
    listener_ = std::move(listener);
    return KOR_IIL_OK;
}

// Whether a process listens at the socket's path.
bool ServiceName::isAnswered() const
{
    sockaddr_un address;
    const Descriptor caller(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!caller || socketAddress(socketPath_, address) != KOR_IIL_OK)
        return false;
    return connect(caller.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ||
           errno == EAGAIN; // its backlog is full
}

void ServiceName::abandon()
{
    lock_ = Descriptor();
    listener_ = Descriptor();
    lockInode_ = socketInode_ = 0;
}

} // namespace koriil
