// Which requests count as new.
#include "fleet/seen_requests.h"

#include <random>
#include <set>

#include <gtest/gtest.h>

namespace
{

using tarn::fleet::SeenRequests;
using Verdict = SeenRequests::Verdict;

constexpr std::uint64_t kDead = 1000000;

TEST(SeenRequestsTest, ANumberIsNewOnce)
{
    SeenRequests seen;
    EXPECT_EQ(seen.see(7, 1, kDead, 1), Verdict::kNew);
    EXPECT_EQ(seen.see(7, 1, kDead, 2), Verdict::kSeen);
    EXPECT_EQ(seen.see(8, 1, kDead, 3), Verdict::kNew) << "another session";
    EXPECT_EQ(seen.see(7, 0xFFFFFFFFu, kDead, 4), Verdict::kNew);
    EXPECT_EQ(seen.see(7, 0xFFFFFFFFu, kDead, 5), Verdict::kSeen);
    EXPECT_EQ(seen.see(7, 2, kDead, 6), Verdict::kSeen) << "too far behind to tell";
}

TEST(SeenRequestsTest, NumbersMayOvertakeOneAnotherWithinTheWindow)
{
    SeenRequests seen;
    EXPECT_EQ(seen.see(7, 100, kDead, 1), Verdict::kNew);
    EXPECT_EQ(seen.see(7, 37, kDead, 2), Verdict::kNew);
    EXPECT_EQ(seen.see(7, 36, kDead, 3), Verdict::kSeen);
    EXPECT_EQ(seen.see(7, 37, kDead, 4), Verdict::kSeen);
    EXPECT_EQ(seen.see(7, 163, kDead, 5), Verdict::kNew);
    EXPECT_EQ(seen.see(7, 100, kDead, 6), Verdict::kSeen) << "the oldest that is remembered";
    EXPECT_EQ(seen.see(7, 101, kDead, 7), Verdict::kNew);
}

TEST(SeenRequestsTest, NoNumberIsNewTwiceInAnyOrder)
{
    std::mt19937 random(1);
    SeenRequests seen;
    std::set<std::uint32_t> taken;
    std::uint32_t base = 1;
    for (int round = 0; round < 20000; ++round)
    {
        base += static_cast<std::uint32_t>(random() % 3);
        const auto number = base + static_cast<std::uint32_t>(random() % 100);
        if (seen.see(7, number, kDead, 1) == Verdict::kNew)
        {
            EXPECT_TRUE(taken.insert(number).second) << number;
        }
    }
    EXPECT_GT(taken.size(), 10000u);
}

TEST(SeenRequestsTest, ASessionIsForgottenOnlyWhenItsRequestsAreDead)
{
    SeenRequests seen;
    for (std::uint64_t session = 1; session <= SeenRequests::kSessions; ++session)
        EXPECT_EQ(seen.see(session, 1, 1000 + session, session), Verdict::kNew);
    EXPECT_EQ(seen.see(500, 1, kDead, 1000), Verdict::kNoRoom);
    EXPECT_EQ(seen.see(500, 1, kDead, 1001), Verdict::kNew) << "the first session's request is dead now";
    EXPECT_EQ(seen.see(1, 2, kDead, 1001), Verdict::kNoRoom);
    EXPECT_EQ(seen.see(2, 1, kDead, 1001), Verdict::kSeen) << "it is remembered";
}

TEST(SeenRequestsTest, TheSessionThatWasSilentLongestIsForgottenFirst)
{
    SeenRequests seen;
    for (std::uint64_t session = 1; session <= SeenRequests::kSessions; ++session)
        seen.see(session, 1, 0, session);
    EXPECT_EQ(seen.see(1, 2, 0, 1000), Verdict::kNew);
    EXPECT_EQ(seen.see(500, 1, 0, 1001), Verdict::kNew);
    EXPECT_EQ(seen.see(1, 2, 0, 1002), Verdict::kSeen);
    EXPECT_EQ(seen.see(3, 1, 0, 1002), Verdict::kSeen);
    EXPECT_EQ(seen.see(2, 1, 0, 1003), Verdict::kNew) << "it was forgotten";
}

} // namespace
