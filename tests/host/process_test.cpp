// A whole process: its traces, its recording, its end.
#include "support.h"
#include "support/process.h"

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <vector>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace host_test
{
namespace
{

class ProcessTest : public HostTest
{
protected:
    using Environment = std::vector<std::pair<std::string, std::string>>;

    struct Result
    {
        int exitCode;
        std::string output;
        std::string errors;
    };

    Result probe(const std::vector<std::string>& arguments, const Environment& environment = {}) const
    {
        const std::string output = directory() + "/output", errors = directory() + "/errors";
        Child child([&] { return runProbe(arguments, environment, output, errors); });
        const int exitCode = child.wait();
        return {exitCode, contentOf(output), contentOf(errors)};
    }

    Result trace(std::uint32_t level, const std::string& text, const Environment& environment = {}) const
    {
        return probe({"trace", std::to_string(level), "tarn_api", "123", text}, environment);
    }

    static std::string contentOf(const std::string& path)
    {
        std::ostringstream content;
        content << std::ifstream(path).rdbuf();
        return content.str();
    }

    static std::vector<std::string> linesOf(const std::string& text)
    {
        std::vector<std::string> lines;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line);
        return lines;
    }

private:
    static int runProbe(const std::vector<std::string>& arguments, const Environment& environment, const std::string& output,
                        const std::string& errors)
    {
        for (const char* name : {"KORIIL_TRACE", "KORIIL_TRACE_FILE", "KORIIL_RECORD"})
            unsetenv(name);
        for (const auto& [name, value] : environment)
            setenv(name.c_str(), value.c_str(), 1);
        if (freopen(output.c_str(), "w", stdout) == nullptr || freopen(errors.c_str(), "w", stderr) == nullptr)
            return 101;

        std::vector<std::string> words = tarn::test::commandOf(EMULATOR, HOST_PROBE_PROGRAM, arguments);
        std::vector<char*> pointers;
        for (std::string& word : words)
            pointers.push_back(word.data());
        pointers.push_back(nullptr);
        execvp(pointers[0], pointers.data());
        return 102;
    }
};

// --- Trace -------------------------------------------------------------------------------------------------------------------

const std::string kTime = R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z)";

TEST_F(ProcessTest, ATraceIsOneLineOnStandardError)
{
    const Result result = trace(1, "level is NULL");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(std::regex_match(result.errors, std::regex(kTime + " error tarn_api:123 level is NULL\n"))) << result.errors;
}

TEST_F(ProcessTest, LevelsHaveNames)
{
    const Environment all = {{"KORIIL_TRACE", "4294967295"}};
    const char* const names[] = {"level0", "error", "warning", "notice", "debug", "level5"};
    for (std::uint32_t level = 0; level < 6; ++level)
    {
        const std::string line = trace(level, "text", all).errors;
        EXPECT_NE(line.find(std::string(" ") + names[level] + " tarn_api:123 text\n"), std::string::npos) << line;
    }
}

TEST_F(ProcessTest, TheHighestLevelShownCanBeChosen)
{
    EXPECT_NE(trace(3, "text").errors, "") << "the default is 3";
    EXPECT_EQ(trace(4, "text").errors, "");
    EXPECT_NE(trace(3, "text", {{"KORIIL_TRACE", ""}}).errors, "");
    EXPECT_NE(trace(1, "text", {{"KORIIL_TRACE", "1"}}).errors, "");
    EXPECT_EQ(trace(2, "text", {{"KORIIL_TRACE", "1"}}).errors, "");
    EXPECT_NE(trace(4, "text", {{"KORIIL_TRACE", "4"}}).errors, "");
    EXPECT_EQ(trace(1, "text", {{"KORIIL_TRACE", "off"}}).errors, "");
    EXPECT_EQ(trace(0, "text", {{"KORIIL_TRACE", "off"}}).errors, "");
    EXPECT_EQ(trace(1, "text", {{"KORIIL_TRACE", "0"}}).errors, "");
}

TEST_F(ProcessTest, ASettingThatIsNoneIsSaidOnce)
{
    for (const char* value : {"loud", "-1", "1x", "99999999999999999999", " 1"})
    {
        const auto lines = linesOf(probe({"trace-again", "3", "text"}, {{"KORIIL_TRACE", value}}).errors);
        ASSERT_EQ(lines.size(), 4u);
        EXPECT_EQ(lines[0], std::string("koriil: KORIIL_TRACE is '") + value +
                                "'; expected off or the number of the highest level to show, 1 to 4");
    }
}

