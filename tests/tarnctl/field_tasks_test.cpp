// Everyday tasks in the field, each one command against a gateway: it succeeds, says what was asked for, and shows no
// hexadecimal. All of them also against a second make of gateway, which has everything at other places and by other numbers.
#include "support.h"
#include "support/second_gateway.h"

#include <algorithm>
#include <fstream>
#include <regex>

namespace tarnctl_test
{

namespace
{

struct Task
{
    const char* name;
    Words words;
    Words shows;
    Words meanwhile = {}; // a command to run while this one waits
};

// In this order, on one gateway, whose sockets are in that directory. Its time stands but for the scan, so that all of a WPS
// window is left however late it is looked at, and no station comes back while the gateway is compared with itself.
std::vector<Task> tasks(const std::string& directory)
{
    return {
        {"an overview", {"status"}, {"5.3.1-sim", "5GHz", "2.4GHz", "80 MHz", "58 C", "guests", "wlan0"}},
        {"the radios", {"radios"}, {"radio0", "5GHz", "yes", "11ac", "eu", "1.9.0-sim"}},
        {"channels of all radios", {"channel"}, {"radio0  5GHz         36", "radio1  2.4GHz        6", "100 104"}},
        {"widths of all radios", {"bandwidth"}, {"80 MHz       36  11ac  20 40 80 160\n", "20 MHz        6  11n   20 40\n"}},
        {"powers of all radios", {"power"}, {"radio0", "100 %", "23 dBm", "100,75,50,25,12"}},
        {"the networks", {"ssids"}, {"wifi0", "home", "02:00:00:00:00:11", "guests", "wpa2"}},
        {"what happens",
         {"events", "--count", "1"},
         {"EVT_RADIO_OPR_CHANNEL_CHANGED", "8 bytes ", "radioId=1", "channel=48"},
         {"channel", "1", "48"}},
        {"set a channel", {"channel", "wifi0", "44"}, {"radio 1 (radio0): channel 48 -> 44 (the gateway answered DONE)\n"}},
        {"let a radio choose", {"channel", "2", "auto"}, {"radio 2 (radio1): channel 6 -> "}},
        {"set a width", {"bandwidth", "radio0", "40"}, {"radio 1 (radio0): bandwidth 80 MHz -> 40 MHz"}},
        {"set a power", {"power", "1", "50"}, {"radio 1 (radio0): power 100 % -> 50 %"}},
        {"let the gateway's time go", {"gateway", "speed", "100"}, {"\"speed\": 100"}},
        {"scan sorted by signal", {"scan", "--wait", "--sort", "signal"}, {"upstairs", "(hidden)", "-66 dBm", "wpa3"}},
        {"stop the gateway's time", {"gateway", "speed", "0"}, {"\"speed\": 0"}},
        {"the channels in a picture", {"scan", "--last", "--chart"}, {"2.4 GHz", "5 GHz", "::::::::", "====", "own"}},
        {"stations with signal and rate", {"stations", "--sort", "signal"}, {"02:00:00:00:01:01  -48 dBm  600 Mbit/s"}},
        {"send a station away", {"kick", "02:00:00:00:01:04"}, {"wifi1: 02:00:00:00:01:04 removed from the stations"}},
        {"add to a filter",
         {"filter", "add", "wifi1", "02:00:00:00:01:04"},
         {"02:00:00:00:01:04 added to the filter, mode off"}},
        {"set a filter's mode", {"filter", "mode", "wifi1", "deny"}, {"wifi1: filter mode off -> deny"}},
        {"the filters", {"filter", "list"}, {"wifi1      guests  deny  02:00:00:00:01:04"}},
        {"remove from a filter", {"filter", "remove", "1.2", "02-00-00-00-01-04"}, {"wifi1: 02:00:00:00:01:04 removed from"}},
        {"open WPS", {"wps", "open", "wifi0"}, {"wifi0: WPS window neverOpened -> open"}},
        {"the WPS windows", {"wps", "status"}, {"open", "button", "120 s"}},
        {"cancel WPS", {"wps", "cancel", "wifi0"}, {"wifi0: WPS window open -> cancelled"}},
        {"open WPS by PIN", {"wps", "open", "wlan0", "--pin", "12345670"}, {"wlan0: WPS window neverOpened -> open"}},
        {"security", {"security"}, {"wpa2", "psk", "aes", "capable", "(hidden)", "3600 s"}},
        {"temperatures", {"temperature"}, {"radio 1 (radio0)", "58 C", "module, baseband", "63 C"}},
        {"versions", {"versions"}, {"module firmware", "5.3.1-sim", "Smart WiFi daemon", "3.1.4-sim"}},
        {"radar checks", {"dfs"}, {"radio0", "idle", "stopped", "52  notChecked", "36  available"}},
        {"counters", {"counters"}, {"wifi0", "kB", "tx packets"}},
        {"counters over time", {"counters", "--watch", "0.2", "--count", "2"}, {"wifi0", "bit/s", " /s"}},
        {"metrics for a monitoring system",
         {"metrics"},
         {"wifi_station_signal_dbm{device=\"wifi0\",station=\"0\"} -48\n",
          "wifi_radio_bandwidth_hertz{radio=\"1\"} 40000000\n"}},
        {"a boot parameter", {"boot", "get", "serial"}, {"serial  SIM0000001"}},
        {"set a boot parameter", {"boot", "set", "wifi0", "greeting", "hello"}, {"wifi0: greeting set to hello"}},
        {"Smart WiFi networks", {"smart-wifi", "bss"}, {"02:00:00:00:00:20", "wlan0", "yes"}},
        {"Smart WiFi stations", {"smart-wifi", "stations"}, {"02:00:00:00:01:05", "-58 dBm"}},
        {"Smart WiFi history", {"smart-wifi", "history"}, {"associated", "02:00:00:00:01:05 has come to wlan0"}},
        {"the mirror", {"mirror", "on"}, {"mirror status: on"}},
        {"a report", {"report", "--html", directory + "/page.html", "--seconds", "0"}, {"page.html: 2 radios, 3 interfaces, "}},
        {"compare two gateways", {"diff", directory, directory}, {"different: 0\n"}},
    };
}

// Hexadecimal as the tools write it: 0x..., or many digits without anything between them. An address is none.
bool hasHexadecimal(const std::string& text)
{
    return std::regex_search(text, std::regex("0x[0-9A-Fa-f]|\\b[0-9a-f]{12,}\\b"));
}

// Without what is only for people, or takes time.
Words asDocument(Words words)
{
    words.erase(std::remove(words.begin(), words.end(), "--chart"), words.end());
    for (const char* option : {"--watch", "--count"})
        if (const auto found = std::find(words.begin(), words.end(), option); found != words.end())
            words.erase(found, found + 2);
    return words;
}

class FieldTasksTest : public TarnctlTest
{
protected:
    void SetUp() override
    {
        startGateway({});
    }

