#include "disturbed_run.h"

#include "home.h"
#include "numbered_call.h"

#include <chrono>
#include <fstream>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace fleet_test
{

namespace
{

// Returns the filter that means them.
std::string writeNames(const tarn::test::TemporaryDirectory& directory, unsigned gateways)
{
    std::ofstream names(directory.path("names"));
    for (unsigned gateway = 1; gateway <= gateways; ++gateway)
        names << Home::nameOf(gateway) << '\n';
    return "@" + directory.path("names");
}

} // namespace

DisturbedRun::DisturbedRun(const tarn::test::TemporaryDirectory& directory, const Ledger& ledger, std::uint32_t number,
                           unsigned gateways, unsigned window)
    : directory_(directory),
      ledger_(ledger),
      number_(number),
      gateways_(gateways),
      words_{"call",
             writeNames(directory, gateways),
             kNumberedFunction,
             kNumberedArgument + ("=" + std::to_string(number)),
             "--window",
             std::to_string(window),
             "--json",
             "--resume",
             directory.path("journal-" + std::to_string(number))},
      process_(directory, words_)
{
}

std::size_t DisturbedRun::executions(unsigned gateway) const
{
    std::size_t count = 0;
    for (const Execution& each : ledger_.executions())
        count += each.gateway == gateway && each.number == number_ ? 1 : 0;
    return count;
}

void DisturbedRun::awaitExecutions(std::size_t count) const
{
    const auto soFar = [this]
    {
        std::size_t executed = 0;
        for (const Execution& each : ledger_.executions())
            executed += each.number == number_ ? 1 : 0;
        return executed;
    };
    for (int look = 0; look < 6000 && soFar() < count; ++look)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_GE(soFar(), count);
}

// What was sent in an earlier run has its result from there.
void DisturbedRun::take(const FleetRun& run)
{
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);)
    {
        const nlohmann::json document = nlohmann::json::parse(line);
        if (document["kind"] != "fleet-result")
            continue;
        std::string& result = results_[document["gateway"]];
        if (result.empty() || result == "not-sent")
            result = document["result"];
    }
}

bool DisturbedRun::isAnyNotSent() const
{
    for (const auto& [gateway, result] : results_)
        if (result == "not-sent")
            return true;
    return false;
}

DisturbedRun::Judgement DisturbedRun::finish()
{
    constexpr std::size_t kMostRuns = 10;
    Judgement judgement;
    take(process_.finish());
    for (judgement.runs = 1; isAnyNotSent() && judgement.runs < kMostRuns; ++judgement.runs)
        take(FleetProcess(directory_, words_).finish());
    for (unsigned gateway = 1; gateway <= gateways_; ++gateway)
    {
        const std::string name = Home::nameOf(gateway);
        const std::size_t executed = executions(gateway);
        const std::string& result = results_[name];
        EXPECT_TRUE(result == "done" || result == "outcome-unknown") << name << ": " << result;
        EXPECT_LE(executed, 1u) << name << " has executed it twice";
        EXPECT_TRUE(result != "done" || executed == 1) << name << " is done and has not executed it";
        judgement.done += result == "done" ? 1 : 0;
        judgement.unknown += result == "outcome-unknown" ? 1 : 0;
        judgement.executedUnknown += result == "outcome-unknown" ? executed : 0;
    }
    return judgement;
}

} // namespace fleet_test
