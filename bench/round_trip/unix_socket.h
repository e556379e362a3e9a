// Unix-domain sockets, for the peers that leave them to their user.
#pragma once

#include <functional>
#include <string>

namespace round_trip
{

int listenAt(const std::string& path, int type);

int connectTo(const std::string& path, int type);

// Gives each connection to `serve`, in a thread of its own, and never returns.
[[noreturn]] void acceptAll(int listener, const std::function<void(int)>& serve);

} // namespace round_trip
