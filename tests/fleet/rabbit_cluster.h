// Nodes of RabbitMQ of the test's own, with the configuration that packaging has: on the loopback interface, with a port mapper
// of Erlang and all their files in a directory that is removed.
#pragma once

#include "server_process.h"

#include "support/temporary_directory.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace fleet_test
{

class RabbitCluster
{
public:
    // `certificates` is the directory that packaging/make-test-authority has made. The nodes are started one after another: a
    // cluster whose nodes start together may refuse clients for minutes.
    RabbitCluster(std::size_t size, const std::string& certificates, const std::vector<std::string>& operators,
                  const std::vector<std::string>& gateways);

    std::uint16_t port(std::size_t node) const
    {
        return nodes_[node].port;
    }
    void kill(std::size_t node);
    // Again on the same port.
    void start(std::size_t node);
    // How many nodes of the cluster are running, as one of them sees it; 0 if it does not say.
    std::size_t running(std::size_t node) const;

private:
    struct Node
    {
        std::string name;
        std::uint16_t port = 0;         // of MQTT
        std::uint16_t internalPort = 0; // of the other nodes
        ServerProcess server;
    };

    ServerProcess::Environment environment(const Node& node) const;
    void writeDefinitions(const std::vector<std::string>& operators, const std::vector<std::string>& gateways) const;
    void configure(const Node& node, const std::string& certificates) const;

    tarn::test::TemporaryDirectory directory_;
    std::uint16_t mapperPort_ = freePort();
    ServerProcess mapper_;
    std::deque<Node> nodes_; // which cannot be moved
};

} // namespace fleet_test
