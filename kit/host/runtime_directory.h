// Where the sockets of the services are.
#pragma once

#include <cstdint>
#include <string>

#include <sys/un.h>

namespace koriil
{

// Creates the runtime directory if it is missing, and checks that it belongs to this user and that no other user can create
// files in it. Otherwise KOR_IIL_UNKNOWN_COMM, and a trace line with the reason.
std::uint32_t findRuntimeDirectory(std::string& directory);

std::string socketPath(const std::string& directory, const char* serviceId);
std::string lockPath(const std::string& directory, const char* serviceId);

// KOR_IIL_UNKNOWN_COMM, and a trace line, if the path does not fit into a socket's address.
std::uint32_t socketAddress(const std::string& path, sockaddr_un& address);

} // namespace koriil
