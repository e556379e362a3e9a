#include "rabbit_cluster.h"
#include "secured_broker.h"

namespace fleet_test
{

namespace
{

class SecuredRabbit : public SecuredBroker
{
public:
    SecuredRabbit(const std::string& certificates, const std::vector<std::string>& gateways)
        : broker_(1, certificates, {"noc-1", "noc-2"}, gateways)
    {
    }

    std::uint16_t port() const override
    {
        return broker_.port(0);
    }
    void kill() override
    {
        broker_.kill(0);
    }
    void start() override
    {
        broker_.start(0);
    }
    bool namesClients() const override
    {
        return false;
    }

private:
    RabbitCluster broker_;
};

} // namespace

std::unique_ptr<SecuredBroker> makeSecuredBroker(const std::string& certificates, const std::vector<std::string>& gateways)
{
    return std::make_unique<SecuredRabbit>(certificates, gateways);
}

} // namespace fleet_test
