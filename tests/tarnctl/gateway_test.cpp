// Orders to the simulated gateway, which runs as a program of its own.
#include "simulator/order_forms.h"
#include "support.h"

#include <cstdio>
#include <fstream>
#include <memory>

namespace tarnctl_test
{

class GatewayOrderTest : public TarnctlTest
{
protected:
    void SetUp() override
    {
        TarnctlTest::SetUp();
        gateway_ = std::make_unique<Program>(Words{"--speed", "0"}, TARN_GATEWAY_PROGRAM);
        ASSERT_EQ(gateway_->nextLine(), "ready");
    }

    std::unique_ptr<Program> gateway_;
};

TEST_F(GatewayOrderTest, ReadsAndChangesTheState)
{
    EXPECT_EQ(run({"gateway", "state", "/radios/0/channel"}).out, "36\n");
    EXPECT_EQ(run({"gateway", "state", "/radios/0/name"}).out, "radio0\n");
    EXPECT_EQ(run({"gateway", "set", "/radios/0/interfaces/0/ssid", "plain"}).exit, 0);
    EXPECT_EQ(run({"gateway", "state", "/radios/0/interfaces/0/ssid"}).out, "plain\n");
    EXPECT_EQ(run({"gateway", "set", "/radios/0/interfaces/0/ssid", R"("it's \"two words\"")"}).out, "");
    const RanJson ran = runJson({"gateway", "state", "/radios/0/interfaces/0/ssid"});
    EXPECT_EQ(ran.exit, 0);
    EXPECT_EQ(ran.document.at("answer"), "it's \"two words\"");
    EXPECT_EQ(ran.document.at("order"), Json({"state", "/radios/0/interfaces/0/ssid"}));
}

// Sixty times sixty clients, far more than a message holds.
TEST_F(GatewayOrderTest, ReadsAStateOfAnySize)
{
    Json clients = Json::array();
    for (int i = 0; i < 3600; ++i)
    {
        char address[18];
        std::snprintf(address, sizeof address, "02:00:00:01:%02x:%02x", static_cast<unsigned>(i / 60),
                      static_cast<unsigned>(i % 60));
        clients.push_back({{"address", address}, {"ssid", "elsewhere"}});
    }
    Json scenario = Json::parse(run({"gateway", "state"}).out);
    for (Json& radio : scenario["radios"])
        for (Json& interface : radio["interfaces"])
            interface["stations"] = Json::array();
    scenario["clients"] = clients;
    std::ofstream(path("many.json")) << scenario;
    gateway_.reset();
    Program large({"--scenario", path("many.json"), "--speed", "0"}, TARN_GATEWAY_PROGRAM);
    ASSERT_EQ(large.nextLine(), "ready");
    EXPECT_EQ(Json::parse(run({"gateway", "state", "/clients"}).out).size(), 3600u);
}

TEST_F(GatewayOrderTest, SaysWhyAnOrderWasRefused)
{
    const Ran ran = run({"gateway", "radar", "36"});
    EXPECT_EQ(ran.exit, 7);
    EXPECT_EQ(
        ran.err,
        "tarnctl: the simulated gateway answered with status 17: expected a channel of 20 MHz on which there can be radar, "
        "from 52 to 144; got 36\n");
    EXPECT_EQ(run({"gateway", "rader", "36"}).exit, 2);
    EXPECT_NE(run({"gateway", "rader", "36"}).err.find("radar"), std::string::npos);
    EXPECT_EQ(run({"gateway"}).exit, 2);
    EXPECT_EQ(run({"gateway", "set", "/description", '"' + std::string(30000, 'x') + '"'}).exit, 2);
}

TEST_F(GatewayOrderTest, SavesFromWhereItIsCalled)
{
    EXPECT_EQ(run({"gateway", "save", path("saved.json")}).exit, 0);
    std::ifstream file(path("saved.json"));
    EXPECT_EQ(Json::parse(file).at("radios").size(), 2u);
}

TEST_F(GatewayOrderTest, PassesListsOnAsTheyAre)
{
    EXPECT_EQ(run({"gateway", "set", "/radios/0/interfaces/0/macFilter", R"(["02:00:00:00:09:01","02:00:00:00:09:02"])"}).exit,
              0);
    EXPECT_EQ(runJson({"gateway", "state", "/radios/0/interfaces/0/macFilter"}).document.at("answer").size(), 2u);
    EXPECT_EQ(run({"gateway", "set", "/radios/0/interfaces/0/macFilter", "[]"}).exit, 0);
    EXPECT_EQ(runJson({"gateway", "state", "/radios/0/interfaces/0/macFilter"}).document.at("answer").size(), 0u);
}

TEST_F(GatewayOrderTest, LetsThingsGoWrong)
{
    EXPECT_EQ(run({"gateway", "faults", "add", "ipcStatus", "status=21", "count=1"}).exit, 0);
    EXPECT_EQ(run({"log-level"}).exit, 6);
    EXPECT_EQ(run({"log-level"}).exit, 0);
}

TEST_F(GatewayOrderTest, ShowsTheLastRequests)
{
    EXPECT_EQ(run({"gateway", "log"}).out, "");
    EXPECT_EQ(run({"gateway", "log", "on"}).exit, 0);
    EXPECT_EQ(run({"log-level", "9"}).exit, 7);
    EXPECT_EQ(run({"gateway", "log", "off"}).exit, 0);
    const std::string line = run({"gateway", "log"}).out;
    EXPECT_EQ(line.find("0.000 tarnctl ("), 0u) << line;
    EXPECT_NE(line.find(") TarnSetLogLevel level=9: 17 (INVALID_VALUE), "), std::string::npos) << line;
    EXPECT_EQ(line.find('\n'), line.size() - 1) << line;
    EXPECT_EQ(runJson({"gateway", "log"}).document.at("answer").size(), 1u);
}

TEST_F(GatewayOrderTest, ExplainsAllOrders)
{
    const std::string help = run({"gateway", "--help"}).out;
    for (const tarn::simulator::OrderForm& form : tarn::simulator::kOrderForms)
        EXPECT_NE(help.find("\n  " + std::string(form.words) + "\n"), std::string::npos) << form.words;
}

TEST_F(GatewayOrderTest, EndsTheGateway)
{
    EXPECT_EQ(run({"gateway", "shutdown"}).exit, 0);
    EXPECT_EQ(gateway_->exitCode(), 0);
    const Ran ran = run({"gateway", "state"});
    EXPECT_EQ(ran.exit, 4);
    EXPECT_EQ(ran.err, "tarnctl: no simulated gateway is running in " + directory +
                           " (only that one takes orders): UNKNOWN_DST_ID (IPC status 9)\n");
}

} // namespace tarnctl_test
