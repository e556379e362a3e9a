// The name of a service: a lock that one process has, and a socket that callers find.
#pragma once

#include "descriptor.h"
#include "runtime_directory.h"

#include <cstdint>
#include <string>

#include <sys/types.h>

namespace koriil
{

// Whoever has the lock on the lock file has the name. The kernel releases the lock of a dead process. The files may be removed
// under a running service, for example by what cleans temporary folders, so a lock or a socket counts only while its path leads
// to it.
class ServiceName
{
public:
    explicit ServiceName(const char* serviceId);
    ~ServiceName();
    ServiceName(const ServiceName&) = delete;
    ServiceName& operator=(const ServiceName&) = delete;

    // KOR_IIL_CONFLICT_ID if a running service has it.
    std::uint32_t take();

    // Publishes again what was removed. KOR_IIL_CONFLICT_ID if another service has taken the name since. Where it returns
    // KOR_IIL_OK, the listener may be another one than before.
    std::uint32_t keep();

    // Nobody finds the socket any more, which is removed only if it is this one's. Who has connected can still be accepted.
    void withdraw();

    int listener() const
    {
        return listener_.get();
    }
    // Of several users, the directory's group.
    bool isShared() const
    {
        return directory_.isShared;
    }

    // In a child of the process: closes its copies, and leaves the name to the parent.
    void abandon();

private:
    std::uint32_t lock();
    std::uint32_t listen();
    bool isAnswered() const;
    std::uint32_t failed(const char* what) const;

    const std::string id_;
    RuntimeDirectory directory_;
    std::string lockPath_, socketPath_;
    Descriptor lock_;
    Descriptor listener_;
    ino_t lockInode_ = 0, socketInode_ = 0; // of the files; 0 if there is none
};

} // namespace koriil
