// Shared memory and a futex for each caller: nothing is copied by the kernel, which only wakes the other side. The limit for
// two processes that both sleep while they wait.
#include "round_trip/peer.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <linux/futex.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace round_trip
{
namespace
{

constexpr std::size_t kSlots = 64; // callers at a time

enum State : std::uint32_t
{
    kFree,
    kTaken,
    kRequested,
    kReplied
};

struct alignas(64) SharedSlot
{
    std::atomic<std::uint32_t> state;
    std::uint32_t length;
    alignas(64) unsigned char message[kLongest];
};

static_assert(std::atomic<std::uint32_t>::is_always_lock_free, "it is shared by processes, and a futex");

void wakeOther(std::atomic<std::uint32_t>& state, std::uint32_t value)
{
    state.store(value, std::memory_order_release);
    syscall(SYS_futex, &state, FUTEX_WAKE, 1, nullptr, nullptr, 0);
}

void waitFor(std::atomic<std::uint32_t>& state, std::uint32_t value)
{
    for (std::uint32_t now; (now = state.load(std::memory_order_acquire)) != value;)
        syscall(SYS_futex, &state, FUTEX_WAIT, now, nullptr, nullptr, 0);
}

SharedSlot* sharedSlots(const std::string& directory, int flags)
{
    constexpr std::size_t kSize = sizeof(SharedSlot) * kSlots;
    const int file = open((directory + "/memory").c_str(), flags | O_RDWR | O_CLOEXEC, 0600);
    if (file < 0 || ((flags & O_CREAT) != 0 && ftruncate(file, kSize) != 0))
        failWithReason("the shared memory");
    void* const memory = mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, file, 0);
    close(file);
    if (memory == MAP_FAILED)
        failWithReason("the shared memory");
    return static_cast<SharedSlot*>(memory);
}

void serveSlot(SharedSlot& slot)
{
    std::vector<unsigned char> message(kLongest);
    for (;;)
    {
        waitFor(slot.state, kRequested);
        // As a service that trusts nobody does: what it works on is its own copy.
        const std::uint32_t length = slot.length;
        if (length > kLongest)
            fail("a request that is too long");
        std::memcpy(message.data(), slot.message, length);
        std::memcpy(slot.message, message.data(), length);
        wakeOther(slot.state, kReplied);
    }
}

class SharedConnection : public Connection
{
public:
    explicit SharedConnection(const std::string& directory)
    {
        static SharedSlot* const kAll = sharedSlots(directory, 0); // mapped once in this process
        for (std::size_t i = 0; slot_ == nullptr; i = (i + 1) % kSlots)
        {
            std::uint32_t expected = kFree;
            if (kAll[i].state.compare_exchange_strong(expected, kTaken))
                slot_ = &kAll[i];
        }
    }
    ~SharedConnection() override
    {
        slot_->state = kFree;
    }

    void call(void* message, std::size_t length) override
    {
        slot_->length = static_cast<std::uint32_t>(length);
        std::memcpy(slot_->message, message, length);
        wakeOther(slot_->state, kRequested);
        waitFor(slot_->state, kReplied);
        std::memcpy(message, slot_->message, length);
    }

private:
    SharedSlot* slot_ = nullptr;
};

} // namespace

const Peer kSharedMemory = {"shared memory",
                            [](const std::string& directory, const std::function<void()>& ready)
                            {
                                SharedSlot* const slots = sharedSlots(directory, O_CREAT);
                                std::vector<std::thread> threads;
                                threads.reserve(kSlots);
                                for (std::size_t i = 0; i < kSlots; ++i)
                                    threads.emplace_back(serveSlot, std::ref(slots[i]));
                                ready();
                                threads.front().join();
                            },
                            [](const std::string& directory) -> std::unique_ptr<Connection>
                            { return std::make_unique<SharedConnection>(directory); }};

} // namespace round_trip
