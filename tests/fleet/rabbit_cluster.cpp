#include "rabbit_cluster.h"

#include "text_files.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <fcntl.h>
#include <unistd.h>

namespace fleet_test
{

namespace
{

constexpr std::chrono::seconds kNodeStart{120};
constexpr char kPrograms[] = "/usr/lib/rabbitmq/bin/"; // those in the search path want to run as another user

} // namespace

RabbitCluster::RabbitCluster(std::size_t size, const std::string& certificates, const std::vector<std::string>& operators,
                             const std::vector<std::string>& gateways)
{
    writeDefinitions(operators, gateways);
    mapper_.start({"epmd", "-port", std::to_string(mapperPort_), "-address", "127.0.0.1"}, directory_.path("epmd.log"));
    if (!mapper_.awaitPort(mapperPort_, kNodeStart))
        throw std::runtime_error("Erlang's port mapper does not start: " + contents(directory_.path("epmd.log")));
    for (std::size_t at = 0; at < size; ++at)
    {
        Node& node = nodes_.emplace_back();
        node.name = "tarn-" + std::to_string(at + 1);
        node.port = freePort();
        node.internalPort = freePort();
    }
    for (const Node& node : nodes_)
        configure(node, certificates);
    for (std::size_t at = 0; at < size; ++at)
        start(at);
}

void RabbitCluster::writeDefinitions(const std::vector<std::string>& operators, const std::vector<std::string>& gateways) const
{
    {
        std::ofstream names(directory_.path("names"));
        for (const std::string& gateway : gateways)
            names << gateway << '\n';
    }
    std::vector<std::string> words{PACKAGING "/rabbitmq/make-definitions"};
    words.insert(words.end(), operators.begin(), operators.end());
    const int names = open(directory_.path("names").c_str(), O_RDONLY | O_CLOEXEC);
    tarn::test::Pipe definitions;
    tarn::test::Process process(words, {names, definitions.writing(), STDERR_FILENO});
    close(names);
    definitions.closeWriting();
    std::ofstream(directory_.path("definitions.json")) << definitions.rest();
    if (process.finish() != 0)
        throw std::runtime_error(words.front() + " has failed");
}

// The shipped file, with other paths and ports; in a cluster, with the lines that are for one.
void RabbitCluster::configure(const Node& node, const std::string& certificates) const
{
    std::string text = contents(std::string(PACKAGING) + "/rabbitmq/tarn.conf");
    text = replaced(text, "/etc/rabbitmq/tarn/definitions.json", directory_.path("definitions.json"));
    text = replaced(text, "/etc/rabbitmq/tarn", certificates);
    text = replaced(text, "ssl.default = 8883", "ssl.default = 127.0.0.1:" + std::to_string(node.port));
    if (nodes_.size() > 1)
    {
        text = replaced(text, "# cluster_", "cluster_");
        for (std::size_t at = 0; at < nodes_.size(); ++at)
            text = replaced(text, "rabbit@mqtt-" + std::to_string(at + 1), nodes_[at].name + "@localhost");
    }
    std::filesystem::create_directory(directory_.path(node.name));
    std::ofstream(directory_.path(node.name) + "/rabbitmq.conf") << text;
}

ServerProcess::Environment RabbitCluster::environment(const Node& node) const
{
    const std::string own = directory_.path(node.name);
    return {{"HOME", directory_.path()}, // of the cookie, which the nodes share
            {"RABBITMQ_NODENAME", node.name + "@localhost"},
            {"RABBITMQ_CONF_ENV_FILE", "/dev/null"},
            {"RABBITMQ_CONFIG_FILE", own + "/rabbitmq.conf"},
            {"RABBITMQ_ENABLED_PLUGINS_FILE", std::string(PACKAGING) + "/rabbitmq/enabled_plugins"},
            {"RABBITMQ_MNESIA_BASE", own + "/mnesia"},
            {"RABBITMQ_LOG_BASE", own + "/log"},
            {"RABBITMQ_LOGS", "-"},
            {"RABBITMQ_PID_FILE", own + "/pid"},
            {"RABBITMQ_DIST_PORT", std::to_string(node.internalPort)},
            {"RABBITMQ_SERVER_ADDITIONAL_ERL_ARGS", "-kernel inet_dist_use_interface {127,0,0,1}"},
            {"ERL_EPMD_PORT", std::to_string(mapperPort_)},
            {"ERL_EPMD_ADDRESS", "127.0.0.1"},
            {"RUNNING_UNDER_SYSTEMD", "1"}, // no shell stays in front of the server
            {"NOTIFY_SOCKET", ""}};
}

void RabbitCluster::start(std::size_t node)
{
    Node& started = nodes_[node];
    const std::string log = directory_.path(started.name) + "/output";
    started.server.start({std::string(kPrograms) + "rabbitmq-server"}, log, environment(started));
    if (started.server.awaitPort(started.port, kNodeStart))
        return;
    const std::string text = contents(log);
    throw std::runtime_error("RabbitMQ does not start: " + text.substr(text.size() - std::min<std::size_t>(text.size(), 3000)));
}

void RabbitCluster::kill(std::size_t node)
{
    nodes_[node].server.kill();
}

std::size_t RabbitCluster::running(std::size_t node) const
{
    tarn::test::Pipe answer;
    tarn::test::Process process(
        {std::string(kPrograms) + "rabbitmqctl", "--quiet", "eval", "length(rabbit_nodes:all_running())."},
        {STDIN_FILENO, answer.writing(), STDERR_FILENO}, environment(nodes_[node]));
    answer.closeWriting();
    return std::strtoul(answer.rest().c_str(), nullptr, 10);
}

} // namespace fleet_test
