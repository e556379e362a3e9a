#include "runtime_directory.h"

#include "environment.h"
#include "kor_iil_service.h"
#include "trace.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace koriil
{
namespace
{

std::string chosenDirectory()
{
    std::string directory;
    if (const char* own = setting("KORIIL_DIR"))
        directory = own;
    else if (const char* session = setting("XDG_RUNTIME_DIR"))
        directory = std::string(session) + "/koriil";
    else
        directory = "/tmp/koriil-" + std::to_string(geteuid());

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

} // namespace

std::uint32_t findRuntimeDirectory(std::string& directory)
{
    directory = chosenDirectory();
    if (directory[0] != '/')
        return refused(directory, "the path must be absolute");
    if (mkdir(directory.c_str(), S_IRWXU) != 0 && errno != EEXIST)
        return refused(directory, std::strerror(errno));

    struct stat status = {};
    if (lstat(directory.c_str(), &status) != 0)
        return refused(directory, std::strerror(errno));
    if (S_ISLNK(status.st_mode))
        return refused(directory, "it is a symbolic link");
    if (!S_ISDIR(status.st_mode))
        return refused(directory, "it is not a directory");
    if (status.st_uid != geteuid())
        return refused(directory, "it belongs to another user");
    if ((status.st_mode & (S_IWGRP | S_IWOTH)) != 0)
        return refused(directory, "others may write to it (chmod go-w forbids it)");
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
{
    return static_cast<uint32_t>(std::snprintf(path, size, "%s", koriil::chosenDirectory().c_str()));
}
