#include "server_process.h"

#include <cstdio>
#include <random>
#include <stdexcept>
#include <thread>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace fleet_test
{

namespace
{

// Whether `act`, which is connect or bind, can be done with a new socket and this port.
template <typename Act>
bool canBeDone(Act act, std::uint16_t port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool isDone = act(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(socket);
    return isDone;
}

// Among tests, for as long as this process lives: by a name that the kernel forgets with it. A server that is starting has not
// bound its port yet, one that is down will want it again, and whoever tries meanwhile whether it answers may reach another's.
bool reserve(std::uint16_t port)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path + 1, sizeof address.sun_path - 1, "tarn-test-port-%u", unsigned{port}); // no file's name
    const int reservation = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (bind(reservation, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return true; // stays open
    close(reservation);
    return false;
}

} // namespace

std::uint16_t freePort()
{
    constexpr std::uint16_t kFirst = 20000, kLast = 32000; // Linux gives clients 32768 to 60999
    std::random_device random;
    for (int attempt = 0; attempt < 1000; ++attempt)
    {
        const auto port = static_cast<std::uint16_t>(std::uniform_int_distribution<int>(kFirst, kLast)(random));
        if (reserve(port) && canBeDone(bind, port))
            return port;
    }
    throw std::runtime_error("no free port");
}

void ServerProcess::start(const std::vector<std::string>& words, const std::string& log, const Environment& environment)
{
    const int output = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    process_ = tarn::test::Process(words, {STDIN_FILENO, output, output}, environment);
    close(output);
}

bool ServerProcess::awaitPort(std::uint16_t port, std::chrono::seconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (std::chrono::steady_clock::now() < end)
    {
        if (canBeDone(connect, port))
            return true;
        if (process_.hasEnded())
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

void ServerProcess::signal(int number) const
{
    process_.signal(number);
}

void ServerProcess::kill()
{
    process_ = tarn::test::Process();
}

} // namespace fleet_test
