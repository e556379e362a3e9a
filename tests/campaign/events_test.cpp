// Many processes receive many events.
#include "support.h"

#include <cstdio>
#include <memory>

namespace campaign
{
namespace
{

using EventsTest = CampaignTest;

std::uint32_t countAcknowledgement(void* count, const KorIilRequest* request, void* message)
{
    if (request->command != kAcknowledge)
        return answerSum(nullptr, request, message);
    ++*static_cast<std::atomic<std::uint32_t>*>(count);
    return KOR_IIL_OK;
}

TEST_F(EventsTest, SixtyFourProcessesReceiveAllEventsInOrder)
{
    constexpr std::uint32_t kReceivers = 64;
    constexpr std::uint32_t kEvents = 10000;
    const HangGuard guard(std::chrono::seconds(10 * kAmple), [] { return "events to 64 processes"; });

    std::atomic<std::uint32_t> acknowledged{0};
    const RunningService service(countAcknowledgement, &acknowledged);
    std::vector<std::unique_ptr<Peer>> receivers;
    receivers.reserve(kReceivers);
    for (std::uint32_t i = 0; i < kReceivers; ++i)
        receivers.push_back(std::make_unique<Peer>(std::vector<std::string>{"receive", std::to_string(kEvents)}));
    for (const auto& receiver : receivers)
        ASSERT_EQ(receiver->line(), "ready");

    for (std::uint32_t number = 1; number <= kEvents; ++number)
    {
        std::uint32_t sent = 0;
        ASSERT_EQ(KorIilServicePublish(service.get(), 1, &number, sizeof number, &sent), KOR_IIL_OK);
        ASSERT_EQ(sent, kReceivers) << "event " << number;
        // No receiver is ever two rounds behind: what a queue of the kernel holds is not what is tested.
        const std::uint32_t rounds = number / kAcknowledgedAtOnce;
        ASSERT_TRUE(eventually([&] { return acknowledged + kReceivers >= rounds * kReceivers; })) << "event " << number;
    }
    EXPECT_TRUE(eventually([&] { return acknowledged == kEvents / kAcknowledgedAtOnce * kReceivers; })) << acknowledged;
    for (const auto& receiver : receivers)
        EXPECT_EQ(receiver->finish(), 0);
    std::printf("counted: %u events to %u processes\n", static_cast<unsigned>(kEvents), static_cast<unsigned>(kReceivers));
}

} // namespace
} // namespace campaign
