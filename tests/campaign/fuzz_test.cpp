// Hostile packets for a service and for a client. They are made of what the library itself sends, which is recorded by a proxy,
// so that nothing here knows their layout.
#include "support.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <random>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace campaign
{
namespace
{

using Bytes = std::vector<unsigned char>;

constexpr std::size_t kLongestPacket = 70000; // longer than any that the library sends

// A socket that closes itself.
class Socket
{
public:
    explicit Socket(int number = -1) : number_(number)
    {
    }
    Socket(Socket&& other) noexcept : number_(std::exchange(other.number_, -1))
    {
    }
    Socket& operator=(Socket&& other) noexcept
    {
        std::swap(number_, other.number_);
        return *this;
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    ~Socket()
    {
        if (number_ >= 0)
            close(number_);
    }
    int get() const
    {
        return number_;
    }

private:
    int number_;
};

sockaddr_un addressIn(const std::string& directory)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s/%s.socket", directory.c_str(), kService);
    return address;
}

Socket newSocket()
{
    return Socket(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
}

Socket connectIn(const std::string& directory)
{
    Socket connection = newSocket();
    const sockaddr_un address = addressIn(directory);
    if (connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return Socket();
    return connection;
}

Socket listenIn(const std::string& directory)
{
    Socket listener = newSocket();
    const sockaddr_un address = addressIn(directory);
    EXPECT_EQ(bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(listen(listener.get(), 64), 0);
    return listener;
}

bool sendTo(const Socket& socket, const Bytes& packet)
{
    return send(socket.get(), packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT) >= 0;
}

// Changes a packet at random, but not its last `kept` bytes.
class Mutator
{
public:
    explicit Mutator(std::uint32_t seed, std::size_t kept = 0) : random_(seed), kept_(kept)
    {
    }

    std::uint32_t below(std::uint32_t limit)
    {
        return static_cast<std::uint32_t>(random_() % limit);
    }

    void mutate(Bytes& packet)
    {
        if (packet.size() <= kept_)
            return;
        const std::size_t free = packet.size() - kept_;
        switch (below(8))
        {
        case 0: // a bit
            packet[random_() % free] ^= static_cast<unsigned char>(1u << below(8));
            break;
        case 1: // a byte
            packet[random_() % free] = static_cast<unsigned char>(random_());
            break;
        case 2:
        case 3:
        case 4:
            setWord(packet, free);
            break;
        case 5: // cut
            packet.resize(random_() % packet.size());
            break;
        case 6: // longer
            packet.resize(packet.size() + 1 + random_() % 100, 0xA5);
            break;
        default: // much longer
            packet.resize(kLongestPacket - below(8192), 0x5A);
            break;
        }
    }

private:
    // To a number at which counters, lengths and identifiers often go wrong.
    void setWord(Bytes& packet, std::size_t free)
    {
        if (free < sizeof(std::uint32_t))
            return;
        const std::uint32_t values[] = {
            0,       1,          2,          3,          5,          7,  0xFFFF,     0x10000,
            0x10001, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0xFFFFFFFE, 31, 0x01000000, static_cast<std::uint32_t>(random_())};
        const std::uint32_t value = values[below(std::size(values))];
        std::memcpy(packet.data() + random_() % (free / 4) * 4, &value, sizeof value);
    }

    std::mt19937 random_;
    const std::size_t kept_;
};

// Stands between the clients that look in one directory and the service of another, and hands on what they send.
class Proxy
{
public:
    enum class Verdict
    {
        kPass,
        kTwice,
        kReplay, // in its place, the one before it on the same connection
        kDrop,
        kHangUp
    };
    // What to do with a packet, which may be changed.
    using Filter = std::function<Verdict(Bytes&)>;

    Proxy(const std::string& front, std::string back, Filter fromClient, Filter fromService)
        : back_(std::move(back)),
          fromClient_(std::move(fromClient)),
          fromService_(std::move(fromService)),
          listener_(listenIn(front)),
          thread_([this] { run(); })
    {
    }
    ~Proxy()
    {
        done_ = true;
        thread_.join();
    }
    Proxy(const Proxy&) = delete;
    Proxy& operator=(const Proxy&) = delete;

private:
    struct Pair
    {
        Socket client;
        Socket service;
        Bytes lastFromClient;
        Bytes lastFromService;
    };

    void run()
    {
        while (!done_)
        {
            std::vector<pollfd> files = {{listener_.get(), POLLIN, 0}};
            for (const Pair& pair : pairs_)
            {
                files.push_back({pair.client.get(), POLLIN, 0});
                files.push_back({pair.service.get(), POLLIN, 0});
            }
            poll(files.data(), files.size(), 20);

            for (std::size_t i = pairs_.size(); i-- > 0;)
            {
                Pair& pair = pairs_[i];
                const bool goesOn =
                    (files[1 + 2 * i].revents == 0 || forward(pair.client, pair.service, fromClient_, pair.lastFromClient)) &&
                    (files[2 + 2 * i].revents == 0 || forward(pair.service, pair.client, fromService_, pair.lastFromService));
                if (!goesOn)
                    pairs_.erase(pairs_.begin() + static_cast<std::ptrdiff_t>(i));
            }
            if (files[0].revents != 0)
                pairs_.push_back({Socket(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC)), connectIn(back_), {}, {}});
        }
    }

    // False when the connection is to end.
    static bool forward(const Socket& from, const Socket& to, const Filter& filter, Bytes& last)
    {
        Bytes packet(kLongestPacket);
        const ssize_t received = recv(from.get(), packet.data(), packet.size(), MSG_DONTWAIT);
        if (received <= 0)
            return false;
        packet.resize(static_cast<std::size_t>(received));
        const Bytes before = std::exchange(last, packet);
        switch (filter(packet))
        {
        case Verdict::kTwice:
            sendTo(to, packet);
            [[fallthrough]];
        case Verdict::kPass:
            return sendTo(to, packet);
        case Verdict::kReplay:
            return sendTo(to, before);
        case Verdict::kDrop:
            return true;
        case Verdict::kHangUp:
            break;
        }
        return false;
    }

    const std::string back_;
    const Filter fromClient_;
    const Filter fromService_;
    const Socket listener_;
    std::vector<Pair> pairs_;
    std::atomic<bool> done_{false};
    std::thread thread_;
};

Proxy::Verdict pass(Bytes&)
{
    return Proxy::Verdict::kPass;
}

// Reads all that it is given.
void readEvent(const char*, std::uint32_t, const void* data, std::uint32_t length)
{
    static std::atomic<unsigned> sum{0};
    for (std::uint32_t i = 0; i < length; ++i)
        sum += static_cast<const unsigned char*>(data)[i];
}

class FuzzTest : public CampaignTest
{
protected:
    void SetUp() override
    {
        CampaignTest::SetUp();
        service_ = std::make_unique<RunningService>();
        front_ = directory() + "/front";
        std::filesystem::create_directory(front_);
        std::filesystem::permissions(front_, std::filesystem::perms::owner_all);
    }

    void TearDown() override
    {
        EXPECT_EQ(callSum(), KOR_IIL_OK);
        service_.reset();
    }

    // Clients of this process look there from now on. Only while no thread is about to connect.
    static void lookIn(const std::string& place)
    {
        setenv("KORIIL_DIR", place.c_str(), 1);
    }

    // What clients send in an exchange with all kinds of requests; the first packet is the one that opens a connection.
    std::vector<Bytes> recordClient()
    {
        std::mutex mutex;
        std::vector<Bytes> packets;
        const Proxy proxy(
            front_, directory(),
            [&](Bytes& packet)
            {
                const std::lock_guard<std::mutex> guard(mutex);
                packets.push_back(packet);
                return Proxy::Verdict::kPass;
            },
            pass);
        lookIn(front_);
        std::thread(
            []
            {
                EXPECT_EQ(callSum(), KOR_IIL_OK);
                EXPECT_EQ(KorIilSubscribeEvent("fuzz", kService, 1, readEvent), KOR_IIL_OK);
                EXPECT_EQ(KorIilCancelEvent("fuzz", kService, 1, readEvent), KOR_IIL_OK);
            })
            .join();
        lookIn(directory());
        std::filesystem::remove(addressIn(front_).sun_path);
        const std::lock_guard<std::mutex> guard(mutex);
        return packets;
    }

    const HangGuard guard_{duration() + std::chrono::seconds(2 * kAmple), [] { return "hostile packets"; }};
    std::unique_ptr<RunningService> service_;
    std::string front_;
};

// --- To a service ------------------------------------------------------------------------------------------------------------

// Descriptors that nobody asked for.
bool sendDescriptors(const Socket& to, const Bytes& packet)
{
    const int descriptors[4] = {to.get(), to.get(), to.get(), to.get()};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof descriptors)] = {};
    iovec part = {const_cast<unsigned char*>(packet.data()), packet.size()};
    msghdr message = {};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    cmsghdr* const header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(sizeof descriptors);
    std::memcpy(CMSG_DATA(header), descriptors, sizeof descriptors);
    return sendmsg(to.get(), &message, MSG_NOSIGNAL | MSG_DONTWAIT) >= 0;
}

// One hostile connection; returns how many packets were sent.
int attack(const std::string& directory, const std::vector<Bytes>& recorded, Mutator& mutator)
{
    const Socket connection = connectIn(directory);
    int sent = 0;
    if (connection.get() < 0)
        return sent;
    if (mutator.below(4) != 0 && sendTo(connection, recorded.front()))
        ++sent;
    for (std::uint32_t left = 1 + mutator.below(20); left > 0; --left)
    {
        Bytes packet = recorded[mutator.below(static_cast<std::uint32_t>(recorded.size()))];
        if (mutator.below(8) != 0)
            mutator.mutate(packet);
        const bool taken = mutator.below(16) == 0 ? sendDescriptors(connection, packet) : sendTo(connection, packet);
        if (!taken)
            break;
        ++sent;
        Bytes reply(kLongestPacket);
        if (mutator.below(2) == 0)
            recv(connection.get(), reply.data(), reply.size(), MSG_DONTWAIT);
    }
    return sent;
}

TEST_F(FuzzTest, AServiceSurvivesHostilePacketsAndServesItsHealthyClient)
{
    const std::vector<Bytes> recorded = recordClient();
    ASSERT_GE(recorded.size(), 4u);
    const std::size_t descriptors = openDescriptors();
    Peer healthy({"call"});
    ASSERT_EQ(healthy.line(), "ready");

    std::atomic<int> packets{0};
    {
        std::atomic<std::uint32_t> threads{0};
        const Repeating attacking(2,
                                  [&]
                                  {
                                      thread_local Mutator mutator(seed() + ++threads);
                                      packets += attack(directory(), recorded, mutator);
                                  });
        const Repeating publishing(1,
                                   [&]
                                   {
                                       EXPECT_EQ(KorIilServicePublish(service_->get(), 1, "event", 5, nullptr), KOR_IIL_OK);
                                       sleepMilliseconds(1);
                                   });
        std::this_thread::sleep_for(duration());
    }
    EXPECT_EQ(healthy.finish(), 0);
    EXPECT_TRUE(eventually([&] { return openDescriptors() <= descriptors + 1; })) << "descriptors of hostile clients are left";
    std::printf("counted: %d hostile packets\n", packets.load());
    EXPECT_GT(packets, 0);
}

// --- To a client -------------------------------------------------------------------------------------------------------------

TEST_F(FuzzTest, AClientSurvivesHostileRepliesAndEvents)
{
    // The sum stays as it is, so that a call that succeeds must have its own.
    Mutator mutator(seed(), sizeof(Sum));
    std::atomic<int> packets{0};
    const auto makeHostile = [&](Bytes& packet)
    {
        ++packets;
        switch (mutator.below(8))
        {
        case 0:
        case 1:
            mutator.mutate(packet);
            return Proxy::Verdict::kPass;
        case 2:
            return Proxy::Verdict::kTwice;
        case 3:
            return Proxy::Verdict::kReplay;
        case 4: // seldom lost: its caller waits for a second
            return mutator.below(200) == 0 ? Proxy::Verdict::kDrop : Proxy::Verdict::kHangUp;
        default: // half of them arrive as they are
            return Proxy::Verdict::kPass;
        }
    };

    std::atomic<int> calls{0};
    {
        const Proxy proxy(front_, directory(), pass, makeHostile);
        lookIn(front_);
        const Repeating calling(3,
                                [&]
                                {
                                    const auto start = std::chrono::steady_clock::now();
                                    callSum(1);
                                    ++calls;
                                    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15));
                                });
        const Repeating subscribing(1,
                                    []
                                    {
                                        KorIilSubscribeEvent("fuzz", kService, 1, readEvent);
                                        sleepMilliseconds(3);
                                        KorIilCancelEvent("fuzz", kService, 1, readEvent);
                                    });
        const Repeating publishing(1,
                                   [&]
                                   {
                                       KorIilServicePublish(service_->get(), 1, "event", 5, nullptr);
                                       sleepMilliseconds(1);
                                   });
        std::this_thread::sleep_for(duration());
    }
    std::printf("counted: %d hostile packets, %d calls\n", packets.load(), calls.load());
    EXPECT_GT(packets, 0);

    lookIn(directory());
    EXPECT_TRUE(eventually([] { return KorIilSubscribeEvent("fuzz", kService, 1, readEvent) == KOR_IIL_OK; }));
    EXPECT_EQ(KorIilCancelEvent("fuzz", kService, 1, readEvent), KOR_IIL_OK);
}

} // namespace
} // namespace campaign