    void startGateway(const Words& options)
    {
        gateway_ = std::make_unique<Program>(options, TARN_GATEWAY_PROGRAM);
        ASSERT_EQ(gateway_->nextLine().rfind("ready", 0), 0u);
    }

private:
    std::unique_ptr<Program> gateway_;
};

Ran runTask(const Task& task)
{
    if (task.meanwhile.empty())
        return run(task.words);
    Program program(task.words);
    Ran ran;
    ran.err = program.nextErrorLine(); // it is ready
    EXPECT_EQ(run(task.meanwhile).exit, 0);
    ran.out = program.nextLine() + "\n";
    ran.exit = program.exitCode();
    return ran;
}

struct Make
{
    const char* name; // of the layout
    bool isSecond;
};

// The same tasks with either make of gateway.
class GatewayTasksTest : public FieldTasksTest, public ::testing::WithParamInterface<Make>
{
protected:
    void SetUp() override
    {
        std::ofstream(path("attic.json")) << tarn_test::secondGatewayText();
        Words options = {"--speed", "0"};
        if (GetParam().isSecond)
            options.insert(options.end(), {"--layout", path("attic.json")});
        startGateway(options);
    }
};

TEST_P(GatewayTasksTest, EachIsOneCommand)
{
    for (const Task& task : tasks(directory))
    {
        SCOPED_TRACE(task.name);
        const Ran ran = runTask(task);
        EXPECT_EQ(ran.exit, 0) << ran.err;
        for (const std::string& text : task.shows)
            EXPECT_NE(ran.out.find(text), std::string::npos) << "expected " << text << " in\n" << ran.out;
        EXPECT_FALSE(hasHexadecimal(ran.out)) << ran.out;
        if (const std::size_t named = ran.err.find("layout "); named != std::string::npos)
        {
            EXPECT_EQ(ran.err.find(GetParam().name, named), named + std::string("layout ").size()) << ran.err;
        }
    }
}

// Each number that the document names has to be one of that gateway's own.
void expectOwnNumbers(const Json& document, bool isSecond)
{
    if (document.is_array())
        for (const Json& element : document)
            expectOwnNumbers(element, isSecond);
    if (!document.is_object())
        return;
    for (const auto& [key, value] : document.items())
    {
        expectOwnNumbers(value, isSecond);
        const auto named = document.find(key + "_name");
        if (!value.is_number() || named == document.end() || named->is_null() || *named == "DONE")
            continue; // DONE is 0 with either
        EXPECT_EQ(value >= tarn_test::kSecondGatewayValueShift, isSecond) << key << ": " << value << " " << *named;
    }
}

TEST_P(GatewayTasksTest, EachHasADocumentThatTheSchemaAllows)
{
    std::size_t withLayout = 0;
    for (const Task& task : tasks(directory))
    {
        SCOPED_TRACE(task.name);
        if (!task.meanwhile.empty()) // for its documents there is a test below
            continue;
        const RanJson ran = runJson(asDocument(task.words));
        EXPECT_EQ(ran.exit, 0) << ran.err << ran.document;
        expectOwnNumbers(ran.document, GetParam().isSecond);
        if (!ran.document.contains("layout") || ran.document.at("layout").is_null())
            continue;
        EXPECT_EQ(ran.document.at("layout").at("name"), GetParam().name);
        ++withLayout;
    }
    EXPECT_GT(withLayout, 20u);
}

TEST_P(GatewayTasksTest, ARefusalHasTheStatusByItsName)
{
    const Ran device = run({"channel", "radio0", "37"});
    EXPECT_EQ(device.exit, 7);
    EXPECT_EQ(device.out, "");
    const std::string status = GetParam().isSecond ? "517" : "17";
    EXPECT_NE(device.err.find("answered TarnSetRadioCfg with status " + status + " (INVALID_VALUE"), std::string::npos)
        << device.err;
    const Ran module = run({"boot", "get", "nothing"});
    EXPECT_EQ(module.exit, 7);
    EXPECT_NE(module.err.find(GetParam().isSecond ? "-706" : "-206"), std::string::npos) << module.err;
    EXPECT_NE(run({"wps", "cancel", "wifi0"}).err.find("NOT_THERE"), std::string::npos);
    EXPECT_NE(run({"filter", "remove", "wifi0", "02:00:00:00:01:01"}).err.find("NOT_THERE"), std::string::npos);
}

TEST_P(GatewayTasksTest, ARefusalComesWithWhatIsPossible)
{
    ASSERT_EQ(run({"filter", "add", "wifi1", "02:00:00:00:01:04", "02:00:00:00:01:05"}).exit, 0);
    const std::vector<std::pair<Words, std::string>> refused = {
        {{"channel", "radio0", "37"}, "channel: possible for radio 1 (radio0): 36 40 44 48 52 56 60 64 100 104 108 112\n"},
        {{"channel", "2", "36"}, "channel: possible for radio 2 (radio1): 1 2 3 4 5 6 7 8 9 10 11 12 13\n"},
        {{"bandwidth", "radio0", "60"}, "bandwidth: possible for radio 1 (radio0): 20 40 80 160\n"},
        {{"bandwidth", "2", "80"}, "bandwidth: possible for radio 2 (radio1): 20 40\n"},
        {{"power", "radio0", "60"}, "power: possible for radio 1 (radio0): 100,75,50,25,12\n"},
        {{"filter", "remove", "wifi1", "02:00:00:00:01:01"},
         "filter remove: possible for wifi1: 02:00:00:00:01:04 02:00:00:00:01:05\n"},
    };
    for (const auto& [words, possible] : refused)
    {
        const Ran ran = run(words);
        EXPECT_EQ(ran.exit, 7);
        EXPECT_EQ(ran.err.rfind("tarnctl: " + possible + "tarnctl: service TARN answered ", 0), 0u) << ran.err;
    }
    // Nobody tells the levels of a radio that is not the module's.
    EXPECT_EQ(run({"power", "2", "60"}).err.rfind("tarnctl: service TARN answered ", 0), 0u);
}

TEST_P(GatewayTasksTest, ABandwidthIsPossibleOnTheRadiosChannelOrOnAnyThatItMayChoose)
{
    const auto possible = [] { return runJson({"bandwidth", "1"}).document.at("radios").at(0).at("possible_bandwidths"); };
    ASSERT_EQ(run({"bandwidth", "1", "20"}).exit, 0);
    ASSERT_EQ(run({"channel", "1", "140"}).exit, 0);
    EXPECT_EQ(possible(), Json({20}));
    ASSERT_EQ(run({"channel", "1", "auto"}).exit, 0);
    EXPECT_EQ(possible(), Json({20, 40, 80, 160}));
}

INSTANTIATE_TEST_SUITE_P(Of, GatewayTasksTest, ::testing::Values(Make{"tarn-gateway", false}, Make{"attic", true}),
                         [](const auto& make) { return make.param.isSecond ? "ASecondGateway" : "TheSimulatedGateway"; });

TEST_F(FieldTasksTest, AShellLoopOverJson)
{
    const std::string loop = "for name in $(" EMULATOR " " TARNCTL_PROGRAM " --json ssids | "
                             "sed -n 's/.*\"interface\": \"\\(.*\\)\".*/\\1/p'); do echo \"$name is there\"; done";
    EXPECT_EQ(shellOutput(loop), "wifi0 is there\nwifi1 is there\nwlan0 is there\n");
}

TEST_F(FieldTasksTest, WatchedJsonIsOneDocumentALine)
{
    Program program({"stations", "wifi0", "--sort", "signal", "--watch", "0.1", "--count", "3", "--json"});
    for (std::size_t i = 1; i <= 3; ++i)
    {
        const Json document = checkedDocument(program.nextLine());
        ASSERT_EQ(document.at("stations").size(), 3u);
        EXPECT_EQ(document.at("stations")[0].at("signal"), -48);
        EXPECT_EQ(document.at("stations")[0].at("history").size(), i);
        EXPECT_EQ(document.at("units").at("signal"), "dBm");
        EXPECT_EQ(document.at("layout").at("name"), "tarn-gateway");
    }
    EXPECT_EQ(program.exitCode(), 0);
}

TEST_F(FieldTasksTest, RatesAreWhatCameASecond)
{
    // However long it takes until they are read for the first time.
    const Words late = {"gateway", "faults", "add", "delay", "milliseconds=1500", "function=TarnGetSsidIntfNum", "count=1"};
    ASSERT_EQ(run(late).exit, 0);
    Program program({"counters", "wifi0", "--watch", "1", "--count", "1", "--json"});
    const Json document = checkedDocument(program.nextLine());
    EXPECT_EQ(document.at("kind"), "rates");
    const Json& interface = document.at("interfaces").at(0);
    EXPECT_GT(interface.at("tx_packets_per_second"), 60.0); // the scenario's stations make 120
    EXPECT_LT(interface.at("tx_packets_per_second"), 240.0);
    EXPECT_EQ(document.at("units").at("tx_bits_per_second"), "bit/s");
    EXPECT_EQ(program.exitCode(), 0);
}

TEST_F(FieldTasksTest, CsvHasAHeaderAndARowEach)
{
    EXPECT_EQ(run({"channel", "2", "--format", "csv"}).out,
              "id,name,band,channel,bandwidth,secondary_channel,automatic,automatic_name,possible_channels\n"
              "2,radio1,2.4GHz,6,20,10,0,off,1 2 3 4 5 6 7 8 9 10 11 12 13\n");
    const Ran watched = run({"counters", "wlan0", "--watch", "0.1", "--count", "3", "--format", "csv"});
    EXPECT_EQ(std::count(watched.out.begin(), watched.out.end(), '\n'), 4);
}

TEST_F(FieldTasksTest, SecretsAreShownOnlyWhenAskedFor)
{
    EXPECT_EQ(run({"security"}).out.find("correct horse"), std::string::npos);
    EXPECT_TRUE(runJson({"security"}).document.at("security")[0].at("passphrase").is_null());
    EXPECT_NE(run({"security", "--secrets"}).out.find("correct horse"), std::string::npos);
    EXPECT_EQ(runJson({"security", "--secrets"}).document.at("security")[0].at("passphrase"), "correct horse");
}

TEST_F(FieldTasksTest, RadiosAndInterfacesGoByIdAndByName)
{
    for (const Words& words :
         {Words{"channel", "1"}, Words{"channel", "radio0"}, Words{"channel", "wifi1"}, Words{"channel", "1.2"}})
        EXPECT_EQ(runJson(words).document.at("radios").at(0).at("id"), 1) << words.back();
    EXPECT_EQ(runJson({"ssids", "2", "wifi1"}).document.at("ssids").size(), 2u);
    EXPECT_EQ(runJson({"filter", "mode", "radio1"}).document.at("filters").at(0).at("interface"), "wlan0");
}

TEST_F(FieldTasksTest, AnUnknownRadioOrInterfaceIsNamedWithThoseThereAre)
{
    for (const Words& words :
         {Words{"channel", "wifi9"}, Words{"ssids", "wifi9"}, Words{"stations", "wifi9"}, Words{"dfs", "wifi9"},
          Words{"scan", "wifi9"}, Words{"security", "wifi9"}, Words{"filter", "list", "wifi9"}, Words{"wps", "open", "wifi9"},
          Words{"counters", "wifi9"}, Words{"power", "wifi9", "50"}})
    {
        SCOPED_TRACE(words.front());
        const Ran ran = run(words);
        EXPECT_EQ(ran.exit, 2);
        EXPECT_EQ(ran.out, "");
        EXPECT_EQ(ran.err,
                  "tarnctl: the gateway has no radio \"wifi9\"; expected one of 1, radio0, wifi0, wifi1, 2, radio1, wlan0\n"
                  "Did you mean wifi0 or wifi1?\n");
    }
}

TEST_F(FieldTasksTest, BadInputIsRefusedWithWhatWasExpected)
{
    struct Bad
    {
        Words words;
        const char* error;
    };
    const std::vector<Bad> kBad = {
        {{"channel", "1", "high"}, "channel: expected a number or auto; got \"high\""},
        {{"bandwidth", "1", "-40"}, "bandwidth: expected a number; got \"-40\""},
        {{"power", "1", ""}, "power: expected a number; got \"\""},
        {{"channel", "1", "44", "--watch", "1"}, "channel: expected a value or --watch, not both"},
        {{"stations", "--sort", "signl"}, "--sort: there is no column \"signl\"; expected one of interface, address, signal"},
        {{"stations", "--watch", "0"}, "--watch: expected 0.1 to 1000000; got \"0\""},
        {{"stations", "--watch", "1", "--count", "-1"}, "--count: expected 1 to 4294967295; got \"-1\""},
        {{"stations", "--count", "2"}, "--count: expected --watch SECONDS beside it"},
        {{"scan", "--wait", "--last"}, "scan: expected --wait or --last, not both"},
        {{"scan", "--chart", "--format", "csv"}, "--chart: expected --format table"},
        {{"filter", "ad"}, "filter: expected one of list, add, remove, mode; got \"ad\""},
        {{"filter", "add", "wifi0"}, "filter add: expected an interface and one address or more"},
        {{"filter", "add", "wifi0", "02:00"}, "expected a MAC address, such as 02:00:00:00:01:05; got \"02:00\""},
        {{"filter", "mode"}, "filter mode: expected an interface"},
        {{"filter", "mode", "wifi0", "denny"}, "denny"},
        {{"filter", "add", "1", "02:00:00:00:01:05"},
         "radio 1 (radio0) has more than one interface; expected one of wifi0, wifi1"},
        {{"kick", "somebody"}, "expected a MAC address"},
        {{"wps", "open"}, "wps open: expected one interface"},
        {{"wps", "open", "wifi0", "--pin", "12345671"}, "--pin: "},
        {{"wps", "cancel", "wifi0", "--pin", "12345670"}, "--pin: expected only with wps open"},
        {{"boot", "get"}, "boot get: expected one name or more"},
        {{"boot", "set", "wifi0"}, "boot set: expected an interface, a name and a value"},
        {{"smart-wifi", "bbs"}, "smart-wifi: expected one of bss, stations, history; got \"bbs\""},
        {{"status", "--format", "csv"}, "--format csv: status shows more than one table; expected table or json"},
        {{"list", "--format", "csv"}, "--format csv: list has no table; expected --format json"},
        {{"help", "scna"}, "there is no command \"scna\""},
        {{"channel", "1", "44", "--count", "2"}, "channel: expected a value or --watch, not both"},
        {{"wps", "open", "wifi0", "--watch", "1"}, "--watch: expected only with wps status"},
        {{"wps", "status", "--pin", "12345670"}, "--pin: expected only with wps open"},
        {{"radios", "--format", "tabel"}, "--format: expected one of table, csv, json; got \"tabel\""},
        {{"radios", "--color", "yes"}, "--color: expected one of auto, always, never; got \"yes\""},
        {{"radios", "--chrat"}, "there is no option \"--chrat\""},
        {{"scan", "--chrat"}, "Did you mean --chart?"},
    };
    for (const Bad& bad : kBad)
    {
        SCOPED_TRACE(::testing::PrintToString(bad.words));
        const Ran ran = run(bad.words);
        EXPECT_EQ(ran.exit, 2);
        EXPECT_EQ(ran.out, "");
        EXPECT_NE(ran.err.find(bad.error), std::string::npos) << ran.err;
    }
}

TEST_F(FieldTasksTest, JsonIsAskedForOnceAndByEitherOption)
{
    EXPECT_EQ(run({"--json", "radios", "--format", "csv"}).exit, 2);
    EXPECT_EQ(checkedDocument(run({"channel", "--format", "json"}).out).at("kind"), "channel");
    for (const Words& words : {Words{"channel", "--format", "json", "--bogus"}, Words{"channel", "--format=json", "--bogus"}})
        EXPECT_EQ(checkedDocument(run(words).out).at("kind"), "error");
}

TEST_F(FieldTasksTest, AnEventsDocumentHasItsFieldsAndItsBytes)
{
    Program program({"events", "--count", "1", "--json"});
    program.nextErrorLine();
    EXPECT_EQ(run({"channel", "1", "44"}).exit, 0);
    const Json document = checkedDocument(program.nextLine());
    EXPECT_EQ(document.at("fields").at("channel").at("value"), 44);
    EXPECT_EQ(document.at("data").get<std::string>().size(), 16u);
    EXPECT_EQ(program.exitCode(), 0);
}

TEST_F(FieldTasksTest, NobodyIsSentAwayIfOneIsNotThere)
{
    const Ran ran = run({"kick", "02:00:00:00:01:01", "02:00:00:00:01:99"});
    EXPECT_EQ(ran.exit, 1);
    EXPECT_NE(ran.err.find("no access point has a station 02:00:00:00:01:99"), std::string::npos) << ran.err;
    EXPECT_EQ(runJson({"stations", "wifi0"}).document.at("stations").size(), 3u);
}

TEST_F(FieldTasksTest, WithoutALayoutTheySayWhatTheyNeed)
{
    for (const char* verb :
         {"status", "ssids", "stations", "scan", "channel", "bandwidth", "power", "security", "dfs", "counters"})
    {
        const Ran ran = run({verb, "--layout", ""});
        EXPECT_EQ(ran.exit, 2) << verb;
        EXPECT_EQ(ran.out, "") << verb;
        EXPECT_NE(ran.err.find(std::string(verb) + " needs to know what is inside the gateway's records; expected a layout by "
                                                   "--layout FILE, TARN_LAYOUT"),
                  std::string::npos)
            << ran.err;
    }
    for (const char* verb : {"radios", "temperature", "versions"}) // for which words are enough
        EXPECT_EQ(run({verb, "--layout", ""}).exit, 0) << verb;
}

TEST_F(FieldTasksTest, BandwidthsAreNotAskedForWhereTheLayoutDoesNotTellHow)
{
    Json layout = Json::parse(std::ifstream(TARN_GATEWAY_LAYOUT));
    layout.at("records").erase("TarnChannelQuery");
    std::ofstream(path("without.json")) << layout;
    const RanJson ran = runJson({"bandwidth", "1", "--layout", path("without.json")});
    EXPECT_EQ(ran.exit, 0) << ran.err;
    EXPECT_EQ(ran.document.at("radios").at(0).at("bandwidth"), 80);
    EXPECT_TRUE(ran.document.at("radios").at(0).at("possible_bandwidths").is_null());
}

// Each function that names an interface one way takes the other name of the argument, too, and sends the same.
TEST_F(FieldTasksTest, AnInterfaceMayBeGivenByEitherNameOfTheArgument)
{
    std::size_t functions = 0;
    for (const tarn::contract::Row& row : tarn::contract::rows())
        for (const auto& [own, other] : {std::pair("ifname", "intf_name"), std::pair("intf_name", "ifname")})
        {
            if (row.command->argument(own) == nullptr || row.command->argument(other) != nullptr)
                continue;
            ++functions;
            SCOPED_TRACE(row.command->function);
            Words words = {"call", row.command->function, "--dry-run"};
            for (const std::string& assignment : validArguments(*row.command))
                words.push_back(assignment);
            const Ran asNamed = run(words);
            EXPECT_EQ(asNamed.exit, 0) << asNamed.err;
            for (std::string& word : words)
                if (word.rfind(std::string(own) + "=", 0) == 0)
                    word = other + word.substr(word.find('='));
            EXPECT_EQ(run(words).out, asNamed.out);
        }
    EXPECT_GT(functions, 100u);
    EXPECT_EQ(run({"call", "tarn_qcsapi_wifi_get_channel", "ifname=wifi0", "intf_name=wifi0"}).exit, 2);
}

class NoGatewayTest : public TarnctlTest
{
};

TEST_F(NoGatewayTest, IsSaidByEveryVerb)
{
    for (const Words& words : {Words{"status"}, Words{"radios"}, Words{"ssids"}, Words{"stations"}, Words{"scan"},
                               Words{"channel"}, Words{"security"}, Words{"filter", "list"}, Words{"kick", "02:00:00:00:01:01"},
                               Words{"wps", "status"}, Words{"dfs"}, Words{"counters"}, Words{"boot", "get", "serial"},
                               Words{"smart-wifi", "bss"}, Words{"temperature"}, Words{"versions"}})
    {
        SCOPED_TRACE(words.front());
        for (const char* layout : {TARN_GATEWAY_LAYOUT, ""})
        {
            Words withLayout = words;
            withLayout.insert(withLayout.end(), {"--layout", layout});
            const RanJson ran = runJson(withLayout);
            EXPECT_EQ(ran.exit, 4);
            EXPECT_EQ(ran.document.at("exit"), 4);
            EXPECT_NE(ran.err.find("no service "), std::string::npos) << ran.err;
        }
    }
}

} // namespace

} // namespace tarnctl_test
