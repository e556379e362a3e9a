// tarn-fleet with two brokers and with certificates: what it does without the first broker, and what it says of a connection
// that cannot be.
#include "broker.h"
#include "disturbed_run.h"
#include "home.h"
#include "link.h"
#include "shipped_mosquitto.h"
#include "test_authority.h"

#include "support/temporary_directory.h"

#include <deque>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fleet_test
{
namespace
{

using ::testing::HasSubstr;
using ::testing::MatchesRegex;

constexpr int kNoConnection = 6;
constexpr unsigned kGateways = 10;

// Two brokers that know nothing of one another, and an authority whose certificates these, the gateways and the operator have.
class FailoverTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        std::vector<std::string> names{"noc-1"};
        for (unsigned number = 1; number <= kGateways; ++number)
            names.push_back(Home::nameOf(number));
        authority_ = std::make_unique<TestAuthority>(names);
        authority_->certify({"late-1"}, TestAuthority::Validity::kExpired);
    }
    static void TearDownTestSuite()
    {
        authority_.reset();
    }

    // Of an operator or gateway with the certificate of that name.
    static tarn::fleet::LinkSettings settings(const std::string& name, const std::vector<std::uint16_t>& ports)
    {
        tarn::fleet::LinkSettings link = linkOf(name, ports);
        authority_->secure(link, name);
        return link;
    }
    static void configure(const tarn::test::TemporaryDirectory& directory, const tarn::fleet::LinkSettings& settings)
    {
        std::ofstream(directory.path("fleet.conf")) << settingsText(settings);
    }
    void configure(const std::vector<std::uint16_t>& ports) const
    {
        configure(directory_, settings("noc-1", ports));
    }
    void startHomes(const std::vector<std::uint16_t>& ports, std::uint32_t milliseconds = 0)
    {
        for (unsigned number = 1; number <= kGateways; ++number)
        {
            homes_.push_back(std::make_unique<Home>(settings(Home::nameOf(number), ports), number, &ledger_));
            homes_.back()->milliseconds = milliseconds;
        }
        for (const auto& home : homes_)
            home->awaitConnection();
    }
    FleetRun run(const std::vector<std::string>& words) const
    {
        return FleetProcess(directory_, words).finish();
    }
    static inline std::unique_ptr<TestAuthority> authority_;
    const tarn::test::TemporaryDirectory directory_;
    const Ledger ledger_{directory_.path("ledger")};
    MosquittoBroker first_{shippedConfiguration(authority_->directory())},
        second_{shippedConfiguration(authority_->directory())};
    std::vector<std::unique_ptr<Home>> homes_;
};

TEST_F(FailoverTest, ABrokerThatIsNotThereAtTheStartIsPassedOver)
{
    first_.kill();
    startHomes({first_.port(), second_.port()});
    configure({first_.port(), second_.port()});
    const FleetRun ended = run({"call", "home-*", "TarnGetLogLevel"});
    EXPECT_EQ(ended.exit, 0) << ended.err;
    EXPECT_THAT(ended.err, HasSubstr("10 gateways: 10 done"));
}

TEST_F(FailoverTest, ABrokerThatTakesConnectionsAndSaysNothingIsPassedOver)
{
    startHomes({second_.port()});
    first_.pause();
    configure({first_.port(), second_.port()});
    const FleetRun ended = run({"call", "home-01", "TarnGetLogLevel"});
    first_.resume();
    EXPECT_EQ(ended.exit, 0) << ended.err;
    EXPECT_THAT(ended.err, HasSubstr("1 gateway: 1 done"));
}

TEST_F(FailoverTest, ARunThatLosesItsBrokerIsFinishedWithTheOtherOne)
{
    constexpr unsigned kWindow = 2;
    startHomes({first_.port(), second_.port()}, 100);
    configure({first_.port(), second_.port()});
    DisturbedRun run(directory_, ledger_, 1, kGateways, kWindow);
    run.awaitExecutions(4);
    first_.kill();
    const DisturbedRun::Judgement judged = run.finish();
    EXPECT_EQ(judged.done + judged.unknown, kGateways);
    EXPECT_LE(judged.unknown, kWindow) << "no more than were under way";
}

// A cluster that clears up after a node may forget one.
TEST_F(FailoverTest, ASubscriptionIsMadeAgainOnTheSameConnection)
{
    const std::string log = directory_.path("log");
    const MosquittoBroker broker("listener @PORT@ 127.0.0.1\nallow_anonymous true\nlog_type all\nlog_dest file " + log + "\n");
    const Home home(linkOf(Home::nameOf(1), {broker.port()}), 1, &ledger_);
    const auto isTwiceThere = [](const std::string& text, const std::string& piece)
    { return text.find(piece) != text.rfind(piece); };
    const std::string line = "Received SUBSCRIBE from home-01";
    for (int look = 0; look < 200 && !isTwiceThere(contents(log), line); ++look)
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_TRUE(isTwiceThere(contents(log), line));
    EXPECT_EQ(home.counters().births, 1u);
}

// Without a connection an operator reads why. All at the same time, since tarn-fleet tries for 10 s.
TEST_F(FailoverTest, WhyThereIsNoConnectionIsSaidInASentence)
{
    // A broker that does not take a certificate says so and closes the connection, and its word may be lost with that.
    const auto orClosed = [](const char* text) -> std::string
    { return std::string("(") + text + "|the broker ended the connection, as it does if it does not take the certificate)"; };
    const TestAuthority foreign({"noc-1"}), late({}, TestAuthority::Validity::kExpired);
    const MosquittoBroker ofForeign(shippedConfiguration(foreign.directory())), ofLate(shippedConfiguration(late.directory()));
    first_.kill();
    const std::string untrusted = "TLS with the broker failed: certificate verify failed";
    const struct
    {
        std::uint16_t port;
        const TestAuthority &from, &trusted;
        const char* own;
        std::string why;
    } cases[] = {{first_.port(), *authority_, *authority_, "noc-1", "(Connection refused|no TCP connection)"},
                 {second_.port(), *authority_, *authority_, "late-1", orClosed("the broker refuses TLS: certificate expired")},
                 {second_.port(), foreign, *authority_, "noc-1", orClosed("the broker refuses TLS: unknown ca")},
                 {ofForeign.port(), *authority_, *authority_, "noc-1", untrusted},
                 {ofLate.port(), *authority_, late, "noc-1", untrusted},
                 {second_.port(), *authority_, *authority_, "nobody", "the files of the certificates cannot be read"}};
    std::deque<tarn::test::TemporaryDirectory> directories;
    std::vector<FleetProcess> runs;
    for (const auto& each : cases)
    {
        tarn::fleet::LinkSettings client = linkOf(each.own, {each.port});
        each.from.setCertificate(client, each.own);
        each.trusted.setTrust(client);
        configure(directories.emplace_back(), client);
        runs.emplace_back(directories.back(), std::vector<std::string>{"list"});
    }
    for (std::size_t at = 0; at < runs.size(); ++at)
    {
        const FleetRun ended = runs[at].finish();
        EXPECT_EQ(ended.exit, kNoConnection);
        EXPECT_EQ(ended.out, "");
        EXPECT_THAT(ended.err, MatchesRegex("tarn-fleet: no connection to the broker 127.0.0.1: " + cases[at].why + "\n"));
    }
}

} // namespace
} // namespace fleet_test
