// `tarn-fleet call` on many gateways while a test takes brokers away; then what it told of each gateway is compared with what
// that executed.
#pragma once

#include "fleet_process.h"
#include "ledger.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

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
    DisturbedRun(const tarn::test::TemporaryDirectory& directory, const Ledger& ledger, std::uint32_t number, unsigned gateways,
                 unsigned window);

    // Returns when so many gateways have executed it.
    void awaitExecutions(std::size_t count) const;
    // Awaits its end, and resumes it until it was sent to each gateway. Expects of each that `done` is one execution, and that
    // there is no second one.
    Judgement finish();

private:
    std::size_t executions(unsigned gateway) const;
    void take(const FleetRun& run);
    bool isAnyNotSent() const;

    const tarn::test::TemporaryDirectory& directory_;
    const Ledger& ledger_;
    const std::uint32_t number_;
    const unsigned gateways_;
    const std::vector<std::string> words_;
    std::map<std::string, std::string> results_; // by gateway
    FleetProcess process_;
};

} // namespace fleet_test
