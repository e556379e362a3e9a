// A service is killed and started again while clients call: what a ledger says was executed is what the callers were told.
#include "support.h"

#include <cstdio>
#include <fstream>
#include <map>
#include <random>

namespace campaign
{
namespace
{

class RestartTest : public CampaignTest
{
protected:
    std::string ledgerPath() const
    {
        return directory() + "/ledger";
    }

    // How often each call was executed.
    std::map<std::uint32_t, int> ledger() const
    {
        std::map<std::uint32_t, int> executions;
        std::ifstream file(ledgerPath(), std::ios::binary);
        std::uint32_t number = 0;
        while (file.read(reinterpret_cast<char*>(&number), sizeof number))
            ++executions[number];
        return executions;
    }
};

// What a caller was told of one call.
struct Outcome
{
    std::uint32_t number;
    std::uint32_t status;
};

// How often a call with this status may have been executed.
bool agrees(std::uint32_t status, int executions)
{
    switch (status)
    {
    case KOR_IIL_OK:
        return executions == 1;
    case KOR_IIL_RX_FAIL:
        return executions <= 1;
    case KOR_IIL_TX_FAIL:
    case KOR_IIL_UNKNOWN_DST_ID:
        return executions == 0;
    default: // a killed service is not waited for
        return false;
    }
}

TEST_F(RestartTest, ACallIsExecutedAtMostOnceHoweverOftenTheServiceIsKilled)
{
    const HangGuard guard(duration() + std::chrono::seconds(kAmple), [] { return "restarts under load"; });
    std::mt19937 random(seed());
    std::mutex mutex;
    std::vector<Outcome> outcomes;
    int kills = 0;
    int stops = 0;
    {
        const Repeating callers(8,
                                [&]
                                {
                                    Outcome outcome;
                                    outcome.status = callSum(kAmple, &outcome.number);
                                    const std::lock_guard<std::mutex> lock(mutex);
                                    outcomes.push_back(outcome);
                                });
        const auto end = std::chrono::steady_clock::now() + duration();
        while (std::chrono::steady_clock::now() < end)
        {
            Peer service({"serve", ledgerPath()});
            ASSERT_EQ(service.line(), "ready");
            sleepMilliseconds(static_cast<int>(random() % 50));
            if (random() % 4 != 0)
            {
                service.kill();
                ++kills;
            }
            else
            {
                EXPECT_EQ(service.finish(), 0);
                ++stops;
            }
        }
    }

    std::map<std::uint32_t, int> executions = ledger();
    std::map<std::uint32_t, int> statuses;
    for (const Outcome& outcome : outcomes)
    {
        ++statuses[outcome.status];
        EXPECT_TRUE(agrees(outcome.status, executions[outcome.number]))
            << "status " << outcome.status << ", executed " << executions[outcome.number] << " times";
    }
    std::printf("counted: %d kills, %d stops, %zu calls:", kills, stops, outcomes.size());
    for (const auto& [status, count] : statuses)
        std::printf(" %d of status %u", count, static_cast<unsigned>(status));
    std::printf("\n");
    EXPECT_GT(statuses[KOR_IIL_OK], 0);
}

} // namespace
} // namespace campaign
