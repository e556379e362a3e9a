// What `tarnctl complete` offers for a command line.
#include "support.h"
#include "tarnctl/catalogue.h"

#include <future>
#include <set>
#include <sstream>

namespace tarnctl_test
{

namespace
{

using Offers = std::set<std::string>;

class CompletionTest : public TarnctlTest
{
protected:
    // What completes the last of these words.
    static Offers offered(const Words& words)
    {
        Words arguments = {"complete", "--"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        const Ran ran = run(arguments);
        EXPECT_EQ(ran.exit, 0);
        EXPECT_EQ(ran.err, "");
        Offers offers;
        std::istringstream lines(ran.out);
        for (std::string line; std::getline(lines, line);)
            offers.insert(line.substr(0, line.find('\t')));
        return offers;
    }
};

// With a layout, and nobody to ask.
class CompletionByLayoutTest : public CompletionTest
{
protected:
    static Offers offered(Words words)
    {
        words.insert(words.begin(), {"--layout", TARN_GATEWAY_LAYOUT});
        return CompletionTest::offered(words);
    }
};

// With the simulated gateway.
class CompletionByGatewayTest : public CompletionTest
{
protected:
    void SetUp() override
    {
        CompletionTest::SetUp();
        gateway_ = std::make_unique<Program>(Words{}, TARN_GATEWAY_PROGRAM);
        for (std::string line; line.rfind("ready", 0) != 0;)
            ASSERT_NE(line = gateway_->nextLine(), "");
    }

private:
    std::unique_ptr<Program> gateway_;
};

TEST_F(CompletionTest, OffersTheCommandsThatTheHelpShows)
{
    const std::string help = run({"--help"}).out;
    const Offers commands = offered({""});
    EXPECT_GT(commands.size(), 10u);
    for (const std::string& command : commands)
        EXPECT_NE(help.find("\n  " + command + " "), std::string::npos) << command;
    EXPECT_EQ(offered({"rad"}), Offers{"radios"});
    EXPECT_EQ(offered({"complet"}), Offers{"completion"}) << "complete itself is for scripts";
    EXPECT_EQ(offered({"help", "tel"}), Offers{"telnet"});
}

TEST_F(CompletionTest, TellsTheValueOfAnOptionFromACommand)
{
    EXPECT_EQ(offered({"--json", "tel"}), Offers{"telnet"});
    EXPECT_EQ(offered({"--directory", "call", "tel"}), Offers{"telnet"});
    EXPECT_EQ(offered({"--directory=call", "tel"}), Offers{"telnet"});
    EXPECT_EQ(offered({"call", "--caller", "me", "tarnVal"}), Offers{"tarnValidatePinCode"});
}

TEST_F(CompletionTest, OffersTheWordsOfOrders)
{
    EXPECT_EQ(offered({"gateway", "re"}), Offers{"reboot"});
    EXPECT_EQ(offered({"gateway", "station", ""}), (Offers{"add", "move", "remove"}));
    EXPECT_EQ(offered({"gateway", "station", "add", ""}), (Offers{"address=", "ssid=", "passphrase=", "pathLoss="}));
    EXPECT_EQ(offered({"gateway", "station", "add", "ssid=home", "p"}), (Offers{"passphrase=", "pathLoss="}));
    EXPECT_EQ(offered({"gateway", "log", ""}), (Offers{"on", "off"}));
    EXPECT_EQ(offered({"gateway", "step", ""}), Offers{"next"});
    EXPECT_EQ(offered({"gateway", "faults", "add", "event"}), (Offers{"eventLost", "eventDoubled", "eventLate"}));
    EXPECT_EQ(offered({"gateway", "faults", "add", "delay", "m"}), Offers{"milliseconds="});
    EXPECT_EQ(offered({"gateway", "faults", "add", "delay", "function=TarnGetLogL"}), Offers{"function=TarnGetLogLevel"});
    EXPECT_EQ(offered({"gateway", "faults", "add", "delay", "count=1", "service=Q"}),
              (Offers{"service=QTN_MIRROR", "service=QTN_RPC_PROXY"}));
    EXPECT_EQ(offered({"gateway", "radar", "52", ""}), Offers{});
    EXPECT_EQ(offered({"gateway", "nonsense", ""}), Offers{});
}

TEST_F(CompletionTest, OffersOptionsAndTheirValues)
{
    EXPECT_EQ(offered({"call", "--d"}), (Offers{"--directory", "--dry-run"}));
    EXPECT_EQ(offered({"events", "--co"}), (Offers{"--color", "--count"}));
    EXPECT_EQ(offered({"--vers"}), Offers{"--version"});
    EXPECT_EQ(offered({"events", "--count", ""}), Offers{});
    EXPECT_EQ(offered({"--format", ""}), (Offers{"csv", "json", "table"}));
    EXPECT_EQ(offered({"radios", "--format=c"}), Offers{"--format=csv"});
    EXPECT_EQ(offered({"--layout", "x"}), Offers{"<file>"});
    EXPECT_EQ(offered({"metrics", "--textfile", "x"}), Offers{"<file>"});
    EXPECT_EQ(offered({"report", "--json", "x"}), Offers{"<file>"});
    EXPECT_EQ(offered({"report", "--json", "--ht"}), Offers{"--html"}) << "its file may be left out";
    EXPECT_EQ(offered({"report", "--json", "--html", "x"}), Offers{"<file>"});
    EXPECT_EQ(offered({"--directory", "x"}), Offers{"<directory>"});
    EXPECT_EQ(offered({"scan", "--sort", "b"}), (Offers{"band", "bandwidth", "bssid"}));
    EXPECT_EQ(offered({"stations", "--sort=s"}), Offers{"--sort=signal"});
    EXPECT_EQ(offered({"list", "--service", "QTN_M"}), Offers{"QTN_MIRROR"});
}

TEST_F(CompletionTest, OffersTheWordsOfACommand)
{
    EXPECT_EQ(offered({"mirror", "o"}), (Offers{"off", "on"}));
    EXPECT_EQ(offered({"mirror", "on", ""}), Offers{}) << "it takes one only";
    EXPECT_EQ(offered({"events", ""}).size(), 5u);
    EXPECT_EQ(offered({"events", "EVT_AP_ASSOCIATED_CHANGED", ""}).size(), 5u) << "it takes any number";
    EXPECT_EQ(offered({"completion", ""}), (Offers{"bash", "fish", "zsh"}));
}

TEST_F(CompletionTest, OffersEveryFunctionAndEachOfItsArguments)
{
    EXPECT_EQ(offered({"describe", ""}).size(), tarn::ctl::catalogue().size());
    EXPECT_EQ(offered({"call", ""}).size(), tarn::ctl::catalogue().size());
    for (const tarn::contract::Row& row : tarn::contract::rows())
    {
        const Offers offers = offered({"call", row.command->function, ""});
        for (const tarn::contract::Argument& argument : row.command->arguments)
        {
            const bool isInput = argument.direction == tarn::contract::Direction::kIn;
            EXPECT_EQ(offers.count(argument.name + (isInput ? "=" : "=null")), 1u)
                << row.command->function << " " << argument.name;
        }
    }
}

TEST_F(CompletionTest, OffersNoArgumentTwice)
{
    EXPECT_EQ(offered({"call", "TarnGetRadio", ""}), (Offers{"data=null", "radioId="}));
    EXPECT_EQ(offered({"call", "TarnGetRadio", "radioId=1", ""}), Offers{"data=null"});
    EXPECT_EQ(offered({"call", "TarnGetRadio", "data=null", "radioId=1", ""}), Offers{});
}

TEST_F(CompletionTest, IsSilentWhereNothingIsKnown)
{
    EXPECT_EQ(offered({}), offered({""}));
    EXPECT_EQ(offered({"no-such-command", ""}), Offers{});
    EXPECT_EQ(offered({"call", "NoSuchFunction", ""}), Offers{});
    EXPECT_EQ(offered({"call", "TarnGetRadio", "noSuchArgument="}), Offers{});
    EXPECT_EQ(offered({"--layout", path("no-such-file"), "call", "TarnSetRadioCfg", "cfg."}), Offers{});
    EXPECT_EQ(offered({"radios", ""}), Offers{}) << "no gateway is running";
    EXPECT_EQ(offered({"call", "TarnGetRadio", "radioId="}), Offers{});
}

TEST_F(CompletionTest, DoesNotWaitForAGatewayThatHangs)
{
    std::promise<void> release;
    const std::shared_future<void> released = release.get_future().share();
    const Service device("TARN",
                         [released](const KorIilRequest&, Bytes&)
                         {
                             released.wait();
                             return std::uint32_t{KOR_IIL_OK};
                         });
    Program complete({"complete", "--", "radios", ""});
    EXPECT_EQ(complete.nextLine(), "");
    EXPECT_EQ(complete.exitCode(), 0);
    release.set_value();
}

TEST_F(CompletionByLayoutTest, OffersTheFieldsOfARecord)
{
    EXPECT_EQ(offered({"call", "TarnSetRadioCfg", "cf"}), (Offers{"cfg.", "cfg="}));
    EXPECT_EQ(offered({"call", "TarnSetRadioCfg", "cfg.ch"}), Offers{"cfg.channel="});
    EXPECT_EQ(offered({"call", "TarnSetRadioCfg", "cfg.channel=36", "cfg."}).count("cfg.channel="), 0u);
    EXPECT_EQ(offered({"call", "TarnSetRadioCfg", "cfg.channel=36", "cfg."}).count("cfg.country="), 1u);
}

TEST_F(CompletionByLayoutTest, OffersTheNamesOfValues)
{
    EXPECT_EQ(offered({"call", "TarnSetRadioCfg", "cfg.enabled="}), (Offers{"cfg.enabled=off", "cfg.enabled=on"}));
    EXPECT_EQ(offered({"call", "TarnSetRadioCfg", "cfg.noSuchField="}), Offers{});
}

TEST_F(CompletionByGatewayTest, OffersRadiosAndInterfaces)
{
    EXPECT_EQ(offered({"radios", ""}), (Offers{"1", "2", "radio0", "radio1", "wifi0", "wifi1", "wlan0"}));
    EXPECT_EQ(offered({"radios", "wifi0", "wl"}), Offers{"wlan0"});
    EXPECT_EQ(offered({"call", "TarnGetRadio", "radioId="}), (Offers{"radioId=1", "radioId=2"}));
    EXPECT_EQ(offered({"call", "TarnGetSsidIntf", "radioId=2", "ssidId="}), Offers{"ssidId=1"});
    EXPECT_EQ(offered({"call", "tarn_qcsapi_wifi_set_channel", "ifname="}), (Offers{"ifname=wifi0", "ifname=wifi1"}))
        << "wlan0 is not the module's";
}

TEST_F(CompletionByGatewayTest, OffersTheStationsOfAnInterface)
{
    const Words kick = {"call", "TarnKickOutAccessPointAssociated"};
    const Offers all = offered({kick[0], kick[1], "macAddress="});
    const Offers first = offered({kick[0], kick[1], "radioId=1", "apId=1", "macAddress="});
    EXPECT_EQ(first.count("macAddress=02:00:00:00:01:01"), 1u);
    EXPECT_GT(all.size(), first.size());
}

TEST_F(CompletionByGatewayTest, OffersWhatACommandIsAbout)
{
    EXPECT_EQ(offered({"kick", "02:00:00:00:01:05"}), Offers{"02:00:00:00:01:05"});
    EXPECT_EQ(offered({"filter", "li"}), Offers{"list"});
    EXPECT_EQ(offered({"filter", "list", "wl"}), Offers{"wlan0"});
    EXPECT_EQ(offered({"channel", "radio"}), (Offers{"radio0", "radio1"}));
    EXPECT_EQ(offered({"channel", "radio0", ""}), Offers{}) << "a number is for the user to think of";
}

TEST_F(CompletionByGatewayTest, AsksTheGatewayInTheDirectoryThatTheLineNames)
{
    EXPECT_EQ(offered({"--directory", path("elsewhere"), "radios", ""}), Offers{});
}

TEST_F(CompletionByGatewayTest, OffersFieldsByTheLayoutThatTheGatewayHandsOut)
{
    EXPECT_EQ(offered({"call", "TarnSetRadioCfg", "cfg.ch"}), Offers{"cfg.channel="});
    EXPECT_EQ(offered({"--layout=", "call", "TarnSetRadioCfg", "cfg.ch"}), Offers{}) << "the line asks for none";
}

TEST_F(CompletionTest, AScriptIsADocumentToo)
{
    for (const char* const shell : {"bash", "zsh", "fish"})
    {
        const RanJson ran = runJson({"completion", shell});
        EXPECT_EQ(ran.exit, 0);
        EXPECT_EQ(ran.document.at("script"), run({"completion", shell}).out);
    }
    const Ran ran = run({"completion", "fisch"});
    EXPECT_EQ(ran.exit, 2);
    EXPECT_EQ(ran.err, "tarnctl: completion: expected bash or zsh or fish; got \"fisch\"\n");
}

} // namespace

} // namespace tarnctl_test
