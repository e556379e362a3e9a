// The broker's configuration that is shipped, with certificates: who can do what.
#include "broker.h"
#include "operator.h"

#include "fleet/bridge.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace fleet_test
{
namespace
{

using namespace tarn::fleet;
constexpr std::uint32_t kGetRadioNum = 5, kLong = 9584; // of TARN

std::string textOf(const std::string& path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string replaced(std::string text, const std::string& piece, const std::string& other)
{
    EXPECT_NE(text.find(piece), std::string::npos) << piece;
    for (std::size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + other.size()))
        text.replace(at, piece.size(), other);
    return text;
}

// Two authorities and their certificates, made once for all tests.
class SecurityTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        char path[] = "/tmp/tarn_authority-XXXXXX";
        ASSERT_NE(mkdtemp(path), nullptr);
        directory_ = path;
        const std::string script = std::string(PACKAGING) + "/make-test-authority ";
        ASSERT_EQ(std::system((script + directory_ + "/a home-1 home-2 noc-1 noc-2").c_str()), 0);
        ASSERT_EQ(std::system((script + "--expired " + directory_ + "/a home-3").c_str()), 0);
        ASSERT_EQ(std::system((script + directory_ + "/b home-1").c_str()), 0);
        const std::string list = textOf(std::string(PACKAGING) + "/mosquitto/access-list");
        const std::string second = replaced(list.substr(list.find("user noc-1")), "noc-1", "noc-2");
        std::ofstream(directory_ + "/a/access-list") << list << second;
    }
    static void TearDownTestSuite()
    {
        std::filesystem::remove_all(directory_);
    }

    static std::string configuration()
    {
        const std::string shipped = textOf(std::string(PACKAGING) + "/mosquitto/tarn.conf");
        return replaced(replaced(shipped, "/etc/mosquitto/tarn", directory_ + "/a"), "listener 8883",
                        "listener @PORT@ 127.0.0.1");
    }

    // Of a client that has the certificate of `name` from authority `from`, trusts the one of `trusted`, and calls itself `id`.
    LinkSettings settings(const std::string& name, const std::string& id, const std::string& from = "a",
                          const std::string& trusted = "a") const
    {
        LinkSettings settings;
        std::snprintf(settings.clientId, sizeof settings.clientId, "%s", id.c_str());
        std::snprintf(settings.brokers[0].host, sizeof settings.brokers[0].host, "127.0.0.1");
        settings.brokers[0].port = broker_.port();
        settings.brokerCount = 1;
        settings.firstPause = 50;
        settings.longestPause = 200;
        std::snprintf(settings.authorities, sizeof settings.authorities, "%s/%s/ca.pem", directory_.c_str(), trusted.c_str());
        if (!name.empty())
        {
            const std::string own = directory_ + "/" + from + "/" + name;
            std::snprintf(settings.certificate, sizeof settings.certificate, "%s.pem", own.c_str());
            std::snprintf(settings.key, sizeof settings.key, "%s.key", own.c_str());
        }
        return settings;
    }
    LinkSettings settings(const std::string& name) const
    {
        return settings(name, name);
    }

    static void connect(Operator& client)
    {
        ASSERT_TRUE(client.await([&] { return client.isConnected(); })) << client.reason();
    }

    // Why this client does not get in.
    static std::string refusalOf(const LinkSettings& settings)
    {
        Operator client(settings);
        EXPECT_TRUE(client.await([&] { return !client.reason().empty() || client.isConnected(); }));
        EXPECT_FALSE(client.isConnected());
        return client.reason();
    }

    void startBridge()
    {
        bridgeSettings_.link = settings("home-1");
        std::snprintf(bridgeSettings_.programVersion, sizeof bridgeSettings_.programVersion, "1");
        const BridgePlatform platform = {
            this,
            [](void* self, const char*, const char*, std::uint32_t, std::uint32_t, std::uint32_t, void*)
            {
                ++static_cast<SecurityTest*>(self)->calls_;
                return 0u;
            },
            nullptr};
        bridge_ = std::make_unique<Bridge>(bridgeSettings_, platform, Policy::ofReading());
        ASSERT_TRUE(bridge_->start());
    }

    static inline std::string directory_;
    MosquittoBroker broker_{configuration()};
    BridgeSettings bridgeSettings_;
    std::atomic<int> calls_{0};
    std::unique_ptr<Bridge> bridge_;
};

TEST_F(SecurityTest, AGatewayAndItsOperatorGetThrough)
{
    startBridge();
    Operator noc(settings("noc-1"));
    connect(noc);
    ASSERT_TRUE(noc.ping("home-1"));
    for (int call = 0; call < 20; ++call)
    {
        const Bytes message(kLong - 4, static_cast<std::uint8_t>(call + 1)); // more than a TLS record at once
        const auto reply = noc.call("home-1", noc.request("TARN", kGetRadioNum, kLong, message));
        ASSERT_TRUE(reply);
        EXPECT_EQ(reply->envelope.present, kLong - 4);
    }
    bridge_->publishEvent("TARN", 2, "\x01", 1);
    EXPECT_TRUE(noc.take(Kind::kEvent));
    EXPECT_TRUE(noc.take(Kind::kBirth));
    bridge_->stop();
    EXPECT_TRUE(noc.take(Kind::kWill));
}

TEST_F(SecurityTest, ABrokerThatIsRestartedIsFoundAgainWithTls)
{
    startBridge();
    Operator noc(settings("noc-1"));
    connect(noc);
    ASSERT_TRUE(noc.ping("home-1"));
    broker_.kill();
    broker_.start();
    ASSERT_TRUE(noc.ping("home-1"));
    EXPECT_TRUE(noc.call("home-1", noc.request("TARN", kGetRadioNum, kLong)));
}

