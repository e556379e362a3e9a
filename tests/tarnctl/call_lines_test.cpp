// `tarnctl call --stdin`: many calls in one process.
#include "support.h"

#include <fstream>
#include <iostream>
#include <sstream>

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace tarnctl_test
{

namespace
{

using testing::HasSubstr;

// Standard input of this process, as long as it lasts.
class StandardInput
{
public:
    explicit StandardInput(const std::string& text) : text_(text), before_(std::cin.rdbuf(text_.rdbuf()))
    {
        std::cin.clear();
    }

    ~StandardInput()
    {
        std::cin.rdbuf(before_);
    }

    StandardInput(const StandardInput&) = delete;
    StandardInput& operator=(const StandardInput&) = delete;

private:
    std::istringstream text_;
    std::streambuf* const before_;
};

struct Answered
{
    int exit = -1;
    std::vector<Json> documents;
    std::string err;
};

Answered callLines(const Words& lines, const Words& options = {})
{
    std::string text;
    for (const std::string& line : lines)
        text += line + "\n";
    const StandardInput input(text);
    Words words = {"call", "--stdin"};
    words.insert(words.end(), options.begin(), options.end());
    const Ran ran = run(words);
    Answered answered;
    answered.exit = ran.exit;
    answered.err = ran.err;
    std::istringstream documents(ran.out);
    for (std::string document; std::getline(documents, document);)
        answered.documents.push_back(checkedDocument(document));
    return answered;
}

class CallLinesTest : public TarnctlTest
{
protected:
    Service service{"TARN", statusAnswer(0)};
};

TEST_F(CallLinesTest, AreAnsweredInTheirOrderByTheDocumentsOfTheirCalls)
{
    const Answered answered =
        callLines({R"({"function": "TarnGetLogLevel"})", R"({"function": "TarnSetLogLevel", "arguments": {"level": 4}})"});
    EXPECT_EQ(answered.exit, 0);
    EXPECT_EQ(answered.err, "");
    const std::vector<Words> alone = {{"call", "TarnGetLogLevel"}, {"call", "TarnSetLogLevel", "level=4"}};
    ASSERT_EQ(answered.documents.size(), alone.size());
    for (std::size_t index = 0; index < alone.size(); ++index)
    {
        Json document = answered.documents[index];
        EXPECT_EQ(document["line"], index + 1);
        document.erase("line");
        EXPECT_EQ(document, runJson(alone[index]).document);
    }
}

TEST_F(CallLinesTest, TakeTheValuesOfTheCommandLine)
{
    const std::string address = R"("macAddress": "02:00:00:00:01:01")";
    ASSERT_EQ(callLines({R"({"function": "TarnSetLogLevel", "arguments": {"level": 258}})",
                         R"({"function": "TarnSetLogLevel", "arguments": {"level": "0x102"}})",
                         R"({"function": "TarnKickOutAccessPointAssociated", "arguments": {"radioId": 1, "apId": 2, )" +
                             address + "}}"},
                        {"--layout="})
                  .exit,
              0);
    const std::vector<Seen> seen = service.requests();
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(wordAt(seen[0].message, 0), 258u);
    EXPECT_EQ(seen[1].message, seen[0].message);
    EXPECT_THAT(hexText(seen[2].message), HasSubstr("020000000101"));
}

TEST_F(CallLinesTest, TellNullFromTheWordNull)
{
    Service proxy("QTN_RPC_PROXY", statusAnswer(0));
    const std::string function = R"({"function": "tarn_qcsapi_wifi_set_SSID", "arguments": {"intf_name": "null", "ssid": )";
    const Answered answered = callLines({function + "\"null\"}}", function + "null}}"});
    ASSERT_EQ(answered.documents.size(), 2u);
    EXPECT_EQ(answered.documents[0]["outcome"], "done");
    EXPECT_EQ(answered.documents[1]["outcome"], "rejected");
    ASSERT_EQ(proxy.requests().size(), 1u);
    EXPECT_THAT(hexText(proxy.requests()[0].message), HasSubstr("6e756c6c00"));
}

TEST_F(CallLinesTest, NameTheirCallerOrHaveThatOfTheCommandLine)
{
    callLines({R"({"function": "TarnGetLogLevel"})", R"({"function": "TarnGetLogLevel", "caller": "ledd"})",
               R"({"function": "TarnGetLogLevel", "caller": null})"},
              {"--caller", "webui"});
    const std::vector<Seen> seen = service.requests();
    ASSERT_EQ(seen.size(), 2u); // the library refuses the null pointer
    EXPECT_EQ(seen[0].callerId, "webui");
    EXPECT_EQ(seen[1].callerId, "ledd");
}

TEST_F(CallLinesTest, AreShownInsteadOfSentInADryRun)
{
    const Answered answered =
        callLines({R"({"function": "TarnGetLogLevel"})", R"({"function": "TarnGetLogLevel", "arguments": {"level": null}})",
                   R"({"function": "tarnIpcStatusName", "arguments": {"status": 1}})"},
                  {"--dry-run"});
    EXPECT_EQ(answered.exit, 3);
    ASSERT_EQ(answered.documents.size(), 3u);
    EXPECT_EQ(answered.documents[0]["kind"], "dry-run");
    EXPECT_EQ(answered.documents[0]["line"], 1);
    EXPECT_EQ(answered.documents[1]["outcome"], "rejected");
    EXPECT_THAT(answered.documents[2]["message"], HasSubstr("sends no message"));
    EXPECT_TRUE(service.requests().empty());
}

struct BadLine
{
    const char* name;
    const char* line;
    const char* message;
};

class BadCallLine : public CallLinesTest, public testing::WithParamInterface<BadLine>
{
};

TEST_P(BadCallLine, IsToldWhatWasExpectedAndTheNextOneIsRead)
{
    const std::string good = R"({"function": "TarnGetLogLevel"})";
    const Answered answered = callLines({good, GetParam().line, good});
    EXPECT_EQ(answered.exit, 2);
    EXPECT_EQ(answered.err, "");
    ASSERT_EQ(answered.documents.size(), 3u);
    const Json& error = answered.documents[1];
    EXPECT_EQ(error["kind"], "error");
    EXPECT_EQ(error["exit"], 2);
    EXPECT_EQ(error["line"], 2);
    EXPECT_THAT(error["message"], HasSubstr(GetParam().message));
    EXPECT_EQ(answered.documents[2]["outcome"], "done");
    EXPECT_EQ(answered.documents[2]["line"], 3);
    EXPECT_EQ(service.requests().size(), 2u);
}

INSTANTIATE_TEST_SUITE_P(
    Call, BadCallLine,
    testing::Values(
        BadLine{"Empty", "", "not JSON"}, BadLine{"Words", "TarnGetLogLevel level=3", "not JSON"},
        BadLine{"CutOff", R"({"function": "TarnGetLog)", "not JSON"},
        BadLine{"NotUtf8", "{\"function\": \"\xFF\"}", "not JSON"},
        BadLine{"TwoObjects", R"({"function": "TarnGetLogLevel"} {})", "not JSON"},
        BadLine{"List", R"(["TarnGetLogLevel"])", "expected an object"},
        BadLine{"NoFunction", R"({"arguments": {}})", "/function: missing; expected a text"},
        BadLine{"UnknownFunction", R"({"function": "TarnGetLogLvel"})", "there is no function \"TarnGetLogLvel\""},
        BadLine{"UnknownKey", R"({"function": "TarnGetLogLevel", "args": {}})", "/args: unknown key"},
        BadLine{"KeyTwice", R"({"function": "TarnGetLogLevel", "function": "TarnGetLogLevel"})", "/function: given twice"},
        BadLine{"ListOfArguments", R"({"function": "TarnSetLogLevel", "arguments": ["level=3"]})",
                R"(/arguments: ["level=3"]; expected an object)"},
        BadLine{"UnknownArgument", R"({"function": "TarnSetLogLevel", "arguments": {"value": 3}})", "it has level"},
        BadLine{"MissingArgument", R"({"function": "TarnSetLogLevel"})", "level is missing; expected a number"},
        BadLine{"Fraction", R"({"function": "TarnSetLogLevel", "arguments": {"level": 2.5}})",
                "/arguments/level: 2.5; expected an integer, a text or null"},
        BadLine{"TruthValue", R"({"function": "TarnSetLogLevel", "arguments": {"level": true}})", "expected an integer"},
        BadLine{"TooLarge", R"({"function": "TarnSetLogLevel", "arguments": {"level": 4294967296}})", "level: expected"},
        BadLine{"NumberForACaller", R"({"function": "TarnGetLogLevel", "caller": 3})", "/caller: 3; expected a text"}),
    [](const auto& line) { return line.param.name; });

TEST_F(CallLinesTest, GiveTheExitCodeOfTheFirstThatFailed)
{
    const std::string good = R"({"function": "TarnGetLogLevel"})";
    const std::string refused = R"({"function": "TarnGetLogLevel", "arguments": {"level": null}})";
    const std::string elsewhere = R"({"function": "tarn_qcsapi_wifi_startprod"})";
    EXPECT_EQ(callLines({good, good}).exit, 0);
    EXPECT_EQ(callLines({good, refused, elsewhere, good}).exit, 3);
    EXPECT_EQ(callLines({elsewhere, refused, "", good}).exit, 4);
}

TEST_F(CallLinesTest, MayBeNoneAtAll)
{
    const Answered answered = callLines({});
    EXPECT_EQ(answered.exit, 0);
    EXPECT_TRUE(answered.documents.empty());
}

TEST_F(CallLinesTest, DoNotGoWithANameOrWhatBelongsToIt)
{
    for (const Words& words : {Words{"call", "TarnGetLogLevel", "--stdin"}, Words{"call", "--stdin", "--text", "ssid=null"},
                               Words{"call", "--stdin", "--save", "data=file"}, Words{"call"}})
    {
        const Ran ran = run(words);
        EXPECT_EQ(ran.exit, 2);
        EXPECT_THAT(ran.err, HasSubstr("--stdin"));
    }
}

TEST_F(CallLinesTest, BeginWithALayoutThatCanBeUsed)
{
    const Answered answered = callLines({R"({"function": "TarnGetLogLevel"})"}, {"--layout", path("missing")});
    EXPECT_EQ(answered.exit, 2);
    EXPECT_TRUE(answered.documents.empty());
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(CallLinesTest, AreAnsweredBeforeTheNextOneIsWritten)
{
    const std::string fifo = path("lines");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    Program program({"-c", "exec \"$0\" call --stdin < " + fifo, TARNCTL_PROGRAM}, "/bin/sh");
    std::ofstream lines(fifo);
    for (int number = 1; number <= 3; ++number)
    {
        lines << R"({"function": "TarnGetLogLevel"})" << std::endl;
        EXPECT_EQ(checkedDocument(program.nextLine())["line"], number);
    }
    lines << R"({"function": "TarnGetLogLevel"})"; // the last one needs no end
    lines.close();
    EXPECT_EQ(checkedDocument(program.nextLine())["line"], 4);
    EXPECT_EQ(program.exitCode(), 0);
}

} // namespace

} // namespace tarnctl_test
