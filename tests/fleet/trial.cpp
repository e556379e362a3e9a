#include "trial.h"

#include "numbered_call.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <utility>

#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace fleet_test
{

using namespace tarn::fleet;
using std::chrono::milliseconds;

namespace
{

// A thread may wait so long for a processor between its last look at the clock and what it does then. What the trials hold up
// comes later than that.
constexpr std::uint64_t kTolerance = 500000; // microseconds

Habit habitOf(unsigned number)
{
    switch (number % 10)
    {
    case 7:
        return Habit::kServiceStatus;
    case 8:
        return Habit::kRefused;
    case 9:
        return Habit::kAbsent;
    default:
        return Habit::kDone;
    }
}

const char* resultOf(Habit habit)
{
    switch (habit)
    {
    case Habit::kServiceStatus:
        return "service-status";
    case Habit::kRefused:
        return "refused";
    case Habit::kAbsent:
        return "not-sent";
    default:
        return "done";
    }
}

// Whether a result may be that of a call that was executed so many times, on such a gateway.
bool agrees(const std::string& result, std::size_t executions, Habit habit)
{
    const bool isExecutable = habit == Habit::kDone || habit == Habit::kServiceStatus;
    if (result == "done" || result == "service-status")
        return executions == 1 && result == resultOf(habit);
    if (result == "refused" || result == "ipc-failed")
        return executions == 0 && habit != Habit::kAbsent;
    if (result == "outcome-unknown")
        return executions <= (isExecutable ? 1 : 0) && habit != Habit::kAbsent;
    return result == "not-sent" && executions == 0;
}

} // namespace

// --- The program ------------------------------------------------------------------------------------------------------------

FleetCall::FleetCall(std::uint16_t port, std::uint32_t number, const std::string& filter, std::vector<std::string> options)
    : number_(number)
{
    std::vector<std::string> words{TARN_FLEET_PROGRAM,
                                   "--broker",
                                   "127.0.0.1:" + std::to_string(port),
                                   "call",
                                   filter,
                                   kNumberedFunction,
                                   kNumberedArgument + ("=" + std::to_string(number)),
                                   "--json"};
    words.insert(words.end(), options.begin(), options.end());
    process_ = tarn::test::Process(words, {STDIN_FILENO, output_.writing(), STDERR_FILENO});
    output_.closeWriting();
    reader_ = std::thread([this] { read(); });
}

FleetCall::~FleetCall()
{
    process_.signal(SIGKILL);
    finish();
}

void FleetCall::signal(int number) const
{
    process_.signal(number);
}

const std::map<std::string, Told>& FleetCall::finish()
{
    process_.finish();
    if (reader_.joinable())
        reader_.join();
    return told_;
}

// A last line without its end is that of a program that was killed.
void FleetCall::read()
{
    std::string text;
    char bytes[65536];
    for (ssize_t size = 0; (size = ::read(output_.reading(), bytes, sizeof bytes)) > 0;)
    {
        text.append(bytes, static_cast<std::size_t>(size));
        for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n'))
        {
            const auto document = nlohmann::json::parse(text.substr(0, end));
            text.erase(0, end + 1);
            if (document["kind"] != "fleet-result")
                continue;
            const std::string gateway = document["gateway"];
            EXPECT_TRUE(told_.emplace(gateway, Told{document["result"], document["why"], microsecondsNow()}).second)
                << gateway << " has two results";
            ++resultCount_;
        }
    }
    hasEnded_ = true;
}

// --- A trial ----------------------------------------------------------------------------------------------------------------

FleetTrial::FleetTrial()
{
    setenv("TARN_FLEET", "/dev/null", 1); // no settings and no layout of this machine
    setenv("TARN_LAYOUT", "", 1);
    rlimit descriptors = {};
    getrlimit(RLIMIT_NOFILE, &descriptors);
    descriptors.rlim_cur = descriptors.rlim_max;
    setrlimit(RLIMIT_NOFILE, &descriptors);
}

void FleetTrial::nameGateways(unsigned count, bool haveHabits)
{
    std::ofstream file(directory() + "/names");
    for (unsigned number = 1; number <= count; ++number)
    {
        habits_[Home::nameOf(number)] = haveHabits ? habitOf(number) : Habit::kDone;
        file << Home::nameOf(number) << '\n';
    }
}

void FleetTrial::startHomes(std::uint16_t port, std::uint32_t taken)
{
    for (unsigned number = 1; number <= habits_.size(); ++number)
    {
        const Habit habit = habits_.at(Home::nameOf(number));
        if (habit == Habit::kAbsent)
            continue;
        Home& home = *homes_.emplace_back(std::make_unique<Home>(port, number, &ledger_));
        home.milliseconds = taken;
        if (habit == Habit::kServiceStatus)
            home.replyStatus = 9;
        if (habit == Habit::kRefused)
            home.allow("deny *");
    }
    for (const auto& home : homes_)
        home->awaitConnection();
}

FleetCall FleetTrial::begin(std::uint16_t port, std::vector<std::string> options)
{
    return FleetCall(port, nextNumber(), namesFilter(), std::move(options));
}

void FleetTrial::end(FleetCall& call, std::size_t requests)
{
    runs_.push_back({call.number(), call.finish(), requests});
}

void FleetTrial::callThrough(std::uint16_t port, const std::vector<std::string>& options, std::size_t before,
                             const std::function<void()>& disturb)
{
    FleetCall calls[] = {begin(port, options), begin(port, options), begin(port, options)};
    EXPECT_TRUE(campaign::eventually([&] { return calls[0].resultCount() >= before; }));
    disturb();
    for (FleetCall& call : calls)
        end(call);
}

void FleetTrial::callUndisturbed(std::uint16_t port)
{
    const auto isUndisturbed = [&]
    {
        FleetCall call = begin(port, {"--window", "100"});
        end(call);
        const auto& told = runs_.back().told;
        return std::all_of(habits_.begin(), habits_.end(),
                           [&](const auto& each)
                           {
                               const auto found = told.find(each.first);
                               return found != told.end() && found->second.result == resultOf(each.second);
                           });
    };
    EXPECT_TRUE(campaign::eventually(isUndisturbed)) << "the gateways are not as they were before";
}

void FleetTrial::repeat(const std::function<void()>& round)
{
    const auto end = std::chrono::steady_clock::now() + (campaign::isLong() ? campaign::duration() : std::chrono::seconds(1));
    do
        round();
    while (!HasFailure() && std::chrono::steady_clock::now() < end);
}

void FleetTrial::repeatUntilOneIsUnknown(const std::function<void()>& round) const
{
    constexpr int kMostRounds = 10;
    const auto hasUnknown = [](const Run& run)
    {
        return std::any_of(run.told.begin(), run.told.end(),
                           [](const auto& each) { return each.second.result == "outcome-unknown"; });
    };
    repeat(round);
    for (int rounds = 1; rounds < kMostRounds && !HasFailure() && std::none_of(runs_.begin(), runs_.end(), hasUnknown);
         ++rounds)
        round();
}

std::uint32_t FleetTrial::random(std::uint32_t below)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    return static_cast<std::uint32_t>(random_() % below);
}

