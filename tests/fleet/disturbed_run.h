// `tarn-fleet call` on many gateways while a test takes brokers away; then what it told of each gateway is compared with what
// that executed.
#pragma once

#include "fleet_command.h"
#include "ledger.h"

#include <cstddef>
#include <cstdint>
#include <future>
#include <map>
#include <string>

namespace fleet_test
{

class DisturbedRun
{
public:
    struct Judgement
    {
        std::size_t done = 0;
        std::size_t unknown = 0;
        std::size_t executedUnknown = 0; // of these
        std::size_t runs = 0;            // with those that were resumed
    };

    // The numbered call on gateways 1 to `gateways`, with the settings in the directory.
    DisturbedRun(const std::string& directory, const Ledger& ledger, std::uint32_t number, unsigned gateways, unsigned window);

    // Returns when so many gateways have executed it.
    void awaitExecutions(std::size_t count) const;
    // Awaits its end, and resumes it until it was sent to each gateway. Expects of each that `done` is one execution, and that
    // there is no second one.
    Judgement finish();

private:
    std::size_t executions(unsigned gateway) const;
    void take(const FleetRun& run);
    bool isAnyNotSent() const;

    const std::string directory_;
    const Ledger& ledger_;
    const std::uint32_t number_;
    const unsigned gateways_;
    std::string arguments_;
    std::map<std::string, std::string> results_; // by gateway
    std::future<FleetRun> run_;
};

} // namespace fleet_test
