// `tarnctl metrics`: the text is read by the parser of the format's authors, and by nothing of our own.
#include "support.h"
#include "tarnctl/occupancy.h"
#include "tarnctl/open_metrics.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>

#include <sys/stat.h>

namespace tarnctl_test
{

namespace
{

using tarn::ctl::Metric;
using tarn::ctl::Metrics;
using tarn::ctl::MetricType;

std::string contentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

class MetricsTest : public TarnctlTest
{
protected:
    // Families and samples, one a line.
    std::string parsed(const std::string& text) const
    {
        std::ofstream(path("metrics"), std::ios::binary) << text;
        return shellOutput("PYTHONIOENCODING=utf-8 /usr/bin/python3 " OPEN_METRICS_READER " < " + path("metrics"));
    }

    // The gateway's layout with that text in it replaced.
    std::string layoutWith(const std::string& text, const std::string& other) const
    {
        const std::string layout = contentOf(TARN_GATEWAY_LAYOUT);
        std::ofstream(path("layout.json")) << std::regex_replace(layout, std::regex(text), other);
        return path("layout.json");
    }

    Words filesIn(const std::string& name) const
    {
        Words files;
        for (const auto& entry : std::filesystem::directory_iterator(path(name)))
            files.push_back(entry.path().filename());
        return files;
    }
};

class MetricsOfAGatewayTest : public MetricsTest
{
protected:
    void SetUp() override
    {
        gateway_ = std::make_unique<Program>(Words(), TARN_GATEWAY_PROGRAM);
        ASSERT_EQ(gateway_->nextLine().rfind("ready", 0), 0u);
    }

