// tarn-fleet with two brokers and with certificates: what it does without the first broker, and what it says of a connection
// that cannot be.
#include "broker.h"
#include "disturbed_run.h"
#include "home.h"
#include "link.h"

#include "support/services.h"

#include <deque>
#include <filesystem>
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

// Two brokers that know nothing of one another. Each gateway and the operator has a certificate of authority `a`; `b` is
// another one.
class FailoverTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        char path[] = "/tmp/tarn_failover-XXXXXX";
        ASSERT_NE(mkdtemp(path), nullptr);
        certificates_ = path;
        const std::string script = std::string(PACKAGING) + "/make-test-authority ";
        std::string names = "noc-1";
        for (unsigned number = 1; number <= kGateways; ++number)
            names += " " + Home::nameOf(number);
        ASSERT_EQ(std::system((script + certificates_ + "/a " + names).c_str()), 0);
        ASSERT_EQ(std::system((script + "--expired " + certificates_ + "/a late-1").c_str()), 0);
        ASSERT_EQ(std::system((script + certificates_ + "/b noc-1").c_str()), 0);
        ASSERT_EQ(std::system((script + "--expired " + certificates_ + "/late noc-1").c_str()), 0);
    }
    static void TearDownTestSuite()
    {
        std::filesystem::remove_all(certificates_);
    }

    static std::string configuration(const std::string& authority)
    {
        const std::string shipped = contents(std::string(PACKAGING) + "/mosquitto/tarn.conf");
        const std::string list = std::string(PACKAGING) + "/mosquitto/access-list";
        return replaced(replaced(replaced(shipped, "/etc/mosquitto/tarn/access-list", list), "/etc/mosquitto/tarn",
                                 certificates_ + "/" + authority),
                        "listener 8883", "listener @PORT@ 127.0.0.1");
    }
    // The operator's settings in a directory: the brokers at these ports, and the certificate `own` made by the authority
    // `from`.
    static void configure(const std::string& directory, const std::vector<std::uint16_t>& ports,
                          const std::string& own = "noc-1", const std::string& from = "a", const std::string& trusted = "a")
    {
        std::ofstream file(directory + "/fleet.conf");
        for (const std::uint16_t port : ports)
            file << "broker localhost:" << port << "\n";
        const std::string path = certificates_ + "/" + from + "/" + own;
        file << "cafile " << certificates_ << "/" << trusted << "/ca.pem\n"
             << "cert " << path << ".pem\nkey " << path << ".key\nid " << own << "\n";
    }
    void startHomes(const std::vector<std::uint16_t>& ports, std::uint32_t milliseconds = 0)
    {
        for (unsigned number = 1; number <= kGateways; ++number)
        {
            const std::string name = Home::nameOf(number);
            tarn::fleet::LinkSettings link = linkOf(name, ports);
            secure(link, certificates_ + "/a/ca.pem", certificates_ + "/a/" + name);
            homes_.push_back(std::make_unique<Home>(link, number, &ledger_));
            homes_.back()->milliseconds = milliseconds;
        }
        for (const auto& home : homes_)
            home->awaitConnection();
    }
    FleetRun run(const std::string& arguments) const
    {
        return runFleet(directory_.path(), arguments);
    }
    static inline std::string certificates_;
    const tarn::test::TemporaryRuntimeDirectory directory_;
    const Ledger ledger_{directory_.path() + "/ledger"};
    MosquittoBroker first_{configuration("a")}, second_{configuration("a")};
    std::vector<std::unique_ptr<Home>> homes_;
};

TEST_F(FailoverTest, ABrokerThatIsNotThereAtTheStartIsPassedOver)
{
    first_.kill();
    startHomes({first_.port(), second_.port()});
    configure(directory_.path(), {first_.port(), second_.port()});
    const FleetRun ended = run("call 'home-*' TarnGetLogLevel");
    EXPECT_EQ(ended.exit, 0) << ended.err;
    EXPECT_THAT(ended.err, HasSubstr("10 gateways: 10 done"));
}

TEST_F(FailoverTest, ABrokerThatTakesConnectionsAndSaysNothingIsPassedOver)
{
    startHomes({second_.port()});
    first_.pause();
    configure(directory_.path(), {first_.port(), second_.port()});
    const FleetRun ended = run("call home-01 TarnGetLogLevel");
    first_.resume();
    EXPECT_EQ(ended.exit, 0) << ended.err;
    EXPECT_THAT(ended.err, HasSubstr("1 gateway: 1 done"));
}

TEST_F(FailoverTest, ARunThatLosesItsBrokerIsFinishedWithTheOtherOne)
{
    constexpr unsigned kWindow = 2;
    startHomes({first_.port(), second_.port()}, 100);
    configure(directory_.path(), {first_.port(), second_.port()});
    DisturbedRun run(directory_.path(), ledger_, 1, kGateways, kWindow);
    run.awaitExecutions(4);
    first_.kill();
    const DisturbedRun::Judgement judged = run.finish();
    EXPECT_EQ(judged.done + judged.unknown, kGateways);
    EXPECT_LE(judged.unknown, kWindow) << "no more than were under way";
}

// A cluster that clears up after a node may forget one.
TEST_F(FailoverTest, ASubscriptionIsMadeAgainOnTheSameConnection)
{
    const std::string log = directory_.path() + "/log";
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
    const MosquittoBroker foreign(configuration("b")), late(configuration("late"));
    first_.kill();
    const std::string untrusted = "TLS with the broker failed: certificate verify failed";
    const struct
    {
        std::uint16_t port;
        const char *own, *from, *trusted;
        std::string why;
    } cases[] = {{first_.port(), "noc-1", "a", "a", "(Connection refused|no TCP connection)"},
                 {second_.port(), "late-1", "a", "a", orClosed("the broker refuses TLS: certificate expired")},
                 {second_.port(), "noc-1", "b", "a", orClosed("the broker refuses TLS: unknown ca")},
                 {foreign.port(), "noc-1", "a", "a", untrusted},
                 {late.port(), "noc-1", "a", "late", untrusted},
                 {second_.port(), "nobody", "a", "a", "the files of the certificates cannot be read"}};
    std::deque<tarn::test::TemporaryRuntimeDirectory> directories;
    std::vector<std::future<FleetRun>> runs;
    for (const auto& each : cases)
    {
        const std::string& directory = directories.emplace_back().path();
        configure(directory, {each.port}, each.own, each.from, each.trusted);
        runs.push_back(beginFleet(directory, "list"));
    }
    for (std::size_t at = 0; at < runs.size(); ++at)
    {
        const FleetRun ended = runs[at].get();
        EXPECT_EQ(ended.exit, kNoConnection);
        EXPECT_EQ(ended.out, "");
        EXPECT_THAT(ended.err, MatchesRegex("tarn-fleet: no connection to the broker localhost: " + cases[at].why + "\n"));
    }
}

} // namespace
} // namespace fleet_test
