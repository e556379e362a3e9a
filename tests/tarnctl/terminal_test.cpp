// What a terminal shows and a pipe does not: colours, pictures, progress, and what is written in place.
#include "support.h"
#include "tarnctl/occupancy.h"
#include "tarnctl/sparkline.h"
#include "tarnctl/table.h"
#include "tarnctl/terminal.h"
#include "tarnctl/terminal_text.h"

#include <cstdlib>
#include <sstream>

namespace tarnctl_test
{

namespace
{

using tarn::ctl::Band;
using tarn::ctl::Console;
using tarn::ctl::Network;
using tarn::ctl::Table;
using tarn::ctl::Terminal;
using tarn::ctl::Tone;

constexpr char kEscape[] = "\x1b[";

std::size_t timesIn(const std::string& text, const std::string& part)
{
    std::size_t times = 0;
    for (std::size_t place = text.find(part); place != std::string::npos; place = text.find(part, place + part.size()))
        ++times;
    return times;
}

Terminal wideTerminal()
{
    Terminal terminal;
    terminal.showsResults = terminal.showsRemarks = terminal.obeysColours = terminal.knowsUtf8 = true;
    terminal.width = 200;
    return terminal;
}

class TerminalTest : public TarnctlTest
{
protected:
    void SetUp() override
    {
        gateway_ = std::make_unique<Program>(Words(), TARN_GATEWAY_PROGRAM);
        ASSERT_EQ(gateway_->nextLine().rfind("ready", 0), 0u);
    }

private:
    std::unique_ptr<Program> gateway_;
};

TEST_F(TerminalTest, ColoursAreForTerminalsUnlessAskedForOtherwise)
{
    Terminal colourless = wideTerminal();
    colourless.obeysColours = false;
    const auto isColoured = [](const Words& words, const Terminal& terminal)
    { return run(words, terminal).out.find(kEscape) != std::string::npos; };
    EXPECT_TRUE(isColoured({"radios"}, wideTerminal()));
    EXPECT_FALSE(isColoured({"radios"}, Terminal()));
    EXPECT_FALSE(isColoured({"radios"}, colourless));
    EXPECT_FALSE(isColoured({"radios", "--color", "never"}, wideTerminal()));
    EXPECT_FALSE(isColoured({"radios", "--color", "auto"}, colourless));
    EXPECT_TRUE(isColoured({"radios", "--color", "always"}, colourless));
    EXPECT_TRUE(isColoured({"radios", "--color", "always"}, Terminal()));
    EXPECT_FALSE(isColoured({"radios", "--json", "--color", "always"}, wideTerminal()));
    EXPECT_FALSE(isColoured({"radios", "--format", "csv", "--color", "always"}, wideTerminal()));
}

TEST_F(TerminalTest, ColumnsThatHaveNoRoomAreLeftOutAndNamed)
{
    Terminal narrow = wideTerminal();
    narrow.width = 40;
    narrow.obeysColours = false;
    const Ran ran = run({"ssids"}, narrow);
    EXPECT_EQ(ran.out, "interface  radio  id  ssid\n"
                       "wifi0          1   1  home\n"
                       "wifi1          1   2  guests\n"
                       "wlan0          2   1  home\n");
    EXPECT_NE(ran.err.find("no room for: bssid, enabled, hidden, security, stations, primary, priority, group, vlan\n"),
              std::string::npos)
        << ran.err;
    narrow.showsResults = false;
    EXPECT_NE(run({"ssids"}, narrow).out.find("02:00:00:00:00:11"), std::string::npos) << "a file has room for all";
}

TEST_F(TerminalTest, AScanThatIsWaitedForShowsItsProgressWhereRemarksAreSeen)
{
    const Ran seen = run({"scan", "radio1", "--wait"}, wideTerminal());
    EXPECT_EQ(seen.exit, 0);
    EXPECT_EQ(seen.err.rfind("\rscanning  [>.......................] 0 of 1 radios  0 s\x1b[K", 0), 0u) << seen.err;
    EXPECT_NE(seen.err.find("\r\x1b[Ktarnctl: by the layout"), std::string::npos) << "the line has been cleared: " << seen.err;
    EXPECT_EQ(run({"scan", "radio1", "--wait"}).err.find("scanning"), std::string::npos);
}

TEST_F(TerminalTest, WhatIsWatchedIsShownInPlace)
{
    const Words words = {"stations", "wifi1", "--watch", "0.1", "--count", "3"};
    const std::string inPlace = run(words, wideTerminal()).out;
    EXPECT_EQ(timesIn(inPlace, "\x1b[2J"), 1u);
    EXPECT_EQ(timesIn(inPlace, "\x1b[H"), 3u);
    EXPECT_NE(inPlace.find("\u2583\u2583\u2583"), std::string::npos) << "three signals: " << inPlace;

    const std::string oneByOne = run(words).out;
    EXPECT_EQ(oneByOne.find(kEscape), std::string::npos);
    EXPECT_EQ(timesIn(oneByOne, "interface  address"), 3u);
    EXPECT_EQ(timesIn(oneByOne, "\n\n"), 2u) << oneByOne;
    EXPECT_NE(oneByOne.find("  ---  "), std::string::npos) << oneByOne;
}

TEST(TerminalOfProcessTest, ObeysTheEnvironment)
{
    const char* const term = std::getenv("TERM");
    const std::string termBefore = term == nullptr ? "" : term;
    setenv("TERM", "xterm", 1);
    unsetenv("NO_COLOR");
    EXPECT_TRUE(tarn::ctl::terminalOfProcess().obeysColours);
    setenv("NO_COLOR", "", 1);
    EXPECT_TRUE(tarn::ctl::terminalOfProcess().obeysColours) << "an empty one says nothing";
    setenv("NO_COLOR", "1", 1);
    EXPECT_FALSE(tarn::ctl::terminalOfProcess().obeysColours);
    unsetenv("NO_COLOR");
    setenv("TERM", "dumb", 1);
    EXPECT_FALSE(tarn::ctl::terminalOfProcess().obeysColours);
    setenv("TERM", termBefore.c_str(), 1);

    setenv("LC_ALL", "en_GB.UTF-8", 1);
    EXPECT_TRUE(tarn::ctl::terminalOfProcess().knowsUtf8);
    setenv("LC_ALL", "C", 1);
    EXPECT_FALSE(tarn::ctl::terminalOfProcess().knowsUtf8);
    unsetenv("LC_ALL");
}

TEST(TableTest, KeepsColumnsAlignedWhateverTheCharactersAndColours)
{
    Table table;
    table.add({"name", {"signal", Tone::kPlain, true}});
    table.add({"caf\u00e9", {"-48", Tone::kGood, true}});
    table.add({"a", {"-100", Tone::kBad, true}});
    std::ostringstream plain;
    table.write(plain);
    EXPECT_EQ(plain.str(), "name  signal\ncaf\u00e9     -48\na       -100\n");
    std::ostringstream coloured;
    table.write(coloured, true);
    EXPECT_EQ(coloured.str(), "name  signal\ncaf\u00e9     \x1b[32m-48\x1b[0m\na       \x1b[31m-100\x1b[0m\n");
}

TEST(TerminalTextTest, ShowsNothingThatATerminalWouldObey)
{
    EXPECT_EQ(tarn::ctl::printable("caf\u00e9 \U0001F4F6"), "caf\u00e9 \U0001F4F6");
    EXPECT_EQ(tarn::ctl::printable("\x1b[31mred\n"), "\\x1b[31mred\\x0a");
    EXPECT_EQ(tarn::ctl::printable("\u202eneves"), "\\xe2\\x80\\xaeneves") << "which would turn the text around";
    EXPECT_EQ(tarn::ctl::printable("\xff\xc3"), "\\xff\\xc3");
    EXPECT_EQ(tarn::ctl::printable("\xc0\xaf"), "\\xc0\\xaf") << "a slash written too long";
}

TEST(SparklineTest, HasOneCharacterANumber)
{
    EXPECT_EQ(tarn::ctl::sparkline({-100, -90, -60, -30, 0}, -90, -30, true), "\u2581\u2581\u2584\u2588\u2588");
    EXPECT_EQ(tarn::ctl::sparkline({-100, -90, -60, -30, 0}, -90, -30, false), "__~##");
    EXPECT_EQ(tarn::ctl::sparkline({}, -90, -30, true), "");
}

struct Covered
{
    Band band;
    std::int64_t channel;
    std::int64_t bandwidth; // MHz
    std::int64_t first;
    std::int64_t last;
};

TEST(OccupancyTest, KnowsWhichChannelsANetworkCovers)
{
    for (const Covered& covered :
         {Covered{Band::k5GHz, 36, 20, 36, 39}, Covered{Band::k5GHz, 44, 80, 36, 51}, Covered{Band::k5GHz, 60, 40, 60, 67},
          Covered{Band::k5GHz, 100, 160, 100, 131}, Covered{Band::k5GHz, 157, 80, 149, 164}, Covered{Band::k6GHz, 5, 40, 1, 8},
          Covered{Band::k2GHz, 6, 20, 4, 8}, Covered{Band::k2GHz, 1, 40, -1, 7}, Covered{Band::k2GHz, 11, 40, 5, 13}})
    {
        const tarn::ctl::Coverage coverage = tarn::ctl::coverageOf(covered.band, covered.channel, covered.bandwidth);
        EXPECT_EQ(coverage.first, covered.first) << covered.channel << ", " << covered.bandwidth << " MHz";
        EXPECT_EQ(coverage.last, covered.last) << covered.channel << ", " << covered.bandwidth << " MHz";
    }
}

TEST(OccupancyTest, TellsTheBandByItsNameOrTheChannel)
{
    EXPECT_EQ(tarn::ctl::bandOf("2.4GHz", 1), Band::k2GHz);
    EXPECT_EQ(tarn::ctl::bandOf("5GHz", 36), Band::k5GHz);
    EXPECT_EQ(tarn::ctl::bandOf("6GHz", 5), Band::k6GHz);
    EXPECT_EQ(tarn::ctl::bandOf("", 11), Band::k2GHz);
    EXPECT_EQ(tarn::ctl::bandOf("", 36), Band::k5GHz);
}

std::string chart(std::size_t width, const std::vector<Network>& networks)
{
    std::ostringstream out;
    std::ostringstream err;
    Console console(out, err);
    console.terminal.width = width;
    tarn::ctl::writeOccupancy(console, Band::k5GHz, networks);
    return out.str();
}

TEST(OccupancyTest, DrawsOurOwnFirstAndTheStrongestNext)
{
    const std::vector<Network> networks = {
        {"far", 52, 20, -80, false}, {"near", 36, 40, -50, false}, {"ours", 44, 20, 0, true}};
    EXPECT_EQ(chart(80, networks), "5 GHz  36          40          44          48          52\n"
                                   "ours                           ============                              own\n"
                                   "near   ########################                                      -50 dBm\n"
                                   "far                                                    ::::::::::::  -80 dBm\n");
    EXPECT_EQ(chart(80, {}), "");
    const std::string narrow = chart(20, networks);
    for (std::size_t begin = 0; begin < narrow.size(); begin = narrow.find('\n', begin) + 1)
        EXPECT_LE(narrow.find('\n', begin) - begin, 45u) << narrow;
}

} // namespace

} // namespace tarnctl_test