TEST_F(ProcessTest, ATraceFileIsAppendedTo)
{
    const std::string path = directory() + "/trace";
    EXPECT_EQ(trace(1, "first", {{"KORIIL_TRACE_FILE", path}}).errors, "");
    EXPECT_EQ(trace(1, "second", {{"KORIIL_TRACE_FILE", path}}).errors, "");
    const auto lines = linesOf(contentOf(path));
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_TRUE(std::regex_match(lines[0], std::regex(kTime + " error tarn_api:123 first")));
    EXPECT_TRUE(std::regex_match(lines[1], std::regex(kTime + " error tarn_api:123 second")));
}

TEST_F(ProcessTest, ATraceFileThatCannotBeOpenedIsSaidOnce)
{
    const std::string path = directory() + "/missing/trace";
    const auto lines = linesOf(probe({"trace-again", "3", "text"}, {{"KORIIL_TRACE_FILE", path}}).errors);
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0],
              "koriil: trace file " + path + " cannot be opened (No such file or directory); tracing to standard error");
    EXPECT_NE(lines[3].find("error probe:2 text"), std::string::npos);
}

TEST_F(ProcessTest, ALongRecordIsCutAndSaysSo)
{
    for (const std::size_t length : {std::size_t{1100}, std::size_t{5000}})
    {
        const std::string line = trace(1, std::string(length, 'x')).errors;
        EXPECT_EQ(line.size(), 1024u);
        EXPECT_EQ(line.substr(line.size() - 10), "xxx [cut]\n");
    }
    const std::string whole = trace(1, std::string(900, 'x') + "end").errors;
    EXPECT_EQ(whole.substr(whole.size() - 7), "xxxend\n");
}

TEST_F(ProcessTest, ALongTagIsCutToo)
{
    const std::string line = probe({"trace", "1", std::string(3000, 't'), "1", "text"}).errors;
    EXPECT_EQ(line.size(), 1024u);
    EXPECT_EQ(line.substr(line.size() - 10), "ttt [cut]\n");
}

TEST_F(ProcessTest, ControlCharactersAreEscaped)
{
    const std::string line = trace(1, "a\nb\tc\x1B[31m\x7F\xC3\xA4").errors;
    EXPECT_NE(line.find(" a\\x0Ab\\x09c\\x1B[31m\\x7F\\xC3\\xA4\n"), std::string::npos) << line;
    EXPECT_EQ(linesOf(line).size(), 1u);
}

TEST_F(ProcessTest, AnEscapeIsNeverCutInTwo)
{
    for (std::size_t length = 960; length < 1000; ++length)
    {
        const std::string line = trace(1, std::string(length, 'x') + std::string(40, '\n')).errors;
        EXPECT_LE(line.size(), 1024u);
        EXPECT_TRUE(std::regex_search(line, std::regex(R"(x(\\x0A)* \[cut\]\n$)"))) << line.substr(line.size() - 30);
    }
}

TEST_F(ProcessTest, LinesOfManyProcessesDoNotMix)
{
    const std::string path = directory() + "/trace";
    const std::string text(700, 'x');
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] { probe({"trace-again", "50", text}, {{"KORIIL_TRACE_FILE", path}}); });
    for (std::thread& thread : threads)
        thread.join();
    const auto lines = linesOf(contentOf(path));
    EXPECT_EQ(lines.size(), 200u);
    const std::regex form(kTime + " error probe:\\d+ x+");
    for (const std::string& line : lines)
        EXPECT_TRUE(line.size() > text.size() && std::regex_match(line, form)) << line;
}

