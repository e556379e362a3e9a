#include "messages/exchange.h"

#include <cstdlib>
#include <cstring>
#include <memory>

#include <sys/socket.h>
#include <systemd/sd-bus.h>

namespace
{

struct Unreference
{
    void operator()(sd_bus_message* message) const
    {
        sd_bus_message_unref(message);
    }
};

using Message = std::unique_ptr<sd_bus_message, Unreference>;

// A message needs a bus that has been started, which is one end of a socket here. Nothing is sent over it.
sd_bus* startedBus()
{
    int ends[2];
    sd_bus* bus = nullptr;
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0 || sd_bus_new(&bus) < 0 ||
        sd_bus_set_fd(bus, ends[0], ends[0]) < 0 || sd_bus_start(bus) < 0)
        std::abort();
    return bus;
}

// What its encoding ends with, and its reading begins with.
bool seal(sd_bus_message* message, std::uint64_t number)
{
    return sd_bus_message_seal(message, number, 1000000) >= 0 && sd_bus_message_rewind(message, 1) >= 0;
}

Message serveSdBus(sd_bus_message* request, std::size_t size)
{
    std::uint32_t command = 0, radio = 0, ssid = 0;
    if (sd_bus_message_read(request, "uuu", &command, &radio, &ssid) < 0 || radio != messages::kRequest.radio)
        return nullptr;
    sd_bus_message* answer = nullptr;
    if (sd_bus_message_new_method_return(request, &answer) < 0)
        return nullptr;
    Message reply(answer);
    if (sd_bus_message_append_array(answer, 'y', messages::serviceRecord.data(), size) < 0 ||
        sd_bus_message_append(answer, "u", messages::kStatus) < 0 || !seal(answer, 2))
        return nullptr;
    return reply;
}

template <std::size_t size>
std::uint32_t callSdBus(void* record)
{
    static sd_bus* const kBus = startedBus();
    sd_bus_message* asked = nullptr;
    if (sd_bus_message_new_method_call(kBus, &asked, nullptr, "/gateway", "gateway.Radio", "GetRadio") < 0)
        return 0;
    const Message request(asked);
    if (sd_bus_message_append(asked, "uuu", messages::kRequest.command, messages::kRequest.radio, messages::kRequest.ssid) <
            0 ||
        !seal(asked, 1))
        return 0;
    const Message reply = serveSdBus(asked, size);

    const void* bytes = nullptr;
    std::size_t length = 0;
    std::uint32_t status = 0;
    if (!reply || sd_bus_message_read_array(reply.get(), 'y', &bytes, &length) < 0 || length != size ||
        sd_bus_message_read(reply.get(), "u", &status) < 0)
        return 0;
    std::memcpy(record, bytes, size);
    return status;
}

} // namespace

void messages::addSdBus(std::vector<bench::Case>& cases)
{
    addCases(cases, "sd-bus", callSdBus<4>, callSdBus<128>, callSdBus<9552>);
}