// --- On the way -------------------------------------------------------------------------------------------------------------

Relay::Way FleetTrial::recording(Relay::Way way)
{
    return [this, way = std::move(way)](const Relay::Message& message)
    {
        Envelope envelope;
        if (message.isToBroker && decode(message.payload.data(), message.payload.size(), envelope) == Fault::kNone &&
            envelope.kind == Kind::kRequest)
        {
            Bytes bytes(envelope.length);
            unpack(envelope, bytes.data());
            const std::lock_guard<std::mutex> guard(mutex_);
            sent_[{parseTopic(message.topic.c_str()).gateway, numberIn(bytes.data())}].push_back(
                {envelope.session, envelope.sequence, microsecondsNow() + std::uint64_t{envelope.live} * 1000});
        }
        return way != nullptr ? way(message) : std::vector<milliseconds>{milliseconds(0)};
    };
}

milliseconds FleetTrial::upTo(milliseconds longest)
{
    return milliseconds(random(static_cast<std::uint32_t>(longest.count())));
}

Relay::Way FleetTrial::slow(milliseconds longest)
{
    return [this, longest](const Relay::Message& message)
    {
        Envelope envelope;
        const bool isCall = decode(message.payload.data(), message.payload.size(), envelope) == Fault::kNone &&
                            (envelope.kind == Kind::kRequest || envelope.kind == Kind::kReply);
        return std::vector<milliseconds>{isCall ? upTo(longest) : milliseconds(0)};
    };
}

