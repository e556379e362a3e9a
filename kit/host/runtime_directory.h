// Where the sockets of the services are.
#pragma once

#include <cstdint>
#include <string>

#include <sys/un.h>

namespace koriil
{

// Creates the runtime directory if it is missing, and makes sure that nobody but its owner, who must be us, can put files
// there. Otherwise KOR_IIL_UNKNOWN_COMM, and the trace says why.
std::uint32_t findRuntimeDirectory(std::string& directory);

std::string socketPath(const std::string& directory, const char* serviceId);
std::string lockPath(const std::string& directory, const char* serviceId);

// KOR_IIL_UNKNOWN_COMM, and a line on the trace, if the path does not fit into a socket's address.
std::uint32_t socketAddress(const std::string& path, sockaddr_un& address);

} // namespace koriil
