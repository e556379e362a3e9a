// A cluster of three RabbitMQ nodes that loses one of them while tarn-fleet makes a call on a hundred gateways.
#include "disturbed_run.h"
#include "home.h"
#include "link.h"
#include "rabbit_cluster.h"
#include "test_authority.h"

#include "support/temporary_directory.h"

#include <chrono>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace fleet_test
{
namespace
{

constexpr unsigned kGatewaysOfCluster = 100;
constexpr unsigned kWindow = 8;
constexpr std::size_t kNodes = 3;

std::size_t linesOf(const std::string& text, const std::string& piece)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1))
        ++count;
    return count;
}

class ClusterTest : public ::testing::Test
{
protected:
    ClusterTest()
    {
        for (unsigned number = 1; number <= kGatewaysOfCluster; ++number)
            names_.push_back(Home::nameOf(number));
        authority_.certify(names_);
        cluster_ = std::make_unique<RabbitCluster>(kNodes, authority_.directory(), std::vector<std::string>{"noc-1"}, names_);
    }

    // A client's whose list of brokers begins with that node.
    tarn::fleet::LinkSettings settings(const std::string& name, std::size_t firstNode) const
    {
        std::vector<std::uint16_t> ports;
        for (std::size_t each = 0; each < kNodes; ++each)
            ports.push_back(cluster_->port((firstNode + each) % kNodes));
        tarn::fleet::LinkSettings link = linkOf(name, ports);
        authority_.secure(link, name);
        return link;
    }

    // Each gateway begins its list of brokers with another node, so that each node has a third of them.
    void startHomes()
    {
        for (unsigned number = 1; number <= kGatewaysOfCluster; ++number)
        {
            homes_.push_back(std::make_unique<Home>(settings(names_[number - 1], number % kNodes), number, &ledger_));
            homes_.back()->milliseconds = 50;
        }
        for (const auto& home : homes_)
            home->awaitConnection();
    }
    // The operator begins with the first node.
    void configureOperator() const
    {
        std::ofstream(directory_.path("fleet.conf")) << settingsText(settings("noc-1", 0));
    }
    // A node that comes back has not taken its part in the cluster as soon as it takes connections.
    void awaitNodes(std::size_t count) const
    {
        for (int look = 0; look < 60 && cluster_->running(1) != count; ++look)
            std::this_thread::sleep_for(std::chrono::seconds(1));
        EXPECT_EQ(cluster_->running(1), count);
    }
    // A run in whose middle this node is killed, and then started again.
    void loseNode(std::size_t node, std::uint32_t number)
    {
        SCOPED_TRACE(node);
        const auto begin = std::chrono::steady_clock::now();
        DisturbedRun run(directory_, ledger_, number, kGatewaysOfCluster, kWindow);
        run.awaitExecutions(30);
        cluster_->kill(node);
        const DisturbedRun::Judgement judged = run.finish();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        EXPECT_EQ(judged.done + judged.unknown, kGatewaysOfCluster);
        EXPECT_LE(judged.unknown, 2 * kWindow) << "no more than were under way";
        awaitNodes(kNodes - 1);
        std::printf("counted: node %zu of 3 killed: %u gateways, %zu done, %zu of unknown outcome (%zu executed), 0 twice, "
                    "%zu runs, %.1f s\n",
                    node + 1, kGatewaysOfCluster, judged.done, judged.unknown, judged.executedUnknown, judged.runs,
                    taken.count());
        cluster_->start(node);
        awaitNodes(kNodes);
    }

    const tarn::test::TemporaryDirectory directory_;
    const TestAuthority authority_{{"noc-1"}};
    const Ledger ledger_{directory_.path("ledger")};
    std::vector<std::string> names_;
    std::unique_ptr<RabbitCluster> cluster_;
    std::vector<std::unique_ptr<Home>> homes_;
};

TEST_F(ClusterTest, ARunOverAHundredGatewaysIsFinishedWithoutTheNodeThatIsKilled)
{
    awaitNodes(kNodes);
    startHomes();
    configureOperator();
    std::uint32_t number = 0;
    const DisturbedRun::Judgement calm = DisturbedRun(directory_, ledger_, ++number, kGatewaysOfCluster, kWindow).finish();
    EXPECT_EQ(calm.done, kGatewaysOfCluster);
    const auto list = [this](const std::string& filter) {
        return FleetProcess(directory_, {"list", filter, "--format", "csv"}).finish();
    };
    const FleetRun named = list("@" + directory_.path("names"));
    const FleetRun matched = list("home-*");
    EXPECT_EQ(linesOf(named.out, ",there,"), kGatewaysOfCluster);
    std::printf("counted: listed by name %zu, by pattern %zu\n", linesOf(named.out, ",there,"),
                linesOf(matched.out, ",there,"));
    loseNode(0, ++number); // the operator's
    loseNode(2, ++number); // another one's
}

} // namespace
} // namespace fleet_test
