// Every call that can fail fails once: the first, the second, ... that an action of a client or a service makes, until it makes
// no more of them. Whatever fails, there is a documented status, no hang, nothing leaked, and the next action works.
#include "faults.h"
#include "support.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace campaign
{
namespace
{

using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr std::uint32_t kEvent = 2;
constexpr std::uint32_t kWait = 1;

// What a client's action may take longer than its wait, on a loaded machine. The wait of a subscription is 3 seconds.
constexpr seconds kLimit{10};

std::atomic<std::uint32_t> eventsSeen{0};

void countEvent(const char*, std::uint32_t, const void*, std::uint32_t)
{
    ++eventsSeen;
}

// What came of an action beside its status.
struct Findings
{
    bool touchedOutputs = false;
    std::string wrongNext; // the step after it that did not work; empty if all did
};

// A service and a client in one process, each on its own side.
class World
{
public:
    ~World()
    {
        client([] { return KorIilCancelEvent("torture", kService, kEvent, countEvent); });
        client([] { return KorIilCancelEvent("torture", kService, kEvent + 1, ignoreEvent); });
        closeService();
    }

    std::uint32_t openService()
    {
        KorIilService* opened = reinterpret_cast<KorIilService*>(this);
        std::uint32_t status;
        {
            const OnSide side(Side::kService);
            status = KorIilServiceOpen(kService, 5, answerSum, nullptr, &opened);
        }
        if (status != KOR_IIL_OK)
        {
            findings.touchedOutputs |= opened != nullptr; // it is documented to be NULL then
            return status;
        }
        service_ = opened;
        return status;
    }

    void startService()
    {
        running_ = true;
        thread_ = std::thread(
            [this]
            {
                const OnSide side(Side::kService);
                runStatus_ = KorIilServiceRun(service_);
                running_ = false;
            });
    }

    // The status with which the service's run has ended by itself; KOR_IIL_OK while it goes on.
    std::uint32_t endOfRun()
    {
        if (running_)
            return KOR_IIL_OK;
        thread_.join();
        return runStatus_;
    }

    std::uint32_t closeService()
    {
        if (service_ == nullptr)
            return KOR_IIL_OK;
        KorIilServiceStop(service_); // on no side: it writes to a descriptor whose writes do not fail
        if (thread_.joinable())
            thread_.join();
        const OnSide side(Side::kService);
        KorIilServiceClose(service_);
        service_ = nullptr;
        return runStatus_;
    }

    std::uint32_t call()
    {
        Sum sum = {7, 1};
        const std::uint32_t status =
            client([&sum] { return KorIilExecute("torture", kService, kWait, kAdd, sizeof sum, &sum); });
        findings.touchedOutputs |= sum.first != (status == KOR_IIL_OK ? 8u : 7u) || sum.second != 1;
        return status;
    }

    std::uint32_t subscribe(std::uint32_t event = kEvent, KorIilEventHandler handler = countEvent)
    {
        return client([=] { return KorIilSubscribeEvent("torture", kService, event, handler); });
    }

    std::uint32_t cancel()
    {
        return client([] { return KorIilCancelEvent("torture", kService, kEvent, countEvent); });
    }

    std::uint32_t publish()
    {
        const OnSide side(Side::kService);
        std::uint32_t subscribers = 77;
        const std::uint32_t status = KorIilServicePublish(service_, kEvent, "event", 5, &subscribers);
        findings.touchedOutputs |= status != KOR_IIL_OK && subscribers != 77;
        return status;
    }

    // The first step that does not work once nothing fails any more.
    std::string wrongNext()
    {
        if (service_ == nullptr && openService() != KOR_IIL_OK)
            return "opening the service";
        if (!thread_.joinable())
            startService();
        if (!running_)
            return "the service's run, which has ended with status " + std::to_string(runStatus_);
        if (const std::uint32_t status = call())
            return "a call: status " + std::to_string(status);
        std::uint32_t other = KOR_IIL_OK;
        std::thread([&] { other = call(); }).join();
        if (other != KOR_IIL_OK)
            return "a call of another thread: status " + std::to_string(other);

        // A subscription that is no longer there is made again; one that is said to be there works.
        const std::uint32_t before = eventsSeen;
        const auto eventCame = [&]
        {
            const std::uint32_t status = subscribe();
            return (status == KOR_IIL_OK || status == KOR_IIL_CONFLICT_ID) && publish() == KOR_IIL_OK &&
                   eventually([&] { return eventsSeen != before; }, seconds(1));
        };
        if (!eventually(eventCame, kLimit))
            return "an event, which does not come";
        if (const std::uint32_t status = cancel())
            return "cancelling: status " + std::to_string(status);
        return "";
    }

    Findings findings;

private:
    template <typename Action>
    std::uint32_t client(Action action)
    {
        const OnSide side(Side::kClient);
        return action();
    }

    KorIilService* service_ = nullptr;
    std::thread thread_;
    std::atomic<bool> running_{false};
    std::uint32_t runStatus_ = KOR_IIL_OK;
};

// An action, what comes before it, and the statuses it may have beside KOR_IIL_OK when a call in it fails.
struct Scenario
{
    const char* name;
    std::vector<std::uint32_t> statuses;
    std::function<void(World&)> prepare;
    std::function<std::uint32_t(World&)> act;
};

void PrintTo(const Scenario& scenario, std::ostream* out) // NOLINT(readability-identifier-naming): GoogleTest's name
{
    *out << scenario.name;
}

// On a thread whose end leaves no connection behind, the call shows that the service runs.
void openOnly(World& world)
{
    world.openService();
    world.startService();
    std::thread([] { EXPECT_EQ(callSum(), KOR_IIL_OK); }).join();
}

void openAndCall(World& world)
{
    openOnly(world);
    world.call();
}

void openAndSubscribe(World& world)
{
    openOnly(world);
    world.subscribe();
}

void openAndRestart(World& world)
{
    openAndSubscribe(world);
    world.closeService();
    openOnly(world);
}

const std::vector<Scenario>& scenarios()
{
    static const std::vector<std::uint32_t> kOfRequests = {KOR_IIL_ERR,     KOR_IIL_NO_MEM,      KOR_IIL_TX_FAIL,
                                                           KOR_IIL_RX_FAIL, KOR_IIL_TIMEOUT,     KOR_IIL_UNKNOWN_DST_ID,
                                                           KOR_IIL_BUSY,    KOR_IIL_UNKNOWN_COMM};
    static const std::vector<std::uint32_t> kOfOpening = {KOR_IIL_ERR, KOR_IIL_NO_MEM, KOR_IIL_UNKNOWN_COMM,
                                                          KOR_IIL_CONFLICT_ID};
    static const std::vector<std::uint32_t> kOfPublishing = {KOR_IIL_ERR, KOR_IIL_NO_MEM};
    static const std::vector<Scenario> kScenarios = {
        {"FirstCall", kOfRequests, openOnly, [](World& world) { return world.call(); }},
        {"CallOnAKeptConnection", kOfRequests, openAndCall, [](World& world) { return world.call(); }},
        {"CallAfterARestart", kOfRequests, openAndRestart, [](World& world) { return world.call(); }},
        {"FirstSubscription", kOfRequests, openOnly, [](World& world) { return world.subscribe(); }},
        {"SecondSubscription", kOfRequests, openAndSubscribe,
         [](World& world) { return world.subscribe(kEvent + 1, ignoreEvent); }},
        {"SubscriptionAfterARestart", kOfRequests, openAndRestart, [](World& world) { return world.subscribe(); }},
        {"Cancel", kOfRequests, openAndSubscribe, [](World& world) { return world.cancel(); }},
        {"Publication", kOfPublishing, openAndSubscribe,
         [](World& world)
         {
             std::uint32_t status = KOR_IIL_OK;
             for (int i = 0; i < 3 && status == KOR_IIL_OK; ++i)
                 status = world.publish();
             sleepMilliseconds(1); // lets the events arrive while the fault is armed
             return status;
         }},
        {"ServiceOpening", kOfOpening, [](World&) {}, [](World& world) { return world.openService(); }},
        {"ServiceRunning",
         {KOR_IIL_ERR, KOR_IIL_NO_MEM},
         [](World& world) { world.openService(); },
         [](World& world)
         {
             world.startService();
             std::thread([] { callSum(kWait); }).join();
             return world.endOfRun(); // where it could not begin, it can be started again
         }},
        {"ServiceClosing", kOfOpening, openAndSubscribe, [](World& world) { return world.closeService(); }},
    };
    return kScenarios;
}

struct Counts
{
    int injections = 0;
    int undocumented = 0;
    int hangs = 0;
    int leaks = 0;
    int touched = 0;
    int wrongNext = 0;
};

// What this process holds when nothing is under way.
struct Holdings
{
    std::size_t descriptors = openDescriptors();
    long blocks = liveBlocks();
};

class TortureTest : public CampaignTest, public ::testing::WithParamInterface<Scenario>
{
protected:
    void SetUp() override
    {
        CampaignTest::SetUp();
        setenv("KORIIL_RECORD", (directory() + "/record").c_str(), 1); // the recorder's calls fail as well
    }

    // False if the call was not made.
    bool inject(Side side, const FallibleCall& call, int error, int n)
    {
        const Holdings before;
        const bool failed = run(side, call.name, error, n);
        if (!failed)
            return false;
        ++counts_.injections;
        if (!lastWasWrong_) // what an action that went wrong holds is not what it leaks
        {
            settle(before);
            const std::string leak = holdsMoreThan(before) ? leakOf(side, call.name, error, n) : "";
            if (!leak.empty())
                report(counts_.leaks,
                       std::string(call.name) + " number " + std::to_string(n) + " fails with " + strerrorname_np(error), leak);
        }
        return true;
    }

    void warmUp()
    {
        for (int i = 0; i < 3; ++i)
            run(Side::kNone, "", 0, 0);
        ASSERT_EQ(leakOf(Side::kNone, "", 0, 0), "") << "without a fault";
    }

    Counts counts_;

private:
    // One action in a world of its own, on a thread of its own.
    bool run(Side side, const char* name, int error, int n)
    {
        std::string fault = std::string(GetParam().name) + (side == Side::kClient ? ", client: " : ", service: ") + name +
                            " number " + std::to_string(n) + " fails with " + strerrorname_np(error);
        SCOPED_TRACE(fault);
        const HangGuard guard(seconds(kAmple), [&] { return fault; });
        bool failed = false;
        std::thread actor(
            [&]
            {
                World world;
                GetParam().prepare(world);
                arm(side, name, error, n);
                const auto start = steady_clock::now();
                const std::uint32_t status = GetParam().act(world);
                failed = disarm();
                const bool late = steady_clock::now() - start > kLimit;
                world.findings.wrongNext = world.wrongNext();
                note(fault, status, late, world.findings);
            });
        actor.join();
        return failed;
    }

    void note(const std::string& fault, std::uint32_t status, bool late, const Findings& findings)
    {
        lastWasWrong_ = false;
        const auto& documented = GetParam().statuses;
        if (status != KOR_IIL_OK && std::find(documented.begin(), documented.end(), status) == documented.end())
            report(counts_.undocumented, fault, "status " + std::to_string(status));
        if (late)
            report(counts_.hangs, fault, "it took more than its wait");
        if (findings.touchedOutputs)
            report(counts_.touched, fault, "an output was changed, or a reply is wrong");
        if (!findings.wrongNext.empty())
            report(counts_.wrongNext, fault, "then fails " + findings.wrongNext);
    }

    void report(int& count, const std::string& fault, const std::string& what)
    {
        lastWasWrong_ = true;
        ++count;
        ADD_FAILURE() << fault << ": " << what;
    }

    static bool holdsMoreThan(const Holdings& before)
    {
        const Holdings now;
        return now.descriptors > before.descriptors || now.blocks > before.blocks;
    }

    // Threads of the library may end a moment later.
    static void settle(const Holdings& before)
    {
        eventually([&] { return !holdsMoreThan(before); }, seconds(2));
    }

    // What leaks each time; empty if nothing does. What grows once is kept for later use.
    std::string leakOf(Side side, const char* name, int error, int n)
    {
        constexpr long kTimes = 5;
        const Holdings before;
        for (long i = 0; i < kTimes; ++i)
            run(side, name, error, n);
        settle(before);
        const Holdings after;
        if (after.descriptors < before.descriptors + kTimes && after.blocks < before.blocks + kTimes)
            return "";
        return std::to_string((after.blocks - before.blocks) / kTimes) + " blocks and " +
               std::to_string((static_cast<long>(after.descriptors) - static_cast<long>(before.descriptors)) / kTimes) +
               " descriptors leak each time";
    }

    bool lastWasWrong_ = false;
};

TEST_P(TortureTest, EveryCallThatCanFailFailsOnce)
{
    warmUp();
    for (const Side side : {Side::kClient, Side::kService})
        for (const FallibleCall& call : fallibleCalls())
        {
            // Short: each call with one error, another one for the next call.
            const std::size_t errors = isLong() ? call.errors.size() : 1;
            for (std::size_t i = 0; i < errors; ++i)
                for (std::size_t n = 1; inject(side, call, call.errors[(i + n - 1) % call.errors.size()], static_cast<int>(n));
                     ++n)
                {
                }
        }
    std::printf("counted: %s: %d injections, %d undocumented statuses, %d hangs, %d leaks, %d changed outputs, %d times the "
                "next action "
                "failed\n",
                GetParam().name, counts_.injections, counts_.undocumented, counts_.hangs, counts_.leaks, counts_.touched,
                counts_.wrongNext);
    EXPECT_GT(counts_.injections, 0);
}

// What libkoriil calls that is neither in faults.cpp nor known not to fail.
TEST(TortureListTest, EveryCallOfTheLibraryThatCanFailIsInTheList)
{
    std::set<std::string> known = {
        "__cxa_finalize",
        "__errno_location",
        "__libc_single_threaded",
        "__register_atfork",
        "__tls_get_addr",
        "clock_gettime",
        "getegid",
        "getenv",
        "geteuid",
        "getpid",
        "gmtime_r",
        "memchr",
        "memcmp",
        "memcpy",
        "memmove",
        "memset",
        "nanosleep",
        "pthread_cond_clockwait",
        "pthread_mutex_lock",
        "pthread_mutex_unlock",
        "pthread_self",
        "pthread_setcancelstate",
        "pthread_sigmask",
        "shutdown",
        "sigaddset",
        "sigdelset",
        "sigemptyset",
        "sigfillset",
        "sigismember",
        "sigpending",
        "sigtimedwait",
        "snprintf",
        "strcat",
        "strcmp",
        "strerror",
        "strftime",
        "strlen",
        "strnlen",
        "strtoul",
        "time",
        "vsnprintf",
    };
    for (const FallibleCall& call : fallibleCalls())
        known.insert(call.name);

    std::FILE* const list = popen("nm -D --undefined-only " KORIIL_LIBRARY, "r");
    ASSERT_NE(list, nullptr);
    char line[1024];
    int calls = 0;
    while (std::fgets(line, sizeof line, list) != nullptr)
    {
        const std::string text = line; // "                 U accept4@GLIBC_2.10"
        const std::size_t end = text.find("@GLIBC_");
        if (end == std::string::npos)
            continue;
        const std::size_t begin = text.rfind(' ', end) + 1;
        EXPECT_EQ(known.count(text.substr(begin, end - begin)), 1u) << text;
        ++calls;
    }
    EXPECT_EQ(pclose(list), 0);
    EXPECT_GT(calls, 0);
}

INSTANTIATE_TEST_SUITE_P(Of, TortureTest, ::testing::ValuesIn(scenarios()),
                         [](const auto& scenario) { return std::string(scenario.param.name); });

} // namespace
} // namespace campaign
