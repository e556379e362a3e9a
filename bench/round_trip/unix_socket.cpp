#include "round_trip/unix_socket.h"

#include "round_trip/peer.h"

#include <cstring>
#include <thread>

#include <sys/socket.h>
#include <sys/un.h>

namespace round_trip
{
namespace
{

constexpr int kBacklog = 128;

sockaddr_un addressOf(const std::string& path)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        fail(path + " is too long for a socket's name");
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

} // namespace

int listenAt(const std::string& path, int type)
{
    const sockaddr_un address = addressOf(path);
    const int listener = socket(AF_UNIX, type | SOCK_CLOEXEC, 0);
    if (listener < 0 || bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener, kBacklog) != 0)
        failWithReason("listening at " + path);
    return listener;
}

int connectTo(const std::string& path, int type)
{
    const sockaddr_un address = addressOf(path);
    const int connected = socket(AF_UNIX, type | SOCK_CLOEXEC, 0);
    if (connected < 0 || connect(connected, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        failWithReason("connecting to " + path);
    return connected;
}

void acceptAll(int listener, const std::function<void(int)>& serve)
{
    for (;;)
    {
        const int accepted = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (accepted < 0)
            failWithReason("accepting");
        std::thread(serve, accepted).detach();
    }
}

} // namespace round_trip
