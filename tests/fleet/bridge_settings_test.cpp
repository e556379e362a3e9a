// What tarn-bridge is told, and what it says to what is wrong.
#include "fleet/bridge_settings.h"

#include "support/temporary_directory.h"

#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace tarn::fleet;
using ::testing::StartsWith;

// The problem with these arguments, or nothing.
std::string read(std::vector<const char*> arguments, BridgeOptions& options)
{
    arguments.insert(arguments.begin(), "tarn-bridge");
    char problem[1024] = "";
    const bool isGood = readArguments(options, static_cast<int>(arguments.size()), arguments.data(), problem, sizeof problem);
    EXPECT_EQ(isGood, std::string(problem).empty()) << problem;
    return problem;
}

std::string problemOf(const std::vector<const char*>& arguments)
{
    BridgeOptions options;
    return read(arguments, options);
}

TEST(BridgeSettingsTest, ANameAndABrokerAreEnough)
{
    BridgeOptions options;
    EXPECT_EQ(read({"--id", "home-1", "--broker", "broker.example"}, options), "");
    EXPECT_STREQ(options.bridge.link.clientId, "home-1");
    ASSERT_EQ(options.bridge.link.brokerCount, 1u);
    EXPECT_STREQ(options.bridge.link.brokers[0].host, "broker.example");
    EXPECT_EQ(options.bridge.link.brokers[0].port, 1883);
    EXPECT_EQ(options.bridge.link.keepAlive, 30);
    EXPECT_EQ(options.renewSeconds, 5u);
    EXPECT_TRUE(options.isEvents);
}

TEST(BridgeSettingsTest, BrokersAreTriedInTheOrderGivenAndHaveTheUsualPorts)
{
    BridgeOptions options;
    EXPECT_EQ(read({"--broker", "a", "--broker", "b:1", "--broker", "[fd00::1]", "--broker", "[fd00::1]:65535", "--cafile",
                    "ca", "--cert", "c", "--key", "k", "--id", "g"},
                   options),
              "");
    const LinkSettings& link = options.bridge.link;
    ASSERT_EQ(link.brokerCount, 4u);
    EXPECT_EQ(link.brokers[0].port, 8883) << "with TLS";
    EXPECT_EQ(link.brokers[1].port, 1);
    EXPECT_STREQ(link.brokers[2].host, "fd00::1");
    EXPECT_EQ(link.brokers[2].port, 8883);
    EXPECT_EQ(link.brokers[3].port, 65535);
}

TEST(BridgeSettingsTest, WhatIsWrongIsSaid)
{
    EXPECT_EQ(problemOf({}), "id: expected the gateway's name");
    EXPECT_EQ(problemOf({"--id", "g"}), "broker: expected one or more");
    EXPECT_EQ(problemOf({"--id", "a/b"}), "id: expected 1 to 64 printable characters without space / + #, not a/b");
    for (const char* broker : {"", ":1", "a:", "a:0", "a:65536", "a:1x", "a:-1", "[a", "[]:1", "[a]1"})
        EXPECT_EQ(problemOf({"--broker", broker}),
                  std::string("broker: expected HOST, HOST:PORT or [ADDRESS]:PORT, not ") + broker);
    EXPECT_EQ(problemOf({"--broker", "a", "--broker", "a", "--broker", "a", "--broker", "a", "--broker", "a", "--broker", "a",
                         "--broker", "a", "--broker", "a", "--broker", "a"}),
              "broker: expected at most 8 of them");
    EXPECT_EQ(problemOf({"--id", "g", "--broker", "b", "--cert", "c", "--cafile", "f"}), "cert and key: expected both or none");
    EXPECT_EQ(problemOf({"--id", "g", "--broker", "b", "--cert", "c", "--key", "k"}), "cafile: expected with cert and key");
    EXPECT_EQ(problemOf({"--keep-alive", "4"}), "keep-alive: expected a number from 5 to 3600, not 4");
    EXPECT_EQ(problemOf({"--renew", "1s"}), "renew: expected a number from 0 to 3600, not 1s");
    EXPECT_EQ(problemOf({"--policy", ""}), "policy: expected 1 to 511 characters");
    EXPECT_EQ(problemOf({"--host", "a"}), "expected a setting of tarn-bridge --help, not host");
    EXPECT_EQ(problemOf({"id"}), "expected an option, not id");
    EXPECT_EQ(problemOf({"--id"}), "--id: expected an option of tarn-bridge --help, with its value");
}

TEST(BridgeSettingsTest, HelpAndVersionNeedNothingElse)
{
    BridgeOptions options;
    EXPECT_EQ(read({"--help"}, options), "");
    EXPECT_TRUE(options.isHelp);
    EXPECT_EQ(read({"--version"}, options), "");
    EXPECT_TRUE(options.isVersion);
}

class BridgeSettingsFileTest : public ::testing::Test
{
protected:
    std::string problemOfFile(const std::string& text)
    {
        std::ofstream(path_) << text;
        BridgeOptions options;
        return read({"--config", path_.c_str()}, options);
    }

    const tarn::test::TemporaryDirectory directory_;
    const std::string path_ = directory_.path("bridge.conf");
};

TEST_F(BridgeSettingsFileTest, HasTheSameWords)
{
    std::ofstream(path_)
        << "# this gateway\nid home-1\n\n  broker   broker-1.example:8883  # the nearer one\r\nbroker broker-2.example\n"
           "cafile /etc/tarn/with space/ca.pem\nno-events\nkeep-alive 60";
    BridgeOptions options;
    EXPECT_EQ(read({"--config", path_.c_str(), "--renew", "0"}, options), "");
    EXPECT_STREQ(options.bridge.link.clientId, "home-1");
    ASSERT_EQ(options.bridge.link.brokerCount, 2u);
    EXPECT_STREQ(options.bridge.link.brokers[0].host, "broker-1.example");
    EXPECT_STREQ(options.bridge.link.authorities, "/etc/tarn/with space/ca.pem");
    EXPECT_EQ(options.bridge.link.keepAlive, 60);
    EXPECT_FALSE(options.isEvents);
}

TEST_F(BridgeSettingsFileTest, IsRefusedWithTheLineThatIsWrong)
{
    EXPECT_EQ(problemOfFile("id g\nkeep-alive soon\n"), path_ + ":2: keep-alive: expected a number from 5 to 3600, not soon");
    EXPECT_EQ(problemOfFile("id\n"), path_ + ":1: id: expected 1 to 64 printable characters without space / + #, not ");
    EXPECT_EQ(problemOfFile("config other\n"), path_ + ":1: expected a setting of tarn-bridge --help, not config");
    EXPECT_EQ(problemOfFile("no-events yes\n"), path_ + ":1: expected a setting of tarn-bridge --help, not no-events");
    EXPECT_THAT(problemOfFile("id " + std::string(2000, 'x') + "\n"),
                StartsWith(path_ + ":1: expected at most 1023 characters"));
    EXPECT_EQ(problemOf({"--config", "/nonexistent"}), "/nonexistent: No such file or directory; expected a file of settings");
}

} // namespace
