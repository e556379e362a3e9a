#include "runtime_directory.h"

#include "environment.h"
#include "kor_iil_service.h"
#include "trace.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <vector>

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace koriil
{
namespace
{

// For the services and callers of several users. An administrator makes it.
constexpr char kSharedDirectory[] = "/run/koriil";

std::string chosenDirectory()
{
    std::string directory;
    if (const char* chosen = setting("KORIIL_DIR"))
        directory = chosen;
    else
    {
        const char* const session = setting("XDG_RUNTIME_DIR");
        directory = session != nullptr ? std::string(session) + "/koriil" : "/tmp/koriil-" + std::to_string(geteuid());
        if (access(directory.c_str(), F_OK) != 0 && access(kSharedDirectory, F_OK) == 0)
            directory = kSharedDirectory;
    }

    // lstat follows a link whose name ends in '/', and the check for links would pass it.
    while (directory.size() > 1 && directory.back() == '/')
        directory.pop_back();
    return directory;
}

std::uint32_t refused(const std::string& directory, const char* why)
{
    KORIIL_REPORT(kTraceWarning, "runtime directory %s refused: %s", directory.c_str(), why);
    return KOR_IIL_UNKNOWN_COMM;
}

bool isOfGroup(gid_t group)
{
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(0, getgroups(0, nullptr))));
    if (!groups.empty() && getgroups(static_cast<int>(groups.size()), groups.data()) < 0)
        groups.clear();
    return group == getegid() || std::find(groups.begin(), groups.end(), group) != groups.end();
}

// NULL if the directory can be trusted.
const char* reasonToRefuse(const struct stat& status)
{
    if (S_ISLNK(status.st_mode))
        return "it is a symbolic link";
    if (!S_ISDIR(status.st_mode))
        return "it is not a directory";
    if ((status.st_mode & S_IWOTH) != 0)
        return "others may write to it (chmod o-w forbids it)";
    if ((status.st_mode & S_IWGRP) == 0)
        return status.st_uid == geteuid() ? nullptr : "it belongs to another user";

    if (status.st_uid != 0 || (status.st_mode & S_ISVTX) == 0)
        return "its group may write to it (chmod g-w forbids it; one that a group shares belongs to root and is sticky)";
    return geteuid() == 0 || isOfGroup(status.st_gid) ? nullptr : "this user is not in its group";
}

} // namespace

std::uint32_t findRuntimeDirectory(RuntimeDirectory& directory)
{
    directory.path = chosenDirectory();
    if (directory.path[0] != '/')
        return refused(directory.path, "the path must be absolute");
    if (mkdir(directory.path.c_str(), S_IRWXU) != 0 && errno != EEXIST)
        return refused(directory.path, std::strerror(errno));

    struct stat status = {};
    if (lstat(directory.path.c_str(), &status) != 0)
        return refused(directory.path, std::strerror(errno));
    if (const char* const reason = reasonToRefuse(status))
        return refused(directory.path, reason);
    directory.isShared = (status.st_mode & S_IWGRP) != 0;
    directory.group = status.st_gid;
    return KOR_IIL_OK;
}

// Two suffixes, so that the socket of one service is never the lock file of another.
std::string socketPath(const std::string& directory, const char* serviceId)
{
    return directory + "/" + serviceId + ".socket";
}

std::string lockPath(const std::string& directory, const char* serviceId)
{
    return directory + "/" + serviceId + ".lock";
}

std::uint32_t socketAddress(const std::string& path, sockaddr_un& address)
{
    address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
    {
        KORIIL_REPORT(kTraceWarning, "socket path %s is %zu characters long, at most %zu fit; set KORIIL_DIR to a shorter one",
                      path.c_str(), path.size(), sizeof address.sun_path - 1);
        return KOR_IIL_UNKNOWN_COMM;
    }
    std::memcpy(address.sun_path, path.c_str(), path.size());
    return KOR_IIL_OK;
}

} // namespace koriil

uint32_t KorIilRuntimeDirectory(char* path, uint32_t size)
try
{
    return static_cast<uint32_t>(std::snprintf(path, size, "%s", koriil::chosenDirectory().c_str()));
}
catch (const std::bad_alloc&)
{
    return 0;
}