    std::string parsedOutput(const Words& words) const
    {
        const Ran ran = run(words);
        EXPECT_EQ(ran.exit, 0);
        EXPECT_EQ(ran.err, "");
        return parsed(ran.out);
    }

private:
    std::unique_ptr<Program> gateway_;
};

void expectLines(const std::string& text, const Words& lines)
{
    for (const std::string& line : lines)
        EXPECT_NE(("\n" + text).find("\n" + line + "\n"), std::string::npos) << "expected " << line << " in\n" << text;
}

TEST_F(MetricsOfAGatewayTest, HaveTheNamesAndUnitsThatOtherExportersUse)
{
    expectLines(
        parsedOutput({"metrics"}),
        {"family wifi_interface_frequency_hertz gauge hertz", "wifi_interface_frequency_hertz device=\"wifi0\" 5180000000.0",
         "wifi_interface_frequency_hertz device=\"wlan0\" 2437000000.0", "family wifi_interface_receive_bytes counter bytes",
         "family wifi_station_signal_dbm gauge dbm", "wifi_station_signal_dbm device=\"wifi0\" station=\"0\" -48.0",
         "wifi_station_signal_dbm device=\"wlan0\" station=\"0\" -58.0",
         "wifi_station_transmit_bits_per_second device=\"wifi0\" station=\"0\" 1300000000.0",
         "wifi_interface_stations device=\"wifi0\" 3.0", "wifi_interface_enabled device=\"wifi0\" 1.0",
         "wifi_interface_info bssid=\"02:00:00:00:00:10\" device=\"wifi0\" radio=\"1\" ssid=\"home\" 1.0",
         "wifi_radio_bandwidth_hertz radio=\"1\" 80000000.0", "wifi_radio_channel_load_ratio radio=\"1\" 0.12",
         "wifi_radio_info band=\"5GHz\" country=\"eu\" driver=\"5.3.1-sim\" mode=\"11ac\" name=\"radio0\" radio=\"1\" 1.0",
         "wifi_radio_temperature_celsius radio=\"1\" 58.0", "wifi_module_temperature_celsius sensor=\"baseband\" 63.0",
         "family wifi_module_uptime_seconds gauge seconds",
         "wifi_gateway_info firmware=\"5.3.1-sim\" layout=\"tarn-gateway 1 (the simulated gateway of this kit)\" 1.0"});
}

TEST_F(MetricsOfAGatewayTest, TellTheAddressesOfStationsOnlyOnRequest)
{
    EXPECT_EQ(run({"metrics"}).out.find("02:00:00:00:01:"), std::string::npos);
    const std::string named = parsedOutput({"metrics", "--addresses"});
    expectLines(named,
                {"wifi_station_signal_dbm device=\"wifi0\" mac_address=\"02:00:00:00:01:01\" -48.0",
                 "wifi_station_info device=\"wifi0\" mac_address=\"02:00:00:00:01:01\" mode=\"11ac\" 1.0",
                 "family wifi_station_receive_bytes counter bytes", "family wifi_station_connected_seconds counter seconds"});
    EXPECT_EQ(named.find("station=\""), std::string::npos);
}

TEST_F(MetricsOfAGatewayTest, KeepTheNameOfANetworkWhateverItsBytesAre)
{
    ASSERT_EQ(run({"call", "TarnSetSsidIntfCfg", "radioId=1", "ssidId=1", "cfg.ssid=\"a\\b\" \xc3\xa9 {x=1}"}).exit, 0);
    ASSERT_EQ(run({"call", "TarnSetSsidIntfCfg", "radioId=1", "ssidId=2", "cfg.ssid=\xff\n\x1b[2J"}).exit, 0);
    const std::string metrics = parsedOutput({"metrics"});
    expectLines(metrics, {"wifi_interface_info bssid=\"02:00:00:00:00:10\" device=\"wifi0\" radio=\"1\" "
                          "ssid=\"\\\"a\\\\b\\\" \xc3\xa9 {x=1}\" 1.0",
                          "wifi_interface_info bssid=\"02:00:00:00:00:11\" device=\"wifi1\" radio=\"1\" "
                          "ssid=\"\\\\xff\\\\x0a\\\\x1b[2J\" 1.0"}); // backslashes doubled by the reader
}

TEST_F(MetricsOfAGatewayTest, ReplaceTheTextFile)
{
    std::filesystem::create_directory(path("textfiles"));
    std::ofstream(path("textfiles/wifi.prom")) << "of the time before";
    const Ran ran = run({"metrics", "--textfile", path("textfiles/wifi.prom")});
    EXPECT_EQ(ran.exit, 0) << ran.err;
    EXPECT_EQ(ran.out, "");
    EXPECT_EQ(ran.err, "");
    EXPECT_EQ(filesIn("textfiles"), Words{"wifi.prom"});
    expectLines(parsed(contentOf(path("textfiles/wifi.prom"))), {"wifi_radio_channel radio=\"2\" 6.0"});
    struct stat status = {};
    ASSERT_EQ(stat(path("textfiles/wifi.prom").c_str(), &status), 0);
    EXPECT_NE(status.st_mode & S_IRGRP, 0u) << "the collector is another user";
}

TEST_F(MetricsOfAGatewayTest, SayWhichFileCannotBeWritten)
{
    const Ran ran = run({"metrics", "--textfile", path("nowhere/wifi.prom")});
    EXPECT_EQ(ran.exit, 1);
    EXPECT_EQ(ran.out, "");
    EXPECT_NE(ran.err.find(path("nowhere/wifi.prom") + " cannot be written: No such file or directory"), std::string::npos)
        << ran.err;
}

TEST_F(MetricsOfAGatewayTest, GoByTheUnitsOfTheLayout)
{
    const std::string layout = layoutWith("\"unit\": \"MHz\"", "\"unit\": \"kHz\"");
    expectLines(parsedOutput({"metrics", "--layout", layout}), {"wifi_radio_bandwidth_hertz radio=\"1\" 80000.0"});
    layoutWith("\"unit\": \"dBm\"", "\"unit\": \"half decibels\"");
    const std::string metrics = parsedOutput({"metrics", "--layout", layout});
    EXPECT_EQ(metrics.find("_dbm"), std::string::npos) << "nobody knows what these numbers are";
    expectLines(metrics, {"wifi_radio_bandwidth_hertz radio=\"1\" 80000000.0"});
}

TEST_F(MetricsOfAGatewayTest, AreOneAndZeroForOnAndOffWhateverTheirNumbersAre)
{
    const std::string swapped = layoutWith(R"("switch": \{ "off": 0, "on": 1 \})", R"("switch": { "off": 1, "on": 0 })");
    expectLines(parsedOutput({"metrics", "--layout", swapped}), {"wifi_interface_enabled device=\"wifi0\" 0.0"});
    const std::string unknown = layoutWith(R"("switch": \{ "off": 0, "on": 1 \})", R"("switch": { "asleep": 0, "awake": 1 })");
    EXPECT_EQ(parsedOutput({"metrics", "--layout", unknown}).find("_enabled"), std::string::npos);
}

// Two of the three networks are called alike, and this layout calls the interfaces by them.
TEST_F(MetricsOfAGatewayTest, TakeTheFirstOfTwoObjectsThatCannotBeToldApart)
{
    const std::string layout = layoutWith(R"(\{ "name": "name"(, "offset": 8, [^}]*\}[^}]*\}[^}]*)\{ "name": "ssid")",
                                          R"({ "name": "alias"$1{ "name": "name")");
    const Ran ran = run({"metrics", "--layout", layout});
    EXPECT_EQ(ran.exit, 0);
    EXPECT_NE(ran.err.find("the gateway tells twice of wifi_interface_stations{device=\"home\"}; the first is taken\n"),
              std::string::npos)
        << ran.err;
    expectLines(parsed(ran.out),
                {"wifi_interface_stations device=\"home\" 3.0", "wifi_interface_stations device=\"guests\" 1.0"});
}

TEST_F(MetricsOfAGatewayTest, AreADocumentToo)
{
    const Json document = runJson({"metrics"}).document;
    EXPECT_EQ(document.at("layout").at("name"), "tarn-gateway");
    for (const Json& family : document.at("metrics"))
        if (family.at("name") == "wifi_interface_stations")
        {
            EXPECT_EQ(family.at("samples").at(0), (Json{{"labels", {{"device", "wifi0"}}}, {"value", 3}}));
            return;
        }
    FAIL() << document;
}

TEST_F(MetricsOfAGatewayTest, RefuseWhatDoesNotGoTogether)
{
    const Ran ran = run({"metrics", "--json", "--textfile", path("wifi.prom")});
    EXPECT_EQ(ran.exit, 2);
    EXPECT_NE(ran.err.find("metrics: expected --textfile or JSON, not both"), std::string::npos) << ran.err;
    EXPECT_EQ(run({"metrics", "--format", "csv"}).exit, 2);
    EXPECT_EQ(run({"metrics", "--layout", ""}).exit, 2);
    EXPECT_FALSE(std::filesystem::exists(path("wifi.prom")));
}

// A gateway that is not there, and one that fails when it has answered the first question.
TEST_F(MetricsTest, OfAGatewayThatDoesNotAnswerLeaveTheTextFileAsItWas)
{
    std::filesystem::create_directory(path("textfiles"));
    std::ofstream(path("textfiles/wifi.prom")) << "of the time before";
    const Words words = {"metrics", "--layout", TARN_GATEWAY_LAYOUT, "--textfile", path("textfiles/wifi.prom")};
    const auto expectFailure = [&](int exit, const std::string& error)
    {
        const Ran ran = run(words);
        EXPECT_EQ(ran.exit, exit);
        EXPECT_EQ(ran.out, "");
        EXPECT_NE(ran.err.find(error), std::string::npos) << ran.err;
        EXPECT_EQ(filesIn("textfiles"), Words{"wifi.prom"});
        EXPECT_EQ(contentOf(path("textfiles/wifi.prom")), "of the time before");
    };
    expectFailure(4, "no service ");
    const Service module("QTN_RPC_PROXY", statusAnswer(0));
    const Service device("TARN",
                         [](const KorIilRequest& request, Bytes& message) -> std::uint32_t
                         {
                             constexpr std::uint32_t kGetRadioNum = 5;
                             putWord(message, 28, 2);
                             return request.command == kGetRadioNum ? KOR_IIL_OK : KOR_IIL_TIMEOUT;
                         });
    expectFailure(5, "TIMEOUT");
}

TEST_F(MetricsTest, OfAGatewayWithoutItsModuleAreThoseOfTheRest)
{
    const Service device("TARN", statusAnswer(0));
    const Ran ran = run({"metrics", "--layout", TARN_GATEWAY_LAYOUT});
    EXPECT_EQ(ran.exit, 4);
    EXPECT_NE(ran.err.find("QTN_RPC_PROXY"), std::string::npos) << ran.err;
    expectLines(parsed(ran.out),
                {"wifi_gateway_info firmware=\"\" layout=\"tarn-gateway 1 (the simulated gateway of this kit)\" 1.0"});
}

TEST(FrequencyTest, IsThatOfTheChannelInItsBand)
{
    using tarn::ctl::Band;
    using tarn::ctl::frequencyOf;
    EXPECT_EQ(frequencyOf(Band::k2GHz, 1), 2412);
    EXPECT_EQ(frequencyOf(Band::k2GHz, 13), 2472);
    EXPECT_EQ(frequencyOf(Band::k2GHz, 14), 2484);
    EXPECT_EQ(frequencyOf(Band::k5GHz, 36), 5180);
    EXPECT_EQ(frequencyOf(Band::k5GHz, 165), 5825);
    EXPECT_EQ(frequencyOf(Band::k6GHz, 1), 5955);
    EXPECT_EQ(frequencyOf(Band::k6GHz, 2), 5935);
    EXPECT_EQ(frequencyOf(Band::k6GHz, 233), 7115);
}

TEST(OpenMetricsTest, KeepTheSamplesOfAFamilyTogether)
{
    constexpr Metric kHeat = {"heat_celsius", MetricType::kGauge, "celsius", "How warm it is."};
    constexpr Metric kSteps = {"steps", MetricType::kCounter, "", "Steps made."};
    Metrics metrics;
    EXPECT_EQ(metrics.text(), "# EOF\n");
    EXPECT_TRUE(metrics.add(kHeat, {{"room", "1"}}, 20.5));
    EXPECT_TRUE(metrics.add(kSteps, {}, 7));
    EXPECT_TRUE(metrics.add(kHeat, {{"room", "2"}}, -3));
    EXPECT_FALSE(metrics.add(kHeat, {{"room", "1"}}, 99));
    EXPECT_EQ(metrics.text(), "# TYPE heat_celsius gauge\n"
                              "# UNIT heat_celsius celsius\n"
                              "# HELP heat_celsius How warm it is.\n"
                              "heat_celsius{room=\"1\"} 20.5\n"
                              "heat_celsius{room=\"2\"} -3\n"
                              "# TYPE steps counter\n"
                              "# HELP steps Steps made.\n"
                              "steps_total 7\n"
                              "# EOF\n");
}

} // namespace

} // namespace tarnctl_test
