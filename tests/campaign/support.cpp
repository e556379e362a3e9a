#include "support.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace campaign
{

using std::chrono::steady_clock;

namespace
{

constexpr std::chrono::seconds kShort{3};

std::size_t entriesOf(const char* directory)
{
    const std::filesystem::directory_iterator entries(directory);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

unsigned long numberFrom(const char* variable, unsigned long fallback)
{
    const char* const text = std::getenv(variable);
    return text != nullptr && *text != '\0' ? std::strtoul(text, nullptr, 10) : fallback;
}

} // namespace

std::chrono::seconds duration()
{
    return std::chrono::seconds(numberFrom("TARN_CAMPAIGN_SECONDS", kShort.count()));
}

bool isLong()
{
    return duration() > kShort;
}

std::uint32_t seed()
{
    return static_cast<std::uint32_t>(numberFrom("TARN_CAMPAIGN_SEED", 1));
}

// --- Calls -------------------------------------------------------------------------------------------------------------------

std::uint32_t callSum(std::uint32_t wait, std::uint32_t* number)
{
    static std::atomic<std::uint32_t> last{0};
    const std::uint32_t own = ++last;
    if (number != nullptr)
        *number = own;
    Sum sum = {own * 7, own};
    const std::uint32_t status = KorIilExecute("campaign", kService, wait, kAdd, sizeof sum, &sum);
    EXPECT_EQ(sum.first, status == KOR_IIL_OK ? own * 8 : own * 7) << "status " << status;
    EXPECT_EQ(sum.second, own) << "status " << status;
    return status;
}

// --- This process ------------------------------------------------------------------------------------------------------------

void CampaignTest::SetUp()
{
    ASSERT_EQ(setenv("KORIIL_TRACE_FILE", "/dev/null", 1), 0); // traces are written, and nobody reads them
    KorIilTrace(1, "campaign", 1, "the trace file is open from now on");
}

HangGuard::HangGuard(std::chrono::seconds limit, std::function<std::string()> what)
    : thread_(
          [this, limit, what = std::move(what)]
          {
              std::unique_lock<std::mutex> lock(mutex_);
              if (changed_.wait_for(lock, limit, [this] { return done_; }))
                  return;
              std::fprintf(stderr, "HANG: %s\n", what().c_str());
              std::abort();
          })
{
}

HangGuard::~HangGuard()
{
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        done_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

std::size_t openDescriptors()
{
    return entriesOf("/proc/self/fd");
}

std::size_t runningThreads()
{
    return entriesOf("/proc/self/task");
}

std::size_t residentBytes(pid_t process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/statm");
    std::size_t whole = 0;
    std::size_t resident = 0;
    file >> whole >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

bool eventually(const std::function<bool()>& condition, std::chrono::seconds limit)
{
    const auto end = steady_clock::now() + limit;
    while (!condition())
    {
        if (steady_clock::now() > end)
            return false;
        sleepMilliseconds(1);
    }
    return true;
}

void sleepMilliseconds(int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void ignoreEvent(const char*, std::uint32_t, const void*, std::uint32_t)
{
}

Repeating::Repeating(int threads, const std::function<void()>& action)
{
    for (int i = 0; i < threads; ++i)
        threads_.emplace_back(
            [this, action]
            {
                while (!done_)
                    action();
            });
}

Repeating::~Repeating()
{
    done_ = true;
    for (std::thread& thread : threads_)
        thread.join();
}

// --- Other processes ---------------------------------------------------------------------------------------------------------

// Not fork: threads of this process run, and a sanitizer's allocator may be locked by one of them.
Peer::Peer(const std::vector<std::string>& arguments)
    : process_(tarn::test::commandOf("", CAMPAIGN_PEER_PROGRAM, arguments),
               {input_.reading(), output_.writing(), STDERR_FILENO})
{
    input_.closeReading();
    output_.closeWriting();
}

std::string Peer::line() const
{
    return output_.line();
}

void Peer::kill()
{
    process_.signal(SIGKILL);
    finish();
}

int Peer::finish()
{
    input_.closeWriting();
    return process_.finish();
}

} // namespace campaign
