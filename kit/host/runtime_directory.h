// Where the sockets of the services are.
#pragma once

#include <cstdint>
#include <string>

#include <sys/types.h>
#include <sys/un.h>

namespace koriil
{

struct RuntimeDirectory
{
    std::string path;
    bool isShared = false; // by the users of its group
    gid_t group = 0;
};

// Creates the runtime directory if it is missing, and checks that nobody can create files in it but this user; or, where it is
// shared, nobody but the members of its group, who cannot remove one another's. Otherwise KOR_IIL_UNKNOWN_COMM, and a trace
// line with the reason.
std::uint32_t findRuntimeDirectory(RuntimeDirectory& directory);

std::string socketPath(const std::string& directory, const char* serviceId);
std::string lockPath(const std::string& directory, const char* serviceId);

// KOR_IIL_UNKNOWN_COMM, and a trace line, if the path does not fit into a socket's address.
std::uint32_t socketAddress(const std::string& path, sockaddr_un& address);

} // namespace koriil
