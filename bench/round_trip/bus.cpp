#include "round_trip/bus.h"

#include <cstring>

namespace round_trip
{
namespace
{

constexpr char kPath[] = "/gateway/echo";

int echo(sd_bus_message* request, void*, sd_bus_error*)
{
    const void* bytes = nullptr;
    std::size_t length = 0;
    int result = sd_bus_message_read_array(request, 'y', &bytes, &length);
    sd_bus_message* reply = nullptr;
    if (result >= 0)
        result = sd_bus_message_new_method_return(request, &reply);
    if (result >= 0)
        result = sd_bus_message_append_array(reply, 'y', bytes, length);
    if (result >= 0)
        result = sd_bus_send(nullptr, reply, nullptr);
    sd_bus_message_unref(reply);
    return result;
}

const sd_bus_vtable kMethods[] = {SD_BUS_VTABLE_START(0), SD_BUS_METHOD("Echo", "ay", "ay", echo, SD_BUS_VTABLE_UNPRIVILEGED),
                                  SD_BUS_VTABLE_END};

} // namespace

int succeeded(int result, const char* what)
{
    if (result < 0)
        fail(std::string(what) + ": " + std::strerror(-result));
    return result;
}

void answerEcho(sd_bus* bus)
{
    succeeded(sd_bus_add_object_vtable(bus, nullptr, kPath, kBusName, kMethods, nullptr), "the service's object");
}

BusConnection::BusConnection(sd_bus* bus, const char* destination) : bus_(bus), destination_(destination)
{
}

BusConnection::~BusConnection()
{
    sd_bus_flush_close_unref(bus_);
}

void BusConnection::call(void* message, std::size_t length)
{
    sd_bus_message* request = nullptr;
    succeeded(sd_bus_message_new_method_call(bus_, &request, destination_, kPath, kBusName, "Echo"), "a request");
    succeeded(sd_bus_message_append_array(request, 'y', message, length), "a request's bytes");
    sd_bus_message* reply = nullptr;
    succeeded(sd_bus_call(bus_, request, 0, nullptr, &reply), "a call by sd-bus");
    const void* bytes = nullptr;
    std::size_t received = 0;
    succeeded(sd_bus_message_read_array(reply, 'y', &bytes, &received), "a reply's bytes");
    if (received != length)
        fail("a reply by sd-bus of another length");
    std::memcpy(message, bytes, length);
    sd_bus_message_unref(request);
    sd_bus_message_unref(reply);
}

} // namespace round_trip