Relay::Way FleetTrial::disorderly(unsigned percent, milliseconds latest)
{
    return [this, percent, latest](const Relay::Message& message)
    {
        const TopicKind kind = parseTopic(message.topic.c_str()).kind;
        if (kind != TopicKind::kRequest && kind != TopicKind::kReply)
            return std::vector<milliseconds>{milliseconds(0)};
        std::vector<milliseconds> copies{upTo(random(100) < percent ? latest : milliseconds(100))};
        while (copies.size() < 3 && random(100) < percent)
            copies.push_back(upTo(latest));
        const std::lock_guard<std::mutex> guard(mutex_);
        copies_ += copies.size() - 1;
        return copies;
    };
}

// --- The judgement ----------------------------------------------------------------------------------------------------------

void FleetTrial::judge(const std::string& faults)
{
    std::map<std::uint32_t, std::map<std::string, std::vector<Execution>>> executed; // by number and gateway
    const std::vector<Execution> executions = ledger_.executions();
    for (const Execution& each : executions)
        executed[each.number][Home::nameOf(each.gateway)].push_back(each);
    for (const Run& run : runs_)
    {
        judgeRun(run, executed[run.number]);
        executed.erase(run.number);
    }
    EXPECT_TRUE(executed.empty()) << "a number was executed that was never called";
    std::printf("counted: %s: %zu runs, %zu calls executed", faults.c_str(), runs_.size(), executions.size());
    for (const auto& [result, count] : counts_)
        std::printf(", %zu %s", count, result.c_str());
    std::printf("; %zu of unknown outcome were executed, %zu messages came again\n", executedUnknown_, copies_);
}

void FleetTrial::judgeRun(const Run& run, const std::map<std::string, std::vector<Execution>>& executed)
{
    static const std::vector<Execution> kNone;
    EXPECT_EQ(run.told.size(), habits_.size()) << "call " << run.number << " lacks results";
    for (const auto& [gateway, habit] : habits_)
    {
        const auto found = executed.find(gateway);
        const std::vector<Execution>& executions = found == executed.end() ? kNone : found->second;
        const auto told = run.told.find(gateway);
        if (told == run.told.end())
            continue;
        ++counts_[told->second.result];
        executedUnknown_ += told->second.result == "outcome-unknown" ? executions.size() : 0;
        EXPECT_TRUE(agrees(told->second.result, executions.size(), habit))
            << "call " << run.number << ": " << gateway << " is " << told->second.result << " (" << told->second.why
            << "), executed " << executions.size() << " times";
        for (const Execution& each : executions)
            EXPECT_LE(each.begunAt, told->second.at + kTolerance)
                << "call " << run.number << " was executed on " << gateway << " after its result was given";
        judgeRequests(run, gateway, executions);
    }
}

void FleetTrial::judgeRequests(const Run& run, const std::string& gateway, const std::vector<Execution>& executions)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    const auto found = sent_.find({gateway, run.number});
    if (found == sent_.end())
    {
        EXPECT_TRUE(executions.empty()) << gateway << " has executed what was not sent";
        return;
    }
    std::set<std::pair<std::uint64_t, std::uint32_t>> requests;
    std::uint64_t dead = 0;
    for (const SentRequest& each : found->second)
    {
        requests.emplace(each.session, each.sequence);
        dead = std::max(dead, each.dead);
    }
    EXPECT_EQ(requests.size(), found->second.size()) << "a request was sent twice to " << gateway;
    EXPECT_LE(requests.size(), run.requests) << "call " << run.number << " was sent again to " << gateway;
    for (const Execution& each : executions)
        EXPECT_LE(each.begunAt, dead + kTolerance) << "call " << run.number << " was dead when " << gateway << " executed it";
}

std::size_t FleetTrial::count(const std::string& result) const
{
    const auto found = counts_.find(result);
    return found == counts_.end() ? 0 : found->second;
}

} // namespace fleet_test
