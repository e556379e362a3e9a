// `list` and `describe`: all that is exported is there, and what is said of it is the contract's.
#include "support.h"
#include "tarnctl/command_line.h"

#include <algorithm>
#include <set>
#include <sstream>

namespace tarnctl_test
{

namespace
{

using tarn::contract::Argument;
using tarn::contract::Check;
using tarn::contract::Row;

class DescribeTest : public TarnctlTest
{
};

std::size_t lineCount(const std::string& text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

const std::set<std::string> kWithoutCommand = {"tarnSubscribeEvent",  "tarnCancelEvent",    "tarnIpcStatusName",
                                               "tarnValidatePinCode", "tarnAddRateEntries", "tarnDelRatesEntries"};

TEST_F(DescribeTest, ListHasEveryExportedFunction)
{
    std::set<std::string> expected = kWithoutCommand;
    for (const Row& row : tarn::contract::rows())
        expected.insert(row.command->function);

    std::set<std::string> listed;
    const RanJson ran = runJson({"list"});
    EXPECT_EQ(ran.exit, 0);
    for (const Json& function : ran.document.at("functions"))
        listed.insert(function.at("name").get<std::string>());
    EXPECT_EQ(listed, expected);
    EXPECT_EQ(lineCount(run({"list"}).out), expected.size());
}

TEST_F(DescribeTest, ListShowsWhatTheContractSays)
{
    const RanJson ran = runJson({"list"});
    for (std::size_t i = 0; i < tarn::contract::rows().size(); ++i)
    {
        const Row& row = tarn::contract::rows()[i];
        const Json expected = {{"name", row.command->function},
                               {"service", row.contract->service},
                               {"command", row.command->command},
                               {"group", row.command->group},
                               {"description", row.command->description}};
        EXPECT_EQ(ran.document.at("functions").at(i), expected);
    }
}

TEST_F(DescribeTest, ListSelects)
{
    EXPECT_EQ(lineCount(run({"list", "--service", "QTN_MIRROR"}).out), 4u);
    EXPECT_EQ(lineCount(run({"list", "--service", "qtn_rpc_proxy"}).out),
              tarn::contract::findService("QTN_RPC_PROXY")->commands.size());
    EXPECT_EQ(lineCount(run({"list", "--service", "TARN"}).out), 117u) << "115 commands, and two functions for its events";
    EXPECT_EQ(lineCount(run({"list", "--group", "local utilities"}).out), 4u);
    EXPECT_EQ(lineCount(run({"list", "loglevel"}).out), 2u);
    EXPECT_EQ(lineCount(run({"list", "--service", "QTN_RPC_PROXY", "--group", "Radios"}).out), 0u);

    const RanJson none = runJson({"list", "nothing has this in it"});
    EXPECT_EQ(none.exit, 1);
    EXPECT_EQ(none.document.at("kind"), "error");
}

TEST_F(DescribeTest, EveryFunctionIsDescribed)
{
    for (const Row& row : tarn::contract::rows())
    {
        SCOPED_TRACE(row.command->function);
        const RanJson ran = runJson({"describe", row.command->function});
        EXPECT_EQ(ran.exit, 0);
        const Json& document = ran.document;
        EXPECT_EQ(document.at("service"), row.contract->service);
        EXPECT_EQ(document.at("command"), row.command->command);
        EXPECT_EQ(document.at("effect"), tarn::contract::toString(row.command->effect));
        EXPECT_EQ(document.at("effect_reason"), row.command->effectReason);
        EXPECT_EQ(document.at("wait"), row.command->wait);
        EXPECT_EQ(document.at("length"), row.command->length);
        EXPECT_EQ(document.at("status_offset"), row.command->statusOffset());
        EXPECT_EQ(document.at("note"), row.command->note);

        ASSERT_EQ(document.at("arguments").size(), row.command->arguments.size());
        for (std::size_t i = 0; i < row.command->arguments.size(); ++i)
        {
            const Argument& argument = row.command->arguments[i];
            EXPECT_EQ(document.at("arguments")[i].at("name"), argument.name);
            EXPECT_EQ(document.at("arguments")[i].at("input"), argument.direction == tarn::contract::Direction::kIn);
            EXPECT_EQ(document.at("arguments")[i].at("encoding"), tarn::contract::toString(argument.encoding));
            EXPECT_FALSE(document.at("arguments")[i].at("content").get<std::string>().empty());
        }
        ASSERT_EQ(document.at("checks").size(), row.command->checks.size() + 2);
        EXPECT_EQ(document.at("checks")[0].at("message"), "handle is NULL");
        EXPECT_EQ(document.at("checks")[1].at("message"), row.contract->invalidCaller);
        for (std::size_t i = 0; i < row.command->checks.size(); ++i)
            EXPECT_EQ(document.at("checks")[i + 2].at("message"), row.command->checks[i].message);

        std::size_t end = 0;
        for (const Json& field : document.at("fields"))
        {
            EXPECT_EQ(field.at("offset"), end);
            end += field.at("size").get<std::size_t>();
        }
        EXPECT_EQ(end, row.command->length);
    }
}

TEST_F(DescribeTest, EveryTextNamesArgumentsMessagesAndOffsets)
{
    for (const Row& row : tarn::contract::rows())
    {
        SCOPED_TRACE(row.command->function);
        const Ran ran = run({"describe", row.command->function});
        EXPECT_EQ(ran.exit, 0);
        EXPECT_EQ(ran.err, "");
        EXPECT_EQ(ran.out.rfind(row.command->function + "\n  " + row.command->description + "\n", 0), 0u);
        EXPECT_NE(ran.out.find("at offset " + std::to_string(row.command->statusOffset())), std::string::npos);
        EXPECT_NE(ran.out.find(row.command->note), std::string::npos);
        EXPECT_NE(ran.out.find(std::string("\neffect        ") + tarn::contract::toString(row.command->effect)),
                  std::string::npos);
        EXPECT_NE(ran.out.find(row.command->effectReason), std::string::npos);
        for (const Argument& argument : row.command->arguments)
            EXPECT_NE(ran.out.find("\n  " + argument.name + " "), std::string::npos) << argument.name;
        for (const Check& check : row.command->checks)
            EXPECT_NE(ran.out.find("\"" + check.message + "\"\n"), std::string::npos) << check.message;
    }
}

TEST_F(DescribeTest, OneInFull)
{
    EXPECT_EQ(run({"describe", "tarn_qcsapi_wifi_get_rates"}).out,
              "tarn_qcsapi_wifi_get_rates\n"
              "  " +
                  tarn::contract::find("tarn_qcsapi_wifi_get_rates").command->description +
                  "\n"
                  "\n"
                  "group         " +
                  tarn::contract::find("tarn_qcsapi_wifi_get_rates").command->group +
                  "\n"
                  "service       QTN_RPC_PROXY\n"
                  "command       106\n"
                  "effect        reads\n"
                  "wait          3 s\n"
                  "length        9376\n"
                  "reply status  at offset 9372\n"
                  "result        the reply status; -1 for a refused argument, -1 for a failed IPC call, -1 for a time-out\n"
                  "note          " +
                  tarn::contract::find("tarn_qcsapi_wifi_get_rates").command->note +
                  "\n"
                  "\n"
                  "Arguments\n"
                  "  name       type   direction  size        null        content\n"
                  "  ifname     text   in         65          refused     sent as 65 bytes, NULs behind the text\n"
                  "  rate_type  u32    in         4           no pointer  sent as it is\n"
                  "  rates      bytes  out        see length  refused     length bytes, zeros behind the message's end\n"
                  "  length     u32    in         4           no pointer  bytes of the buffer for rates, not sent\n"
                  "\n"
                  "Checks, in this order\n"
                  "  the caller id is null                                                       \"handle is NULL\"\n"
                  "  the caller id is not 1 to 31 characters, the first of them printable ASCII  \"handle is invalid\"\n"
                  "  ifname is null                                                              \"ifname is NULL\"\n"
                  "  rates is null                                                               \"rates is NULL\"\n"
                  "\n"
                  "Message\n"
                  "  offset  size        field           direction  content\n"
                  "  0       65          ifname          in         sent as 65 bytes, NULs behind the text\n"
                  "  65      3           (reserved)                 zero\n"
                  "  68      4           rate_type       in         sent as it is\n"
                  "  72      1080        (reserved)                 zero\n"
                  "  1152    up to 8220  rates           out        length bytes, zeros behind the message's end\n"
                  "  9372    4           (reply status)  out        the service's own result\n");
}

TEST_F(DescribeTest, ANumberThatMayBeNegative)
{
    const RanJson ran = runJson({"describe", "tarn_qcsapi_wifi_get_rssi_in_dbm_per_association"});
    EXPECT_EQ(ran.document.at("arguments")[2].at("signed"), true);
    EXPECT_FALSE(ran.document.at("arguments")[1].contains("signed"));
    EXPECT_NE(run({"describe", "TarnGetRadioChainRssiAt"}).out.find("as the service wrote it, may be negative"),
              std::string::npos);
}

TEST_F(DescribeTest, FunctionsWithoutACommand)
{
    for (const std::string& name : kWithoutCommand)
    {
        SCOPED_TRACE(name);
        const RanJson ran = runJson({"describe", name});
        EXPECT_EQ(ran.exit, 0);
        EXPECT_FALSE(ran.document.contains("fields"));
        EXPECT_FALSE(ran.document.at("arguments").empty());
        const bool isEventFunction = ran.document.at("group") == "Events";
        EXPECT_EQ(ran.document.at("service"), isEventFunction ? Json("TARN") : Json(nullptr));
        EXPECT_EQ(ran.document.at("checks").size(), isEventFunction ? 3u : 0u);
        EXPECT_EQ(run({"describe", name}).out.find("Message"), std::string::npos);
    }
}

TEST_F(DescribeTest, Help)
{
    for (const Words& words : {Words{"--help"}, Words{"-h"}, Words{"call", "--help"}, Words{"events", "--help"}})
    {
        const Ran ran = run(words);
        EXPECT_EQ(ran.exit, 0);
        EXPECT_EQ(ran.err, "");
        EXPECT_NE(ran.out.find("Usage: tarnctl"), std::string::npos);
    }
    const std::string help = run({"--help"}).out;
    for (int exit = 0; exit <= 7; ++exit)
        EXPECT_NE(help.find("\n  " + std::to_string(exit) + "  "), std::string::npos) << exit;
    EXPECT_EQ(run({"--version"}).out.rfind("tarnctl ", 0), 0u);
}

TEST_F(DescribeTest, AnOutputThatCannotBeWrittenIsNoSuccess)
{
    std::ostream broken(nullptr);
    std::ostringstream err;
    EXPECT_EQ(tarn::ctl::run({"list"}, broken, err), 1);
    EXPECT_EQ(err.str(), "tarnctl: the output could not be written in full\n");
}

} // namespace

} // namespace tarnctl_test
