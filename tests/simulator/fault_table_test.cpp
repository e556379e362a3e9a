// Every function, with every fault that can happen to its request: the documented result, the one trace, outputs left alone, no
// hang, the next call works, and what is carried out is carried out once.
#include "calling/calling.h"
#include "contract/contract.h"
#include "kor_iil.h"
#include "kor_iil_service.h"
#include "simulator/gateway.h"
#include "simulator/scenario.h"
#include "support/services.h"
#include "tarn_frame.h"
#include "tarn_gateway_order.hpp"

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace
{

namespace calling = tarn::calling;
namespace contract = tarn::contract;
namespace simulator = tarn::simulator;
using Json = nlohmann::ordered_json;

std::mutex traceMutex;
std::vector<std::string> traces; // of the library

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the name is the linker's, which sends the calls of KorIilTrace here
extern "C" void __wrap_KorIilTrace(std::uint32_t level, const char* fileTag, std::uint32_t line, const char* format, ...)
    __attribute__((format(printf, 4, 5)));
extern "C" void __wrap_KorIilTrace(std::uint32_t, const char* fileTag, std::uint32_t line, const char* format, ...)
// NOLINTEND(bugprone-reserved-identifier)
{
    if (std::string(fileTag).rfind("tarn_", 0) != 0)
        return;
    char text[256];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    const std::lock_guard<std::mutex> guard(traceMutex);
    traces.push_back(std::string(fileTag) + ":" + std::to_string(line) + " " + text);
}

namespace
{

constexpr const char* kCaller = "table";
constexpr std::uint8_t kFill = 0xa5;
constexpr std::size_t kRoom = 16384; // bytes, more than any function reads or writes

// A call of one function: ids and numbers 1, texts that are a path or a name, outputs that are filled to see whether they are
// written.
class Call
{
public:
    explicit Call(const contract::Row& row) : row_(row), function_(*calling::find(row.command->function))
    {
        for (std::size_t i = 0; i < function_.parameters->size(); ++i)
        {
            const calling::ParameterType& parameter = (*function_.parameters)[i];
            const bool isOutput = parameter.kind == calling::ParameterKind::kPointer && !parameter.isConst;
            std::vector<std::uint8_t>& buffer = buffers_.emplace_back(kRoom, isOutput ? kFill : 0);
            const std::string text = row.command->arguments.at(i).name.find("name") == std::string::npos ? "/1" : "wifi0";
            if (!isOutput && parameter.isCharacter)
                text.copy(reinterpret_cast<char*>(buffer.data()), text.size());
            values_.push_back({1, buffer.data()});
        }
        before_ = buffers_;
    }

    void run()
    {
        const auto begin = std::chrono::steady_clock::now();
        result_ = function_.call(kCaller, values_.data(), values_.size());
        duration_ = std::chrono::steady_clock::now() - begin;
    }

    std::chrono::steady_clock::duration duration() const
    {
        return duration_;
    }

    std::int64_t result() const
    {
        return result_;
    }

    bool isUntouched() const
    {
        return buffers_ == before_;
    }

    const std::string& name() const
    {
        return row_.command->function;
    }

    const contract::Row& row() const
    {
        return row_;
    }

    bool isOfDevice() const
    {
        return row_.contract->service == "TARN";
    }

    // Of an IPC failure.
    std::int64_t failure(bool isTimeOut = false) const
    {
        if (!isOfDevice())
            return -1;
        return isTimeOut ? std::int64_t{TARN_TIMED_OUT} : std::int64_t{TARN_FAILED};
    }

private:
    contract::Row row_;
    const calling::Callable& function_;
    std::vector<std::vector<std::uint8_t>> buffers_;
    std::vector<std::vector<std::uint8_t>> before_;
    std::vector<calling::ArgumentValue> values_;
    std::int64_t result_ = 0;
    std::chrono::steady_clock::duration duration_{};
};

// Answered by the simulated gateway itself: done, or one of its reasons not to.
bool isAnswer(const Call& call)
{
    const std::int64_t result = call.result();
    return result == 0 || (call.isOfDevice() ? result >= 16 && result <= 22 : result <= -201 && result >= -207);
}

using Lines = std::vector<std::string>;

class FaultTableTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        simulator::readDefaultScenario(model_);
        gateway_ = std::make_unique<simulator::Gateway>(
            model_, [] {}, 0);
        gateway_->setLogWriter([this](const std::string& line) { noteServed(line); });
        gateway_->setLogging(true);
        gateway_->start();
        takeTraces();
    }

    void TearDown() override
    {
        std::printf("%zu cases\n", cases_);
        gateway_.reset();
    }

    static Json order(const std::string& line)
    {
        const tarn::gateway::OrderAnswer answer = tarn::gateway::giveOrder("tester", line, 60);
        EXPECT_EQ(answer.ipcStatus, 0u) << line;
        EXPECT_EQ(answer.status, 0u) << line << ": " << answer.text;
        return answer.status == 0 ? Json::parse(answer.text) : Json();
    }

    static Lines takeTraces()
    {
        const std::lock_guard<std::mutex> guard(traceMutex);
        return std::exchange(traces, {});
    }

    // What the gateway logged of requests of that call's command since it was asked last.
    Lines takeServed(const Call& call)
    {
        const std::lock_guard<std::mutex> guard(servedMutex_);
        return std::exchange(served_[keyOf(call.row())], {});
    }

    // Until its service can be called again. One that is restarted answers for a moment still; the new one has counted no call.
    static void await(const std::string& service, bool isRestarted = false)
    {
        KorIilServiceCounters counters;
        for (int i = 0; i < 10000; ++i)
        {
            if (KorIilAskCounters(service.c_str(), 3, &counters) == KOR_IIL_OK && (!isRestarted || counters.calls == 0))
                return;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        ADD_FAILURE() << service << " has not come back";
    }

    // The next call, without a fault, is answered.
    static void expectNextWorks(const Call& before)
    {
        Call next(before.row());
        next.run();
        EXPECT_TRUE(isAnswer(next)) << next.result();
        EXPECT_EQ(takeTraces(), Lines());
    }

    static void expectFailed(const Call& call, const std::string& ipcStatus)
    {
        EXPECT_EQ(call.result(), call.failure(ipcStatus == "TIMEOUT"));
        EXPECT_TRUE(call.isUntouched());
        const Lines traced = takeTraces();
        ASSERT_EQ(traced.size(), 1u);
        EXPECT_EQ(traced[0].substr(traced[0].find(' ')), " fail to KorIilExecute(), err = " + ipcStatus);
    }

    // One function after another, each with the fault once.
    void expectOfEach(const std::string& fault, const std::function<void(const Call&)>& check)
    {
        const bool isRestarted = fault == "restart" || fault == "die";
        std::set<std::string> called; // so that each service has counted a call before it is restarted
        for (const contract::Row& row : contract::rows())
        {
            SCOPED_TRACE(fault + ": " + row.command->function);
            Call call(row);
            if (called.insert(row.contract->service).second)
                expectNextWorks(call);
            takeServed(call);
            ++cases_;
            order("faults add " + fault + " count=1 function=" + row.command->function);
            takeTraces();
            call.run();
            check(call);
            const Lines served = takeServed(call);
            ASSERT_EQ(served.size(), 1u) << "the request was received once";
            EXPECT_NE(served[0].find("fault " + fault.substr(0, fault.find(' '))), std::string::npos) << served[0];
            EXPECT_EQ(order("faults"), Json::array()) << "the fault has happened, and is gone";
            await(row.contract->service, isRestarted);
            expectNextWorks(call);
            takeServed(call);
            if (HasFailure())
                return;
        }
    }

    // A hung service carries none of them out, and does not even look at those whose callers have given up.
    static void expectServed(const std::string& fault, const Lines& served, std::size_t number)
    {
        if (fault == "noAnswer")
            EXPECT_EQ(served.size(), number) << "each was received once";
        else
            EXPECT_LE(served.size(), number) << "none was received twice";
        for (const std::string& line : served)
            EXPECT_NE(line.find(": no answer, "), std::string::npos) << line;
    }

    // All functions at the same time, as each waits for seconds.
    void expectAllTimeOut(const std::string& fault)
    {
        order("faults add " + fault);
        takeTraces();
        std::deque<Call> calls;
        std::vector<std::thread> threads;
        for (const contract::Row& row : contract::rows())
        {
            Call& call = calls.emplace_back(row);
            threads.emplace_back([&call] { call.run(); });
        }
        for (std::thread& thread : threads)
            thread.join();
        order("faults clear");
        for (const char* service : {"TARN", "QTN_RPC_PROXY", "QTN_MIRROR"})
            await(service);
        const Lines traced = takeTraces();
        EXPECT_EQ(traced.size(), calls.size());
        EXPECT_EQ(std::set<std::string>(traced.begin(), traced.end()).size(), calls.size()) << "one for each function";
        for (const std::string& each : traced)
            EXPECT_EQ(each.substr(each.find(' ')), " fail to KorIilExecute(), err = TIMEOUT");
        std::map<std::string, std::size_t> functions; // with that command
        for (const Call& call : calls)
            ++functions[keyOf(call.row())];
        for (const Call& call : calls)
        {
            SCOPED_TRACE(fault + ": " + call.name());
            ++cases_;
            EXPECT_EQ(call.result(), call.failure(true));
            EXPECT_TRUE(call.isUntouched());
            EXPECT_LT(call.duration(), std::chrono::seconds(call.row().command->wait + 10)) << "no hang beyond the wait";
            std::size_t& left = functions[keyOf(call.row())];
            if (left > 0)
                expectServed(fault, takeServed(call), std::exchange(left, 0));
            expectNextWorks(call);
            takeServed(call);
        }
    }

    std::size_t cases_ = 0;

private:
    static std::string keyOf(const contract::Row& row)
    {
        return row.contract->service + " " + std::to_string(row.command->command);
    }

    // "0.000 table (1) TarnGetRadio radioId=1: ..."
    void noteServed(const std::string& line)
    {
        const std::size_t begin = line.find(") ") + 2;
        const contract::Row row = contract::find(line.substr(begin, line.find_first_of(" :", begin) - begin));
        const std::lock_guard<std::mutex> guard(servedMutex_);
        served_[keyOf(row)].push_back(line);
    }

    tarn::test::TemporaryRuntimeDirectory directory_;
    simulator::Model model_;
    std::unique_ptr<simulator::Gateway> gateway_;
    std::mutex servedMutex_;
    std::map<std::string, Lines> served_;
};

void expectAnswered(const Call& call)
{
    EXPECT_TRUE(isAnswer(call)) << call.result();
}

TEST_F(FaultTableTest, DelayedAnswersArrive)
{
    expectOfEach("delay milliseconds=2",
                 [](const Call& call)
                 {
                     expectAnswered(call);
                     EXPECT_GE(call.duration(), std::chrono::milliseconds(2));
                     EXPECT_EQ(takeTraces(), Lines());
                 });
}

TEST_F(FaultTableTest, StatusesAreReturned)
{
    expectOfEach("status status=77",
                 [](const Call& call)
                 {
                     EXPECT_EQ(call.result(), 77);
                     EXPECT_EQ(takeTraces(), Lines());
                 });
}

TEST_F(FaultTableTest, GarbageIsTakenAsItIs)
{
    expectOfEach("garbage",
                 [](const Call& call)
                 {
                     EXPECT_FALSE(isAnswer(call)) << "a random word, " << call.result();
                     EXPECT_EQ(takeTraces(), Lines());
                 });
}

TEST_F(FaultTableTest, IpcFailuresAreReported)
{
    expectOfEach("ipcStatus status=4", [](const Call& call) { expectFailed(call, "NO_MEM"); });
}

TEST_F(FaultTableTest, AnswersOfAnotherLengthAreReported)
{
    expectOfEach("length", [](const Call& call) { expectFailed(call, "MISMATCH_CMD_LEN"); });
}

TEST_F(FaultTableTest, DyingServicesAreReported)
{
    expectOfEach("die", [](const Call& call) { expectFailed(call, "RX_FAIL"); });
}

TEST_F(FaultTableTest, RestartingServicesAnswerBefore)
{
    expectOfEach("restart",
                 [](const Call& call)
                 {
                     expectAnswered(call);
                     EXPECT_EQ(takeTraces(), Lines());
                 });
}

TEST_F(FaultTableTest, AnswersThatNeverComeTimeOut)
{
    expectAllTimeOut("noAnswer");
}

TEST_F(FaultTableTest, HungServicesTimeOut)
{
    expectAllTimeOut("hang");
}

} // namespace
