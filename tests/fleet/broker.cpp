#include "broker.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fleet_test
{

namespace
{

sockaddr_in loopback(std::uint16_t port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

std::uint16_t freePort()
{
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    const bool isBound = bind(socket, generic, size) == 0 && getsockname(socket, generic, &size) == 0;
    close(socket);
    if (!isBound)
        throw std::runtime_error("no free port");
    return ntohs(address.sin_port);
}

bool accepts(std::uint16_t port)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = loopback(port);
    const bool isConnected = connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(socket);
    return isConnected;
}

std::string replaced(std::string text, const std::string& piece, const std::string& other)
{
    for (std::size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + other.size()))
        text.replace(at, piece.size(), other);
    return text;
}

} // namespace

MosquittoBroker::MosquittoBroker(const std::string& configuration) : configuration_(configuration)
{
    char path[] = "/tmp/tarn_broker-XXXXXX";
    if (mkdtemp(path) == nullptr)
        throw std::runtime_error("no directory");
    directory_ = path;
    for (int attempt = 0; attempt < 20; ++attempt) // another process may take the port in between
    {
        port_ = freePort();
        if (tryStart())
            return;
    }
    throw std::runtime_error("mosquitto does not start; its log was in " + directory_);
}

MosquittoBroker::~MosquittoBroker()
{
    kill();
    std::filesystem::remove_all(directory_);
}

bool MosquittoBroker::tryStart()
{
    const std::string file = directory_ + "/mosquitto.conf";
    std::ofstream(file) << "user root\n"
                        << replaced(replaced(configuration_, "@PORT@", std::to_string(port_)), "@DIRECTORY@", directory_);
    processId_ = fork();
    if (processId_ == 0)
    {
        const std::string log = directory_ + "/log";
        const int output = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        dup2(output, STDOUT_FILENO);
        dup2(output, STDERR_FILENO);
        execl("/usr/sbin/mosquitto", "mosquitto", "-c", file.c_str(), nullptr);
        _exit(127);
    }
    for (int look = 0; look < 500; ++look)
    {
        if (accepts(port_))
            return true;
        if (waitpid(processId_, nullptr, WNOHANG) == processId_)
        {
            processId_ = -1;
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    kill();
    return false;
}

void MosquittoBroker::start()
{
    for (int attempt = 0; attempt < 50; ++attempt)
    {
        if (tryStart())
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    throw std::runtime_error("mosquitto does not start again");
}

void MosquittoBroker::kill()
{
    if (processId_ < 0)
        return;
    ::kill(processId_, SIGKILL);
    waitpid(processId_, nullptr, 0);
    processId_ = -1;
}

void MosquittoBroker::pause() const
{
    ::kill(processId_, SIGSTOP);
}

void MosquittoBroker::resume() const
{
    ::kill(processId_, SIGCONT);
}

} // namespace fleet_test
