// D-Bus as a system has it: every message goes through a daemon. Both sides use sd-bus.
#include "round_trip/bus.h"

#include <csignal>

#include <sys/prctl.h>
#include <unistd.h>

namespace round_trip
{
namespace
{

std::string addressIn(const std::string& directory)
{
    return "unix:path=" + directory + "/dbus";
}

void startDaemon(const std::string& directory)
{
    int ready[2];
    if (pipe(ready) != 0)
        failWithReason("a pipe");
    const std::string address = "--address=" + addressIn(directory);
    const std::string print = "--print-address=" + std::to_string(ready[1]);
    if (fork() == 0)
    {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--nopidfile", address.c_str(), print.c_str(), nullptr);
        _exit(127);
    }
    close(ready[1]);
    char byte;
    if (read(ready[0], &byte, 1) != 1) // its address, once it listens
        fail("dbus-daemon has not started");
    close(ready[0]);
}

sd_bus* connectToDaemon(const std::string& directory)
{
    sd_bus* bus = nullptr;
    succeeded(sd_bus_new(&bus), "a bus");
    succeeded(sd_bus_set_address(bus, addressIn(directory).c_str()), "a bus's address");
    succeeded(sd_bus_set_bus_client(bus, 1), "a client of a bus");
    succeeded(sd_bus_start(bus), "starting a bus");
    return bus;
}

void serve(const std::string& directory, const std::function<void()>& ready)
{
    startDaemon(directory);
    sd_bus* const bus = connectToDaemon(directory);
    answerEcho(bus);
    succeeded(sd_bus_request_name(bus, kBusName, 0), "the service's name");
    ready();
    for (;;)
        if (succeeded(sd_bus_process(bus, nullptr), "serving") == 0)
            succeeded(sd_bus_wait(bus, UINT64_MAX), "waiting");
}

std::unique_ptr<Connection> connect(const std::string& directory)
{
    return std::make_unique<BusConnection>(connectToDaemon(directory), kBusName);
}

} // namespace

const Peer kDBusDaemon = {"D-Bus", serve, connect};

} // namespace round_trip