TEST_F(SecurityTest, AGatewayCannotAnswerAsAnother)
{
    Operator noc(settings("noc-1")), forger(settings("home-2"));
    connect(noc);
    connect(forger);
    const Bytes reply = encoded(sample(Kind::kReply));
    forger.sendBytes(replyTopic("noc-1", "home-1").text, reply);
    forger.sendBytes(replyTopic("noc-1", "home-2").text, reply); // as itself it can
    const auto arrived = noc.take(Kind::kReply);
    ASSERT_TRUE(arrived);
    EXPECT_EQ(arrived->topic, "tarn/1/op/noc-1/re/home-2");
    EXPECT_FALSE(noc.take(Kind::kReply, std::chrono::milliseconds(50)));
}

TEST_F(SecurityTest, AGatewayCannotSpeakOfAnothersStateOrEvents)
{
    Operator noc(settings("noc-1")), forger(settings("home-2"));
    connect(noc);
    connect(forger);
    forger.sendBytes(stateTopic("home-1").text, encoded(sample(Kind::kBirth)));
    forger.sendBytes(eventTopic("home-1", "TARN").text, encoded(sample(Kind::kEvent)));
    forger.sendBytes(eventTopic("home-2", "TARN").text, encoded(sample(Kind::kEvent)));
    const auto arrived = noc.take([](const Arrived&) { return true; });
    ASSERT_TRUE(arrived);
    EXPECT_EQ(arrived->topic, "tarn/1/gw/home-2/ev/TARN");
}

TEST_F(SecurityTest, AGatewayCanNeitherAskNorHearWhatIsAskedOfAnother)
{
    startBridge();
    Operator noc(settings("noc-1")), other(settings("home-2"));
    connect(noc);
    connect(other);
    other.subscribe(requestTopic("home-1").text);
    other.subscribe("tarn/1/gw/+/rq");
    other.subscribe("#");
    ASSERT_TRUE(noc.ping("home-1"));
    Envelope forged = noc.request("TARN", kGetRadioNum, kLong);
    other.sendBytes(requestTopic("home-1").text, encoded(forged));
    forged.sequence += 1;
    ASSERT_TRUE(noc.call("home-1", forged)) << "the operator's own is carried out";
    other.await([] { return false; }, std::chrono::milliseconds(50));
    EXPECT_EQ(calls_, 1);
    EXPECT_FALSE(other.take([](const Arrived&) { return true; }, std::chrono::milliseconds(0)));
}

TEST_F(SecurityTest, AnOperatorCannotHearWhatAnotherOneIsTold)
{
    startBridge();
    Operator first(settings("noc-1")), second(settings("noc-2"));
    connect(first);
    connect(second);
    second.subscribe("tarn/1/op/noc-1/re/+");
    second.subscribe("tarn/1/op/+/re/+");
    ASSERT_TRUE(first.ping("home-1"));
    ASSERT_TRUE(first.call("home-1", first.request("TARN", kGetRadioNum, kLong)));
    EXPECT_FALSE(second.take(Kind::kReply, std::chrono::milliseconds(50)));
    EXPECT_FALSE(second.take(Kind::kPong, std::chrono::milliseconds(0)));
    ASSERT_TRUE(second.ping("home-1"));
    EXPECT_TRUE(second.call("home-1", second.request("TARN", kGetRadioNum, kLong)));
}

TEST_F(SecurityTest, AClientIdThatIsNotTheCertificatesTakesNobodysPlace)
{
    startBridge();
    Operator noc(settings("noc-1"));
    connect(noc);
    ASSERT_TRUE(noc.ping("home-1"));
    Operator imposter(settings("home-2", "home-1"));
    connect(imposter);
    imposter.sendBytes(replyTopic("noc-1", "home-1").text, encoded(sample(Kind::kReply)));
    imposter.sendBytes(replyTopic("noc-1", "home-2").text, encoded(sample(Kind::kReply)));
    const auto arrived = noc.take(Kind::kReply);
    ASSERT_TRUE(arrived);
    EXPECT_EQ(arrived->topic, "tarn/1/op/noc-1/re/home-2");
    ASSERT_TRUE(noc.ping("home-1"));
    EXPECT_EQ(bridge_->counters().births, 1u) << "the gateway's connection was not touched";
}

TEST_F(SecurityTest, WhoeverHasNoGoodCertificateDoesNotGetIn)
{
    EXPECT_NE(refusalOf(settings("home-3")), "") << "it has expired";
    EXPECT_NE(refusalOf(settings("", "home-1")), "") << "there is none";
    EXPECT_NE(refusalOf(settings("home-1", "home-1", "b")), "") << "the broker does not trust its authority";
    EXPECT_EQ(refusalOf(settings("home-9")), "the files of the certificates cannot be read");
}

TEST_F(SecurityTest, ABrokerOfAnotherAuthorityIsNotTrusted)
{
    EXPECT_NE(refusalOf(settings("home-1", "home-1", "a", "b")), "");
}

TEST_F(SecurityTest, AReplyThatNobodyAskedForDoesAGatewayNoHarm)
{
    startBridge();
    Operator noc(settings("noc-1"));
    connect(noc);
    ASSERT_TRUE(noc.ping("home-1"));
    for (const Kind kind : {Kind::kReply, Kind::kEvent, Kind::kBirth, Kind::kWill, Kind::kPong})
        noc.sendBytes(requestTopic("home-1").text, encoded(sample(kind)));
    EXPECT_TRUE(noc.call("home-1", noc.request("TARN", kGetRadioNum, kLong)));
    EXPECT_EQ(bridge_->counters().malformed, 5u);
    EXPECT_EQ(calls_, 1);
}

} // namespace
} // namespace fleet_test
