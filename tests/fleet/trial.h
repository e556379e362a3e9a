// Trials of the fleet under faults: what tarn-fleet told of each call is compared with what the gateways executed, and with the
// requests that left tarn-fleet.
#pragma once

#include "broker.h"
#include "home.h"
#include "ledger.h"
#include "relay.h"

#include "campaign/support.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace fleet_test
{

// What tarn-fleet said of a gateway.
struct Told
{
    std::string result;
    std::string why;
    std::uint64_t at = 0; // microsecondsNow
};

// `tarn-fleet call` of one number on many gateways, as a process.
class FleetCall
{
public:
    FleetCall(std::uint16_t port, std::uint32_t number, const std::string& filter, std::vector<std::string> options);
    ~FleetCall();
    FleetCall(const FleetCall&) = delete;
    FleetCall& operator=(const FleetCall&) = delete;

    std::uint32_t number() const
    {
        return number_;
    }
    // How many results it has given so far.
    std::size_t resultCount() const
    {
        return resultCount_;
    }
    bool hasEnded() const
    {
        return hasEnded_;
    }
    void signal(int number) const;
    // Waits for its end. The results, by gateway; none is given twice.
    const std::map<std::string, Told>& finish();

private:
    void read();

    const std::uint32_t number_;
    tarn::test::Pipe output_;
    tarn::test::Process process_;
    std::map<std::string, Told> told_;
    std::atomic<std::size_t> resultCount_{0};
    std::atomic<bool> hasEnded_{false};
    std::thread reader_;
};

// What a gateway does with a call where nothing is disturbed.
enum class Habit
{
    kDone,
    kServiceStatus,
    kRefused,
    kAbsent
};

// A request that left tarn-fleet.
struct SentRequest
{
    std::uint64_t session = 0;
    std::uint32_t sequence = 0;
    std::uint64_t dead = 0; // when nobody waits for it any more, microsecondsNow
};

class FleetTrial : public campaign::CampaignTest
{
protected:
    // Calls of one number: its results, and how often a gateway may have been asked.
    struct Run
    {
        std::uint32_t number = 0;
        std::map<std::string, Told> told;
        std::size_t requests = 1;
        bool isUndisturbed = false;
    };

    FleetTrial();

    // Gateways 1 to `count` are those that are called, and of ten one fails, one refuses and one is absent, or none.
    void nameGateways(unsigned count, bool haveHabits);
    // As named, in this process; a call takes so many milliseconds. Returns when they are connected.
    void startHomes(std::uint16_t port, std::uint32_t taken = 0);
    std::string namesFilter() const
    {
        return "@" + directory() + "/names";
    }
    std::uint32_t nextNumber()
    {
        return ++lastNumber_;
    }
    // Of the next number, through the broker or relay at this port.
    FleetCall begin(std::uint16_t port, std::vector<std::string> options = {});
    // Awaits its end, and keeps its results for the judgement.
    void end(FleetCall& call, std::size_t requests = 1);
    // Several at once; when the first of them has so many results, what they need is disturbed.
    void callThrough(std::uint16_t port, const std::vector<std::string>& options, std::size_t before,
                     const std::function<void()>& disturb);
    // Once all gateways that there are answer again: a call whose results are exactly those of their habits.
    void callUndisturbed(std::uint16_t port);
    // Once nothing is on its way any more: compares the whole trial with the ledger. Prints what was counted.
    void judge(const std::string& faults);
    std::size_t count(const std::string& result) const;
    // Of the calls with an unknown outcome, those that were executed.
    std::size_t executedUnknown() const
    {
        return executedUnknown_;
    }

    // At least once, and until the time of a long campaign is over.
    static void repeat(const std::function<void()>& round);
    // The same, and until a call has an unknown outcome: on a busy machine all may be through before they are disturbed.
    void repeatUntilOneIsUnknown(const std::function<void()>& round) const;
    std::uint32_t random(std::uint32_t below);

    // The way next to tarn-fleet: records what it sends, and goes on as `way`.
    Relay::Way recording(Relay::Way way = nullptr);
    // Requests and replies take up to `longest`, pings and pongs no time.
    Relay::Way slow(std::chrono::milliseconds longest);
    // All of these overtake one another. Of a hundred so many are late, by up to `latest`, and so many come twice or three
    // times.
    Relay::Way disorderly(unsigned percent, std::chrono::milliseconds latest);

    const Ledger ledger_{directory() + "/ledger"};
    std::vector<Run> runs_;
    std::map<std::string, Habit> habits_;
    std::vector<std::unique_ptr<Home>> homes_;

private:
    std::chrono::milliseconds upTo(std::chrono::milliseconds longest);
    void judgeRun(const Run& run, const std::map<std::string, std::vector<Execution>>& executed);
    void judgeRequests(const Run& run, const std::string& gateway, const std::vector<Execution>& executions);

    std::uint32_t lastNumber_ = 0;
    std::mutex mutex_;
    std::mt19937 random_{campaign::seed()};
    std::map<std::pair<std::string, std::uint32_t>, std::vector<SentRequest>> sent_; // by gateway and number
    std::map<std::string, std::size_t> counts_;
    std::size_t executedUnknown_ = 0;
    std::size_t copies_ = 0;
};

} // namespace fleet_test
