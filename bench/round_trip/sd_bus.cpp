// sd-bus from peer to peer: no daemon between caller and service.
#include "round_trip/bus.h"
#include "round_trip/unix_socket.h"

#include <sys/socket.h>
#include <systemd/sd-event.h>
#include <systemd/sd-id128.h>

namespace round_trip
{
namespace
{

int hangUp(sd_bus_message* message, void*, sd_bus_error*)
{
    sd_bus* const bus = sd_bus_message_get_bus(message);
    sd_bus_detach_event(bus);
    sd_bus_close(bus);
    return 0;
}

int admit(sd_event_source* source, int listener, std::uint32_t, void*)
{
    const int accepted = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (accepted < 0)
        failWithReason("accepting");
    sd_id128_t id;
    succeeded(sd_id128_randomize(&id), "a server's id");
    sd_bus* bus = nullptr;
    succeeded(sd_bus_new(&bus), "a bus");
    succeeded(sd_bus_set_fd(bus, accepted, accepted), "a bus's socket");
    succeeded(sd_bus_set_server(bus, 1, id), "a bus's server");
    answerEcho(bus);
    succeeded(sd_bus_start(bus), "starting a bus");
    succeeded(sd_bus_attach_event(bus, sd_event_source_get_event(source), 0), "a bus's events");
    succeeded(sd_bus_match_signal(bus, nullptr, nullptr, "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local",
                                  "Disconnected", hangUp, nullptr),
              "a bus's end");
    return 0;
}

void serve(const std::string& directory, const std::function<void()>& ready)
{
    const int listener = listenAt(directory + "/sd_bus", SOCK_STREAM);
    sd_event* event = nullptr;
    succeeded(sd_event_new(&event), "an event loop");
    succeeded(sd_event_add_io(event, nullptr, listener, EPOLLIN, admit, nullptr), "listening");
    ready();
    succeeded(sd_event_loop(event), "the event loop");
}

std::unique_ptr<Connection> connect(const std::string& directory)
{
    sd_bus* bus = nullptr;
    succeeded(sd_bus_new(&bus), "a bus");
    succeeded(sd_bus_set_address(bus, ("unix:path=" + directory + "/sd_bus").c_str()), "a bus's address");
    succeeded(sd_bus_start(bus), "starting a bus");
    return std::make_unique<BusConnection>(bus, nullptr);
}

} // namespace

const Peer kSdBus = {"sd-bus", serve, connect};

} // namespace round_trip
