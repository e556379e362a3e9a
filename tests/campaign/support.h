// Shared by the campaign's programs: how long and with which random numbers it runs, a runtime directory, processes, and what
// this process holds.
#pragma once

#include "peer.h"

#include "support/process.h"
#include "support/services.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <sys/types.h>
#include <unistd.h>

namespace campaign
{

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define CAMPAIGN_IS_SANITIZED 1
#endif
#endif
#ifdef CAMPAIGN_IS_SANITIZED
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

// How long a test that could go on for ever does so: TARN_CAMPAIGN_SECONDS, or a few seconds.
std::chrono::seconds duration();
// Whether TARN_CAMPAIGN_SECONDS asks for the long campaign.
bool isLong();
// TARN_CAMPAIGN_SEED, or 1.
std::uint32_t seed();

// One call of kAdd, whose `second` is a number that no other call of this process has. Fails the test if a call that succeeds
// does not have its own reply, or one that fails has changed the message.
std::uint32_t callSum(std::uint32_t wait = kAmple, std::uint32_t* number = nullptr);

// An empty runtime directory, and the seed in the report of what fails.
class CampaignTest : public ::testing::Test
{
protected:
    void SetUp() override;

    const std::string& directory() const
    {
        return directory_.path();
    }

private:
    tarn::test::TemporaryRuntimeDirectory directory_;
    ::testing::ScopedTrace seedTrace_{__FILE__, __LINE__, "TARN_CAMPAIGN_SEED=" + std::to_string(seed())};
};

// Ends the process, and says why, if it is not destroyed in time.
class HangGuard
{
public:
    explicit HangGuard(std::chrono::seconds limit, std::function<std::string()> what);
    ~HangGuard();
    HangGuard(const HangGuard&) = delete;
    HangGuard& operator=(const HangGuard&) = delete;

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool done_ = false;
    std::thread thread_;
};

// A service of this process, and the thread that runs it.
class RunningService : public tarn::test::ServiceThread
{
public:
    explicit RunningService(KorIilRequestHandler handler = answerSum, void* context = nullptr)
        : ServiceThread(kService, 5, handler, context)
    {
    }
};

// The program campaign_peer in a process of its own, in a role and with its arguments. It ends when its standard input does.
class Peer
{
public:
    explicit Peer(const std::vector<std::string>& arguments);

    // Waits for its next line; empty at the end of its output.
    std::string line() const;
    void kill();
    // Ends its standard input, and returns its exit code; 128 and the signal that ended it.
    int finish();

private:
    tarn::test::Pipe input_, output_;
    tarn::test::Process process_;
};

std::size_t openDescriptors();
std::size_t runningThreads();
std::size_t residentBytes(pid_t process = getpid());

// False if the condition does not hold within the limit.
bool eventually(const std::function<bool()>& condition, std::chrono::seconds limit = std::chrono::seconds(kAmple));

void sleepMilliseconds(int milliseconds);

// A handler of events that nobody looks at.
void ignoreEvent(const char* serviceId, std::uint32_t evt, const void* data, std::uint32_t length);

// Threads that repeat an action until the object is destroyed.
class Repeating
{
public:
    Repeating(int threads, const std::function<void()>& action);
    ~Repeating();
    Repeating(const Repeating&) = delete;
    Repeating& operator=(const Repeating&) = delete;

private:
    std::atomic<bool> done_{false};
    std::vector<std::thread> threads_;
};

} // namespace campaign