// A program whose standard error is a pipe, which holds no more or has no reader, and that is ended if it hangs.
int traceToPipe(bool isFull)
{
    int ends[2];
    if (pipe(ends) != 0 || dup2(ends[1], STDERR_FILENO) < 0)
        return 100;
    if (isFull)
    {
        const int flags = fcntl(ends[1], F_GETFL);
        fcntl(ends[1], F_SETFL, flags | O_NONBLOCK);
        while (write(ends[1], "x", 1) == 1)
        {
        }
        fcntl(ends[1], F_SETFL, flags);
    }
    else
        close(ends[0]);
    signal(SIGPIPE, SIG_DFL);
    alarm(kAmple / 2);
    for (std::uint32_t i = 0; i < 10; ++i)
        KorIilTrace(1, "probe", i, "%s", "text");
    return (fcntl(ends[1], F_GETFL) & O_NONBLOCK) == 0 ? 0 : 101; // the program's own mode is untouched
}

TEST_F(ProcessTest, ATraceDoesNotWaitForAReader)
{
    EXPECT_EQ(Child([] { return traceToPipe(true); }).wait(), 0);
}

TEST_F(ProcessTest, ATraceWithoutAReaderRaisesNoSignal)
{
    EXPECT_EQ(Child([] { return traceToPipe(false); }).wait(), 0);
}

// Whose number then is that of the connection.
TEST_F(ProcessTest, ATraceFileThatTheProgramHasClosedIsOpenedAgain)
{
    const std::string path = directory() + "/trace", record = directory() + "/record";
    RunningService service;
    EXPECT_EQ(probe({"call-closed", "web", kService, "00"}, {{"KORIIL_TRACE_FILE", path}, {"KORIIL_RECORD", record}}).exitCode,
              KOR_IIL_OK);
    EXPECT_EQ(linesOf(contentOf(path)).size(), 2u);
    EXPECT_EQ(linesOf(contentOf(record)).size(), 3u);
}

TEST_F(ProcessTest, AFloodOfTracesIsCutAndSaysHowManyAreMissing)
{
    const auto lines = linesOf(probe({"trace-flood", "5000", "text"}).errors);
    ASSERT_GT(lines.size(), 2u);
    EXPECT_LT(lines.size(), 5000u);
    const std::regex report(" (\\d+) trace lines dropped$");
    std::size_t written = 0, dropped = 0;
    for (const std::string& line : lines)
        if (std::smatch number; std::regex_search(line, number, report)) // one a second: it may have gone on into the next
            dropped += std::stoul(number[1]);
        else
            ++written;
    EXPECT_EQ(written + dropped, 5001u) << "the flood, and one line a second later";
    EXPECT_TRUE(std::regex_search(lines[lines.size() - 2], report)) << lines[lines.size() - 2];
}

TEST_F(ProcessTest, WhatAProgramWritesToAClosedStandardErrorDoesNotReachAService)
{
    RunningService service;
    Child child(
        []
        {
            close(STDERR_FILENO);
            for (std::uint32_t i = 0; i < 10; ++i)
            {
                if (const std::uint32_t status = callOnce())
                    return static_cast<int>(status);
                KorIilTrace(1, "probe", i, "%s", "text");
                [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, "text", 4);
            }
            return 0;
        });
    EXPECT_EQ(child.wait(), 0);
}

// --- This library's own trace lines ------------------------------------------------------------------------------------------

TEST_F(ProcessTest, ARefusedDirectoryIsExplained)
{
    ASSERT_EQ(chmod(directory().c_str(), 0770), 0);
    const Result result = probe({"call", kCaller, kService, "00"});
    EXPECT_EQ(result.exitCode, KOR_IIL_UNKNOWN_COMM);
    EXPECT_NE(result.errors.find(" warning koriil:"), std::string::npos) << result.errors;
    EXPECT_NE(result.errors.find("runtime directory " + directory() + " refused: its group may write to it"),
              std::string::npos);
}

TEST_F(ProcessTest, ALongPathIsExplained)
{
    const std::string path = directory() + "/" + std::string(80, 'x');
    const Result result = probe({"call", kCaller, kService, "00"}, {{"KORIIL_DIR", path}});
    EXPECT_EQ(result.exitCode, KOR_IIL_UNKNOWN_COMM);
    EXPECT_NE(result.errors.find("at most 107 fit; set KORIIL_DIR to a shorter one"), std::string::npos) << result.errors;
}

// --- Recording ---------------------------------------------------------------------------------------------------------------

