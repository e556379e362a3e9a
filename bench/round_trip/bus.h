// What the two peers that speak D-Bus share: one connects to the service, the other to a daemon between them.
#pragma once

#include "round_trip/peer.h"

#include <systemd/sd-bus.h>

namespace round_trip
{

constexpr char kBusName[] = "gateway.Echo";

// Throws unless a function of sd-bus has succeeded.
int succeeded(int result, const char* what);

// Answers the calls that come over the bus.
void answerEcho(sd_bus* bus);

class BusConnection : public Connection
{
public:
    // Takes the bus; `destination` is NULL where the service is at its other end.
    BusConnection(sd_bus* bus, const char* destination);
    ~BusConnection() override;

    void call(void* message, std::size_t length) override;

private:
    sd_bus* const bus_;
    const char* const destination_;
};

} // namespace round_trip
