#include "broker.h"

#include "text_files.h"

#include <chrono>
#include <csignal>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace fleet_test
{

MosquittoBroker::MosquittoBroker(const std::string& configuration) : configuration_(configuration)
{
    for (int attempt = 0; attempt < 20; ++attempt) // another process may take the port in between
    {
        port_ = freePort();
        if (tryStart())
            return;
    }
    throw std::runtime_error("mosquitto does not start: " + contents(directory_.path("log")));
}

bool MosquittoBroker::tryStart()
{
    const std::string file = directory_.path("mosquitto.conf");
    std::ofstream(file) << "user root\n" << replaced(configuration_, "@PORT@", std::to_string(port_));
    server_.start({"/usr/sbin/mosquitto", "-c", file}, directory_.path("log"));
    if (server_.awaitPort(port_, std::chrono::seconds(5)))
        return true;
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
    server_.kill();
}

void MosquittoBroker::readAgain() const
{
    server_.signal(SIGHUP);
}

void MosquittoBroker::pause() const
{
    server_.signal(SIGSTOP);
}

void MosquittoBroker::resume() const
{
    server_.signal(SIGCONT);
}

} // namespace fleet_test
