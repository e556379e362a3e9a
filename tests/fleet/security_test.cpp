// A broker's configuration that is shipped, with certificates: who can do what. The same tests for each broker.
#include "commands.h"
#include "link.h"
#include "operator.h"
#include "secured_broker.h"
#include "test_authority.h"

#include "fleet/bridge.h"

#include <atomic>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace fleet_test
{
namespace
{

using namespace tarn::fleet;

// Two authorities and their certificates, and the broker, made once for all tests.
class SecurityTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        authority_ = std::make_unique<TestAuthority>(std::vector<std::string>{"home-1", "home-2", "noc-1", "noc-2"});
        authority_->certify({"home-3"}, TestAuthority::Validity::kExpired);
        foreign_ = std::make_unique<TestAuthority>(std::vector<std::string>{"home-1"});
        broker_ = makeSecuredBroker(authority_->directory(), {"home-1", "home-2", "home-3"});
    }
    static void TearDownTestSuite()
    {
        broker_.reset();
        foreign_.reset();
        authority_.reset();
    }

    // Of a client that calls itself `id` and trusts the broker's authority; it has no certificate yet.
    static LinkSettings settingsWithoutCertificate(const std::string& id)
    {
        LinkSettings settings = linkOf(id, {broker_->port()});
        authority_->setTrust(settings);
        return settings;
    }
    // Of one with the certificate of `name`.
    static LinkSettings settings(const std::string& name, const std::string& id)
    {
        LinkSettings settings = settingsWithoutCertificate(id);
        authority_->setCertificate(settings, name);
        return settings;
    }
    static LinkSettings settings(const std::string& name)
    {
        return settings(name, name);
    }

    static void connect(Operator& client)
    {
        ASSERT_TRUE(client.await([&] { return client.isConnected(); })) << client.reason();
    }

    // Lets this gateway say what it may until the operator hears it, whose subscription may take a moment: whatever the gateway
    // was denied before is settled then. Some brokers end the connection of whoever tries what it may not.
    static std::optional<Arrived> hear(Operator& gateway, const std::string& topic, Kind kind, Operator& noc)
    {
        std::optional<Arrived> arrived;
        for (int attempt = 0; attempt < 100 && !arrived; ++attempt)
        {
            gateway.sendBytes(topic, encoded(sample(kind)));
            arrived = noc.take(kind, std::chrono::milliseconds(200));
        }
        return arrived;
    }
    static std::optional<Arrived> hearEventOf(Operator& gateway, const std::string& name, Operator& noc)
    {
        return hear(gateway, eventTopic(name.c_str(), "TARN").text, Kind::kEvent, noc);
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

    static inline std::unique_ptr<TestAuthority> authority_, foreign_;
    static inline std::unique_ptr<SecuredBroker> broker_;
    BridgeSettings bridgeSettings_;
    std::atomic<int> calls_{0};
    std::unique_ptr<Bridge> bridge_;
};

TEST_F(SecurityTest, AGatewayAndItsOperatorGetThrough)
{
    Operator noc(settings("noc-1"));
    connect(noc);
    startBridge();
    EXPECT_TRUE(noc.take(Kind::kBirth));
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
    bridge_->stop();
    EXPECT_TRUE(noc.take(Kind::kWill));
}

TEST_F(SecurityTest, ABrokerThatIsRestartedIsFoundAgainWithTls)
{
    startBridge();
    Operator noc(settings("noc-1"));
    connect(noc);
    ASSERT_TRUE(noc.ping("home-1"));
    broker_->kill();
    broker_->start();
    ASSERT_TRUE(noc.ping("home-1"));
    EXPECT_TRUE(noc.call("home-1", noc.request("TARN", kGetRadioNum, kLong)));
}

TEST_F(SecurityTest, AGatewayCannotAnswerAsAnother)
{
    Operator noc(settings("noc-1")), forger(settings("home-2"), Hearing::kNothing);
    connect(noc);
    const auto arrived = hear(forger, replyTopic("noc-1", "home-2").text, Kind::kReply, noc); // as itself it can
    ASSERT_TRUE(arrived);
    EXPECT_EQ(arrived->topic, "tarn/1/op/noc-1/re/home-2");
    forger.sendBytes(replyTopic("noc-1", "home-1").text, encoded(sample(Kind::kReply)));
    ASSERT_TRUE(hearEventOf(forger, "home-2", noc));
    const auto isOfHome1 = [](const Arrived& each) { return each.topic == "tarn/1/op/noc-1/re/home-1"; };
    EXPECT_FALSE(noc.take(isOfHome1, std::chrono::milliseconds(50)));
}

TEST_F(SecurityTest, AGatewayCannotSpeakOfAnothersStateOrEvents)
{
    Operator noc(settings("noc-1")), forger(settings("home-2"), Hearing::kNothing);
    connect(noc);
    const auto isOfHome1 = [](const Arrived& each) { return each.topic.find("home-1") != std::string::npos; };
    while (noc.take(isOfHome1, std::chrono::milliseconds(100)))
        ; // its birth may be retained
    forger.sendBytes(stateTopic("home-1").text, encoded(sample(Kind::kBirth)));
    ASSERT_TRUE(hearEventOf(forger, "home-2", noc));
    forger.sendBytes(eventTopic("home-1", "TARN").text, encoded(sample(Kind::kEvent)));
    const auto arrived = hearEventOf(forger, "home-2", noc);
    ASSERT_TRUE(arrived);
    EXPECT_EQ(arrived->topic, "tarn/1/gw/home-2/ev/TARN");
    EXPECT_FALSE(noc.take(isOfHome1, std::chrono::milliseconds(50)));
}

TEST_F(SecurityTest, AGatewayCanNeitherAskNorHearWhatIsAskedOfAnother)
{
    startBridge();
    Operator noc(settings("noc-1")), other(settings("home-2"), Hearing::kNothing);
    connect(noc);
    for (const char* const filter : {"tarn/1/gw/home-1/rq", "tarn/1/gw/+/rq", "tarn/1/gw/#", "#"})
    {
        connect(other);
        other.subscribe(filter);
        ASSERT_TRUE(hearEventOf(other, "home-2", noc));
    }
    ASSERT_TRUE(noc.ping("home-1"));
    Envelope forged = noc.request("TARN", kGetRadioNum, kLong);
    other.sendBytes(requestTopic("home-1").text, encoded(forged));
    ASSERT_TRUE(hearEventOf(other, "home-2", noc));
    forged.sequence += 1;
    ASSERT_TRUE(noc.call("home-1", forged)) << "the operator's own is carried out";
    EXPECT_EQ(calls_, 1);
    EXPECT_FALSE(other.take([](const Arrived&) { return true; }, std::chrono::milliseconds(50)));
}

TEST_F(SecurityTest, AnOperatorCannotHearWhatAnotherOneIsTold)
{
    startBridge();
    Operator first(settings("noc-1")), second(settings("noc-2"));
    connect(first);
    for (const char* const filter : {"tarn/1/op/noc-1/re/+", "tarn/1/op/+/re/+", "#"})
    {
        ASSERT_TRUE(second.ping("home-1"));
        second.subscribe(filter);
        second.await([] { return false; }, std::chrono::milliseconds(50));
        ASSERT_TRUE(first.ping("home-1"));
        ASSERT_TRUE(first.call("home-1", first.request("TARN", kGetRadioNum, kLong)));
        EXPECT_FALSE(second.take(Kind::kReply, std::chrono::milliseconds(50))) << filter;
        EXPECT_FALSE(second.take(Kind::kPong, std::chrono::milliseconds(0))) << filter;
    }
    ASSERT_TRUE(second.ping("home-1"));
    EXPECT_TRUE(second.call("home-1", second.request("TARN", kGetRadioNum, kLong)));
}

// Where the broker leaves the id to the client, one with another's id takes its connection away, but not its place: it hears
// and says only what its certificate allows, and the other one connects again.
TEST_F(SecurityTest, AClientIdThatIsNotTheCertificatesTakesNobodysPlace)
{
    startBridge();
    Operator noc(settings("noc-1"));
    connect(noc);
    ASSERT_TRUE(noc.ping("home-1"));
    {
        Operator imposter(settings("home-2", "home-1"), Hearing::kNothing);
        connect(imposter);
        imposter.subscribe(requestTopic("home-1").text);
        imposter.sendBytes(replyTopic("noc-1", "home-1").text, encoded(sample(Kind::kReply)));
        ASSERT_TRUE(hearEventOf(imposter, "home-2", noc));
        EXPECT_FALSE(noc.take(Kind::kReply, std::chrono::milliseconds(50)));
        EXPECT_FALSE(imposter.take([](const Arrived&) { return true; }, std::chrono::milliseconds(50)));
    }
    ASSERT_TRUE(noc.ping("home-1"));
    EXPECT_TRUE(noc.call("home-1", noc.request("TARN", kGetRadioNum, kLong)));
    if (broker_->namesClients())
    {
        EXPECT_EQ(bridge_->counters().births, 1u) << "the gateway's connection was not touched";
    }
}

TEST_F(SecurityTest, WhoeverHasNoGoodCertificateDoesNotGetIn)
{
    EXPECT_NE(refusalOf(settings("home-3")), "") << "it has expired";
    LinkSettings client = settingsWithoutCertificate("home-1");
    EXPECT_NE(refusalOf(client), "") << "there is none";
    foreign_->setCertificate(client, "home-1");
    EXPECT_NE(refusalOf(client), "") << "the broker does not trust its authority";
    EXPECT_EQ(refusalOf(settings("home-9")), "the files of the certificates cannot be read");
}

TEST_F(SecurityTest, ABrokerOfAnotherAuthorityIsNotTrusted)
{
    LinkSettings client = settings("home-1");
    foreign_->setTrust(client);
    EXPECT_NE(refusalOf(client), "");
}

TEST_F(SecurityTest, ABrokerIsNotTrustedByANameThatItsCertificateDoesNotHave)
{
    LinkSettings client = settings("home-1");
    std::snprintf(client.brokers[0].host, sizeof client.brokers[0].host, "127.1"); // is resolved as 127.0.0.1
    EXPECT_EQ(refusalOf(client), "TLS with the broker failed: certificate verify failed");
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
