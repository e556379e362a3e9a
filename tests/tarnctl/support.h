// What the tests of tarnctl share: running it in this process, services it can talk to, and its program in a process of its
// own.
#pragma once

#include "base/hexadecimal.h"
#include "contract/contract.h"
#include "support/process.h"
#include "support/services.h"
#include "tarnctl/terminal.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace tarnctl_test
{

using tarn::base::Bytes;
using tarn::base::hexText;
using Words = std::vector<std::string>;
using Json = nlohmann::json;

struct Ran
{
    int exit = -1;
    std::string out;
    std::string err;
};

// In this process, with its streams connected to that.
Ran run(const Words& arguments, const tarn::ctl::Terminal& terminal = {});

// The same with --json. The whole of standard output is one document, which is checked against the published schema.
struct RanJson
{
    int exit = -1;
    Json document;
    std::string err;
};
RanJson runJson(Words arguments);

// Fails the test unless the text is a document that the published schema allows.
Json checkedDocument(const std::string& text);

// An empty runtime directory for each test, in which no service runs yet.
class TarnctlTest : public ::testing::Test
{
protected:
    TarnctlTest();

    std::string path(const std::string& file) const
    {
        return directory + "/" + file;
    }

private:
    tarn::test::TemporaryRuntimeDirectory runtimeDirectory_;

protected:
    const std::string directory = runtimeDirectory_.path();
};

using Answer = std::function<std::uint32_t(const KorIilRequest&, Bytes&)>;

// One request as the service saw it.
struct Seen
{
    std::string callerId;
    std::uint32_t command = 0;
    std::uint32_t wait = 0;
    Bytes message;
};

// A service in a thread of this process.
class Service
{
public:
    Service(const char* serviceId, Answer answer, std::uint32_t eventCount = 0);

    std::uint32_t publish(std::uint32_t event, const Bytes& data);
    std::vector<Seen> requests() const;

private:
    static std::uint32_t handle(void* context, const KorIilRequest* request, void* message);

    Answer answer_;
    mutable std::mutex mutex_;
    std::vector<Seen> seen_;
    tarn::test::ServiceThread service_;
};

// Answers with the request as it came and that status in the last word.
Answer statusAnswer(std::uint32_t status);
// Answers with that IPC status and no reply.
Answer ipcAnswer(std::uint32_t status);

void putWord(Bytes& message, std::size_t offset, std::uint32_t word);
std::uint32_t wordAt(const Bytes& message, std::size_t offset);
Bytes fromHex(const std::string& text);

// What a command prints on standard output. It has to succeed.
std::string shellOutput(const std::string& command);

// A program, tarnctl unless another is named, in a process of its own.
class Program
{
public:
    explicit Program(const Words& arguments, const std::string& program = TARNCTL_PROGRAM);

    // The next line of either stream without its end; empty at the end of the stream.
    std::string nextLine() const;      // of standard output
    std::string nextErrorLine() const; // of standard error

    void signal(int number) const;
    // Waits for its end; 128 and the signal that ended it.
    int exitCode();

private:
    tarn::test::Pipe out_, err_;
    tarn::test::Process process_;
};

// Numbers, texts and bytes that fit a function: an assignment for each of its inputs, those of a null pointer left out.
Words validArguments(const tarn::contract::Command& command);

// A value for one input, different for each `seed`.
std::string validValue(const tarn::contract::Argument& argument, std::size_t seed);

} // namespace tarnctl_test
