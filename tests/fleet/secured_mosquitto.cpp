#include "broker.h"
#include "secured_broker.h"
#include "shipped_mosquitto.h"

#include <fstream>

namespace fleet_test
{

namespace
{

std::string configuration(const std::string& certificates)
{
    const std::string list = contents(PACKAGING "/mosquitto/access-list");
    const std::string second = replaced(list.substr(list.find("user noc-1")), "noc-1", "noc-2");
    const std::string path = certificates + "/access-list";
    std::ofstream(path) << list << second;
    return shippedConfiguration(certificates, path);
}

class SecuredMosquitto : public SecuredBroker
{
public:
    explicit SecuredMosquitto(const std::string& certificates) : broker_(configuration(certificates))
    {
    }

    std::uint16_t port() const override
    {
        return broker_.port();
    }
    void kill() override
    {
        broker_.kill();
    }
    void start() override
    {
        broker_.start();
    }
    bool namesClients() const override
    {
        return true;
    }

private:
    MosquittoBroker broker_;
};

} // namespace

// Its access list has patterns, so it needs no names of gateways.
std::unique_ptr<SecuredBroker> makeSecuredBroker(const std::string& certificates, const std::vector<std::string>& /*gateways*/)
{
    return std::make_unique<SecuredMosquitto>(certificates);
}

} // namespace fleet_test
