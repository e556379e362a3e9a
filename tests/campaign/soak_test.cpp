// Everything at once for a while, with few descriptors: callers that come and go, subscriptions, restarts, shortages.
#include "support.h"

#include <cstdio>
#include <map>
#include <random>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace campaign
{
namespace
{

constexpr std::size_t kSpareDescriptors = 60;
constexpr std::size_t kMostGrowth = 16u << 20; // bytes; allocators keep some

class SoakTest : public CampaignTest
{
protected:
    void SetUp() override
    {
        CampaignTest::SetUp();
        ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before_), 0);
        rlimit few = before_;
        few.rlim_cur = openDescriptors() + kSpareDescriptors;
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    }

    void TearDown() override
    {
        setrlimit(RLIMIT_NOFILE, &before_);
    }

private:
    rlimit before_ = {};
};

// What a caller may be told when there are no descriptors, or when the service is being replaced.
bool isExpected(std::uint32_t status)
{
    switch (status)
    {
    case KOR_IIL_OK:
    case KOR_IIL_NO_MEM:
    case KOR_IIL_TX_FAIL:
    case KOR_IIL_RX_FAIL:
    case KOR_IIL_TIMEOUT:
    case KOR_IIL_UNKNOWN_DST_ID:
    case KOR_IIL_BAD_EVT:
    case KOR_IIL_BUSY:
        return true;
    default:
        return false;
    }
}

// Takes every descriptor that is left.
class Shortage
{
public:
    Shortage()
    {
        int file;
        while ((file = open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0)
            taken_.push_back(file);
    }
    ~Shortage()
    {
        for (const int file : taken_)
            close(file);
    }
    Shortage(const Shortage&) = delete;
    Shortage& operator=(const Shortage&) = delete;

private:
    std::vector<int> taken_;
};

TEST_F(SoakTest, ShortagesAndRestartsLeaveNothingBehind)
{
    const HangGuard guard(duration() + std::chrono::seconds(2 * kAmple), [] { return "the soak"; });
    std::mt19937 random(seed());
    auto service = std::make_unique<RunningService>();
    ASSERT_EQ(callSum(), KOR_IIL_OK);
    const std::size_t descriptors = openDescriptors();
    std::size_t bytes = 0;
    int rounds = 0;
    std::atomic<int> calls{0};
    {
        const auto call = [&]
        {
            const std::uint32_t status = callSum(1);
            EXPECT_TRUE(isExpected(status)) << "call: status " << status;
            ++calls;
        };
        const Repeating kept(2, call);
        const Repeating comingAndGoing(2, [&] { std::thread(call).join(); });
        const Repeating subscribing(1,
                                    []
                                    {
                                        const std::uint32_t status = KorIilSubscribeEvent("soak", kService, 1, ignoreEvent);
                                        EXPECT_TRUE(isExpected(status)) << "subscribing: status " << status;
                                        const std::uint32_t end = KorIilCancelEvent("soak", kService, 1, ignoreEvent);
                                        EXPECT_TRUE(isExpected(end)) << "cancelling: status " << end;
                                    });
        const auto start = std::chrono::steady_clock::now();
        for (; std::chrono::steady_clock::now() < start + duration(); ++rounds)
        {
            for (int i = 0; i < 10; ++i)
            {
                KorIilServicePublish(service->get(), 1, "event", 5, nullptr);
                sleepMilliseconds(1);
            }
            if (random() % 2 == 0)
            {
                const Shortage shortage;
                sleepMilliseconds(5);
            }
            else
            {
                service.reset();
                service = std::make_unique<RunningService>();
            }
            if (bytes == 0 && std::chrono::steady_clock::now() > start + duration() / 4)
                bytes = residentBytes(); // by now all that is kept for later use is there
        }
    }
    EXPECT_EQ(callSum(), KOR_IIL_OK);
    EXPECT_TRUE(eventually([&] { return openDescriptors() <= descriptors; }))
        << openDescriptors() << ", before " << descriptors;
    EXPECT_LT(residentBytes(), bytes + (kIsSanitized ? SIZE_MAX / 2 : kMostGrowth)); // a sanitizer keeps what is freed
    std::printf("counted: %d calls, %d restarts and shortages, memory from %zu to %zu KiB\n", calls.load(), rounds,
                bytes / 1024, residentBytes() / 1024);
}

} // namespace
} // namespace campaign
