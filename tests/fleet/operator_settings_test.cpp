// Where tarn-fleet has its settings from, and which of them holds.
#include "fleet/operator_settings.h"

#include "support/temporary_directory.h"
#include "tarnctl/usage_error.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace tarn::fleet;
using ::testing::HasSubstr;

class OperatorSettingsTest : public ::testing::Test
{
protected:
    OperatorSettingsTest()
    {
        setenv("HOME", directory_.path().c_str(), 1); // no settings of whoever runs the test
        unsetenv("TARN_FLEET");
    }
    std::string file(const std::string& name, const std::string& lines) const
    {
        std::string path = directory_.path(name);
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path) << lines;
        return path;
    }
    static std::string problemOf(const OperatorOptions& options)
    {
        try
        {
            linkSettings(options);
        }
        catch (const tarn::ctl::UsageError& error)
        {
            return error.what();
        }
        return "";
    }

private:
    const tarn::test::TemporaryDirectory directory_;
};

TEST_F(OperatorSettingsTest, WhatTheCommandLineSaysHoldsOverTheFileAndTheFileOverWhatIsUsual)
{
    OperatorOptions options;
    options.file = file("settings", "broker one\nbroker two\nid noc-1\nkeep-alive 60\n");
    const LinkSettings fromFile = linkSettings(options);
    ASSERT_EQ(fromFile.brokerCount, 2u);
    EXPECT_STREQ(fromFile.brokers[1].host, "two");
    EXPECT_STREQ(fromFile.clientId, "noc-1");
    EXPECT_EQ(fromFile.keepAlive, 60);

    options.brokers = {"three:1"};
    options.id = "noc-2";
    const LinkSettings overridden = linkSettings(options);
    ASSERT_EQ(overridden.brokerCount, 1u) << "in their place, not behind them";
    EXPECT_STREQ(overridden.brokers[0].host, "three");
    EXPECT_STREQ(overridden.clientId, "noc-2");
    EXPECT_EQ(overridden.keepAlive, 60) << "as in the file";

    options.file = file("short", "broker one\n");
    EXPECT_EQ(linkSettings(options).keepAlive, 30);
    options.keepAlive = "10";
    EXPECT_EQ(linkSettings(options).keepAlive, 10);
}

TEST_F(OperatorSettingsTest, EachOptionOfTheCommandLineOverridesItsLine)
{
    OperatorOptions options;
    options.file = file("settings", "broker one\nid noc-1\ncafile a\ncert b\nkey c\n");
    options.authorities = "d";
    options.certificate = "e";
    options.key = "f";
    const LinkSettings link = linkSettings(options);
    EXPECT_STREQ(link.authorities, "d");
    EXPECT_STREQ(link.certificate, "e");
    EXPECT_STREQ(link.key, "f");
    EXPECT_EQ(link.brokers[0].port, 8883);
}

TEST_F(OperatorSettingsTest, TheFileIsTheOneNamedElseThatOfTheVariableElseTheUsersOwn)
{
    OperatorOptions options;
    file(".config/tarn/fleet.conf", "broker own\n");
    EXPECT_STREQ(linkSettings(options).brokers[0].host, "own");
    setenv("TARN_FLEET", file("variable", "broker variable\n").c_str(), 1);
    EXPECT_STREQ(linkSettings(options).brokers[0].host, "variable");
    options.file = file("named", "broker named\n");
    EXPECT_STREQ(linkSettings(options).brokers[0].host, "named");
}

TEST_F(OperatorSettingsTest, AFileThatIsNamedHasToBeThere)
{
    OperatorOptions options;
    options.brokers = {"one"};
    options.file = "/nowhere/fleet.conf";
    EXPECT_THAT(problemOf(options), HasSubstr("/nowhere/fleet.conf"));
    options.file.reset();
    setenv("TARN_FLEET", "/nowhere/variable.conf", 1);
    EXPECT_THAT(problemOf(options), HasSubstr("/nowhere/variable.conf"));
}

TEST_F(OperatorSettingsTest, WhatIsWrongIsSaidWithItsPlaceAndWhatWasExpected)
{
    OperatorOptions options;
    options.file = file("settings", "broker one\npolicy reads\n");
    EXPECT_THAT(problemOf(options), HasSubstr("settings:2: expected one of id, broker, cafile, cert, key and keep-alive"));
    options.file = file("settings", "");
    EXPECT_THAT(problemOf(options), HasSubstr("expected --broker HOST, or a line \"broker HOST\" in the file"));
    options.brokers = {"one"};
    options.keepAlive = "4";
    EXPECT_EQ(problemOf(options), "keep-alive: expected a number from 5 to 3600, not 4");
}

TEST_F(OperatorSettingsTest, WithoutACertificateEachProcessHasANameOfItsOwn)
{
    OperatorOptions options;
    options.brokers = {"one"};
    EXPECT_THAT(linkSettings(options).clientId, HasSubstr("-" + std::to_string(getpid())));
    options.authorities = "a";
    options.certificate = "c";
    options.key = "k";
    EXPECT_EQ(problemOf(options), "id: expected the operator's name");
}

} // namespace
