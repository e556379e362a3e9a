#include "broker.h"
#include "secured_broker.h"
#include "text_files.h"

namespace fleet_test
{

namespace
{

std::string configuration(const std::string& certificates)
{
    const std::string list = contents(std::string(PACKAGING) + "/mosquitto/access-list");
    const std::string second = replaced(list.substr(list.find("user noc-1")), "noc-1", "noc-2");
    std::ofstream(certificates + "/access-list") << list << second;
    const std::string shipped = contents(std::string(PACKAGING) + "/mosquitto/tarn.conf");
    return replaced(replaced(shipped, "/etc/mosquitto/tarn", certificates), "listener 8883", "listener @PORT@ 127.0.0.1");
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
