// The broker that the security tests are about, with the configuration that packaging has. Each program of tests is linked with
// one of its makers.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace fleet_test
{

class SecuredBroker
{
public:
    SecuredBroker() = default;
    virtual ~SecuredBroker() = default;
    SecuredBroker(const SecuredBroker&) = delete;
    SecuredBroker& operator=(const SecuredBroker&) = delete;

    virtual std::uint16_t port() const = 0;
    virtual void kill() = 0;
    // Again on the same port.
    virtual void start() = 0;
    // Whether a client's id is the name in its certificate, whatever id it gives; else that is left to the client.
    virtual bool namesClients() const = 0;
};

// With the operators noc-1 and noc-2 and these gateways. `certificates` is the directory that packaging/make-test-authority has
// made.
std::unique_ptr<SecuredBroker> makeSecuredBroker(const std::string& certificates, const std::vector<std::string>& gateways);

} // namespace fleet_test