TEST_F(ProcessTest, ARecordingHasALineForEachCall)
{
    const std::string path = directory() + "/record";
    const Environment recording = {{"KORIIL_RECORD", path}};
    RunningService service;
    EXPECT_EQ(probe({"call", "web", kService, "00417fff"}, recording).exitCode, 0);
    EXPECT_EQ(probe({"call", "a\"\\\n\xE4", kService, ""}, recording).exitCode, 0);
    EXPECT_EQ(probe({"call", "web", "NOBODY", "00"}, recording).exitCode, KOR_IIL_UNKNOWN_DST_ID);
    EXPECT_EQ(probe({"call", "", kService, "00"}, recording).exitCode, KOR_IIL_UNKNOWN_SRC_ID);

    const auto lines = linesOf(contentOf(path));
    ASSERT_EQ(lines.size(), 4u);
    const std::string front = R"(\{"time":")" + kTime + R"(","pid":\d+,"caller":)";
    const std::string order = __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__ ? "big" : "little";
    const std::string middle = R"(,"byte_order":")" + order + R"(","request":)";
    const std::string rest[] = {
        R"("web","service":"SERVICE","command":1,"wait":30,"length":4)" + middle +
            R"("00417fff","status":0,"reply":"01428000"\})",
        R"("a\\u0022\\u005c\\u000a\\u00e4","service":"SERVICE","command":1,"wait":30,"length":0)" + middle +
            R"("","status":0,"reply":""\})",
        R"("web","service":"NOBODY","command":1,"wait":30,"length":1)" + middle + R"("00","status":9,"reply":null\})",
        R"("","service":"SERVICE","command":1,"wait":30,"length":1)" + middle + R"(null,"status":8,"reply":null\})",
    };
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_TRUE(std::regex_match(lines[i], std::regex(front + rest[i]))) << lines[i];
}

TEST_F(ProcessTest, ALongMessageIsRecordedWhole)
{
    const std::string path = directory() + "/record";
    RunningService service;
    std::string hexadecimal;
    for (int i = 0; i < 9584; ++i)
        hexadecimal += "7f";
    EXPECT_EQ(probe({"call", "web", kService, hexadecimal}, {{"KORIIL_RECORD", path}}).exitCode, 0);
    const std::string line = contentOf(path);
    EXPECT_NE(line.find("\"request\":\"" + hexadecimal + "\""), std::string::npos);
    EXPECT_EQ(line.back(), '\n');
}

TEST_F(ProcessTest, ARecordingThatCannotBeMadeIsSaidAndTheCallIsDone)
{
    RunningService service;
    const Result result = probe({"call", "web", kService, "00"}, {{"KORIIL_RECORD", directory() + "/missing/record"}});
    EXPECT_EQ(result.exitCode, KOR_IIL_OK);
    EXPECT_NE(result.errors.find("cannot be opened, calls are not recorded: No such file"), std::string::npos) << result.errors;
}

TEST_F(ProcessTest, NothingIsSaidWhenNothingIsWrong)
{
    RunningService service;
    const Result result = probe({"call", "web", kService, "00"});
    EXPECT_EQ(result.exitCode, KOR_IIL_OK);
    EXPECT_EQ(result.errors, "");
}

// Of four records the second fits in part, and the third not at all.
TEST_F(ProcessTest, ARecordThatDoesNotFitLeavesTheOthersWhole)
{
    const std::string path = directory() + "/record";
    RunningService service;
    const Result result = probe({"call-limited", "web", kService, std::string(2000, '0')}, {{"KORIIL_RECORD", path}});
    EXPECT_EQ(result.exitCode, KOR_IIL_OK) << "the call is done all the same";
    EXPECT_NE(result.errors.find("could not be written"), std::string::npos) << result.errors;
    const auto lines = linesOf(contentOf(path));
    ASSERT_EQ(lines.size(), 2u);
    for (const std::string& line : lines)
    {
        EXPECT_EQ(line.rfind("{\"time\""), 0u) << line;
        EXPECT_EQ(line.back(), '}');
    }
}

// --- The end -----------------------------------------------------------------------------------------------------------------

TEST_F(ProcessTest, AProcessEndsWithEverythingOpen)
{
    RunningService service;
    const Publishing publishing(service);
    for (int i = 0; i < 10; ++i)
    {
        const Result result = probe({"end", kService});
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.output, "late call: status 0, byte 2\n");
        EXPECT_EQ(result.errors, "");
    }
}

} // namespace
} // namespace host_test
