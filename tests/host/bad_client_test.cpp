// Clients that misbehave: they get a definite status or a closed connection, and other callers are not affected.
#include "support.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <vector>

#include <pwd.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace host_test
{
namespace
{

using koriil::Packet;
using koriil::PacketHeader;
using koriil::PacketKind;

class BadClientTest : public HostTest
{
protected:
    // Whatever happened, the service still serves a caller that was connected before, and a new one.
    void TearDown() override
    {
        EXPECT_EQ(callOnce(), KOR_IIL_OK);
        std::thread([] { EXPECT_EQ(callOnce(), KOR_IIL_OK); }).join();
        service_.reset();
    }

    void SetUp() override
    {
        service_ = std::make_unique<RunningService>();
        ASSERT_EQ(callOnce(), KOR_IIL_OK);
    }

    // The status that the service answers with; the connection must then be closed if `closed`.
    static void expectAnswer(Peer& peer, std::uint32_t status, bool closed)
    {
        const PacketHeader answer = peer.receiveHeader();
        EXPECT_EQ(answer.kind, PacketKind::kReply);
        EXPECT_EQ(answer.status, status);
        EXPECT_EQ(answer.length, 0u);
        if (closed)
            EXPECT_TRUE(peer.hasEnded());
        else
            expectService(peer);
    }

    // The peer, which has said hello, is served itself.
    static void expectService(Peer& peer)
    {
        ASSERT_TRUE(peer.send(requestHeader(1, 3), "abc"));
        auto answer = std::make_unique<Packet>();
        ASSERT_EQ(peer.receive(*answer), ssize_t{sizeof(PacketHeader) + 3});
        EXPECT_EQ(answer->header.status, KOR_IIL_OK);
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(answer->message), 3), "bcd");
    }

    std::unique_ptr<RunningService> service_;
};

TEST_F(BadClientTest, AGoodOneMadeByHandIsServed)
{
    Peer peer = Peer::connectTo(kService);
    const PacketHeader welcome = peer.greet();
    EXPECT_EQ(welcome.kind, PacketKind::kReply);
    EXPECT_EQ(welcome.sequence, 1u);
    EXPECT_NE(welcome.connection, 0u);
    expectService(peer);
}

TEST_F(BadClientTest, HangsUpAtOnce)
{
    for (int i = 0; i < 50; ++i)
        Peer::connectTo(kService);
}

TEST_F(BadClientTest, SaysNothing)
{
    std::vector<Peer> silent;
    for (int i = 0; i < 10; ++i)
        silent.push_back(Peer::connectTo(kService));
    EXPECT_EQ(callOnce(), KOR_IIL_OK);
    for (Peer& peer : silent)
        EXPECT_TRUE(peer.hasEnded());
}

TEST_F(BadClientTest, SaysHalfAHello)
{
    for (const std::size_t length : {std::size_t{1}, std::size_t{5}, std::size_t{8}, sizeof(PacketHeader) - 1})
    {
        Peer peer = Peer::connectTo(kService);
        PacketHeader hello;
        ASSERT_TRUE(peer.sendBytes(&hello, length));
        expectAnswer(peer, KOR_IIL_BAD_CMD, true);
    }
}

TEST_F(BadClientTest, SaysSomethingElseFirst)
{
    for (const PacketKind kind :
         {PacketKind::kRequest, PacketKind::kSubscribe, PacketKind::kReply, static_cast<PacketKind>(77)})
    {
        Peer peer = Peer::connectTo(kService);
        PacketHeader header;
        header.kind = kind;
        ASSERT_TRUE(peer.send(header));
        expectAnswer(peer, KOR_IIL_BAD_CMD, true);
    }
}

TEST_F(BadClientTest, LooksForAnotherService)
{
    Peer peer = Peer::connectTo(kService);
    PacketHeader hello;
    hello.name[0] = 'X';
    ASSERT_TRUE(peer.send(hello));
    expectAnswer(peer, KOR_IIL_UNKNOWN_DST_ID, true);
}

TEST_F(BadClientTest, IsOfAnotherByteOrder)
{
    Peer peer = Peer::connectTo(kService);
    ASSERT_TRUE(peer.send(inOtherByteOrder(PacketHeader())));
    expectAnswer(peer, KOR_IIL_MISMATCH_COMM, true);
}

TEST_F(BadClientTest, IsOfAnotherVersion)
{
    Peer peer = Peer::connectTo(kService);
    PacketHeader hello;
    ++hello.version;
    ASSERT_TRUE(peer.sendBytes(&hello, 16));
    expectAnswer(peer, KOR_IIL_MISMATCH_COMM, true);
}

TEST_F(BadClientTest, SpeaksAnotherLanguage)
{
    Peer peer = Peer::connectTo(kService);
    const std::string request = "GET / HTTP/1.1\r\nHost: gateway.example\r\nAccept: text/html, text/plain\r\n\r\n";
    ASSERT_TRUE(peer.sendBytes(request.data(), request.size()));
    expectAnswer(peer, KOR_IIL_BAD_CMD, true);
}

TEST_F(BadClientTest, MisstatesALength)
{
    for (const std::uint32_t length : {0u, 11u, 13u, UINT32_MAX})
    {
        Peer peer = Peer::connectTo(kService);
        peer.greet();
        ASSERT_TRUE(peer.send(requestHeader(1, length), "twelve bytes"));
        expectAnswer(peer, KOR_IIL_BAD_CMD, true);
    }
}

TEST_F(BadClientTest, DoesNotTerminateItsName)
{
    Peer peer = Peer::connectTo(kService);
    peer.greet();
    PacketHeader request = requestHeader(1, 0);
    std::memset(request.name, 'x', sizeof request.name);
    ASSERT_TRUE(peer.send(request));
    expectAnswer(peer, KOR_IIL_BAD_CMD, true);
}

TEST_F(BadClientTest, HasNoName)
{
    Peer peer = Peer::connectTo(kService);
    peer.greet();
    for (const PacketKind kind : {PacketKind::kRequest, PacketKind::kSubscribe, PacketKind::kCancel})
    {
        PacketHeader request = requestHeader(1, 0);
        request.kind = kind;
        std::memset(request.name, 0, sizeof request.name);
        ASSERT_TRUE(peer.send(request));
        expectAnswer(peer, KOR_IIL_UNKNOWN_SRC_ID, false);
    }
}

TEST_F(BadClientTest, SendsWhatOnlyServicesSend)
{
    for (const PacketKind kind : {PacketKind::kReply, PacketKind::kEvent, PacketKind::kHello, static_cast<PacketKind>(0)})
    {
        Peer peer = Peer::connectTo(kService);
        peer.greet();
        PacketHeader header = requestHeader(1, 0);
        header.kind = kind;
        ASSERT_TRUE(peer.send(header));
        expectAnswer(peer, KOR_IIL_BAD_CMD, true);
    }
}

TEST_F(BadClientTest, SendsTooMuch)
{
    Peer peer = Peer::connectTo(kService);
    peer.greet();
    const std::size_t excess = KOR_IIL_MAX_LENGTH + 1;
    ASSERT_TRUE(peer.send(requestHeader(1, static_cast<std::uint32_t>(excess)), std::string(excess, 'x')));
    expectAnswer(peer, KOR_IIL_OVERSIZE, false);
}

TEST_F(BadClientTest, SubscribesForSomeoneElse)
{
    Peer peer = Peer::connectTo(kService);
    const PacketHeader welcome = peer.greet();
    PacketHeader request = requestHeader(1, 0);
    request.kind = PacketKind::kSubscribe;
    request.connection = welcome.connection + 1000; // no connection's
    ASSERT_TRUE(peer.send(request));
    expectAnswer(peer, KOR_IIL_BAD_EVT, false);

    Peer other = Peer::connectTo(kService); // no hello, so no channel yet
    request.connection = welcome.connection + 1;
    ASSERT_TRUE(peer.send(request));
    expectAnswer(peer, KOR_IIL_BAD_EVT, false);

    Child child( // a channel of another process
        [&]
        {
            Peer stranger = Peer::connectTo(kService);
            stranger.greet();
            request.connection = welcome.connection;
            return stranger.send(request) && stranger.receiveHeader().status == KOR_IIL_BAD_EVT ? 0 : 1;
        });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(service_->publish(1), 0u);
}

TEST_F(BadClientTest, SubscribesWithAMessage)
{
    Peer peer = Peer::connectTo(kService);
    PacketHeader request = requestHeader(1, 3);
    request.kind = PacketKind::kSubscribe;
    request.connection = peer.greet().connection;
    ASSERT_TRUE(peer.send(request, "abc"));
    expectAnswer(peer, KOR_IIL_MISMATCH_CMD_LEN, false);
}

TEST_F(BadClientTest, DiesWithARequestOnItsWay)
{
    for (int i = 0; i < 20; ++i)
    {
        Peer peer = Peer::connectTo(kService);
        peer.greet();
        ASSERT_TRUE(peer.send(requestHeader(1, 12), "twelve bytes"));
    }
}

TEST_F(BadClientTest, IsKilledInMidCall)
{
    service_ = nullptr;
    service_ = std::make_unique<RunningService>(
        [](const KorIilRequest& request, unsigned char* message)
        {
            if (request.length == 1)
                sleepMilliseconds(100);
            return addOne(request, message);
        });
    Child child([] { return static_cast<int>(callOnce(1)); });
    sleepMilliseconds(50);
    child.kill(SIGKILL);
    child.wait();
}

// Disconnected as soon as the queue of unread replies is full.
TEST_F(BadClientTest, NeverReadsItsReplies)
{
    Peer peer = Peer::connectTo(kService);
    peer.greet();
    const std::string message(KOR_IIL_MAX_LENGTH, 'x');
    EXPECT_TRUE(eventually(
        [&]
        {
            const PacketHeader request = requestHeader(1, KOR_IIL_MAX_LENGTH);
            return !peer.send(request, message) && (errno == EPIPE || errno == ECONNRESET);
        }));
}

// More than the service takes, of one process: others find room, and so does that process itself.
TEST_F(BadClientTest, ComesInCrowds)
{
    std::vector<Peer> crowd;
    for (int i = 0; i < 300; ++i)
    {
        crowd.push_back(Peer::connectTo(kService));
        crowd.back().greet();
    }
    Child newcomer([] { return static_cast<int>(callOnce()); });
    EXPECT_EQ(newcomer.wait(), KOR_IIL_OK);
    EXPECT_TRUE(crowd.front().hasEnded()) << "the idlest made room";
    expectService(crowd.back());
}

TEST_F(BadClientTest, ComesInCrowdsAndSaysNothing)
{
    std::atomic<bool> done{false};
    std::thread flood(
        [&]
        {
            std::vector<Peer> crowd;
            while (!done)
            {
                Peer peer(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
                if (peer.tryToConnect(kService))
                    crowd.push_back(std::move(peer));
                if (crowd.size() == 600)
                    crowd.erase(crowd.begin(), crowd.begin() + 300);
            }
        });
    for (int i = 0; i < 50; ++i)
    {
        Child newcomer([] { return static_cast<int>(callOnce()); });
        EXPECT_EQ(newcomer.wait(), KOR_IIL_OK);
    }
    done = true;
    flood.join();
}

// One process needs one connection for events.
TEST_F(BadClientTest, SubscribesInCrowds)
{
    std::vector<Peer> crowd;
    for (int i = 0; i < 300; ++i)
    {
        Peer peer = Peer::connectTo(kService);
        PacketHeader request = requestHeader(1, 0);
        request.kind = PacketKind::kSubscribe;
        request.connection = peer.greet().connection;
        ASSERT_TRUE(peer.send(request));
        ASSERT_EQ(peer.receiveHeader().status, KOR_IIL_OK);
        crowd.push_back(std::move(peer));
    }
    Child newcomer([] { return static_cast<int>(callOnce()); });
    EXPECT_EQ(newcomer.wait(), KOR_IIL_OK);
}

TEST_F(BadClientTest, BelongsToAnotherUser)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can start a process of another user";
    ASSERT_EQ(chmod(directory().c_str(), 0711), 0);
    ASSERT_EQ(chmod(socketOf(kService).c_str(), 0777), 0);
    Child child(
        []
        {
            if (setgid(65534) != 0 || setuid(65534) != 0)
                return 1;
            Peer peer = Peer::connectTo(kService);
            return peer.receiveHeader().status == KOR_IIL_UNKNOWN_SRC_ID && peer.hasEnded() ? 0 : 2;
        });
    EXPECT_EQ(child.wait(), 0);
}

// Commands of a service that limits its own process: to the descriptors that are open, to fewer, or not at all.
constexpr std::uint32_t kAllowNoMore = 2, kAllowTooFew = 3, kAllowAll = 4;

std::uint32_t limitDescriptors(const KorIilRequest& request, unsigned char* message)
{
    rlimit limit = {};
    getrlimit(RLIMIT_NOFILE, &limit);
    if (request.command == kAllowNoMore)
    {
        const koriil::Descriptor lowestFree(dup(STDIN_FILENO));
        limit.rlim_cur = static_cast<rlim_t>(lowestFree.get());
    }
    else if (request.command == kAllowTooFew)
        limit.rlim_cur = 3;
    else if (request.command == kAllowAll)
        limit.rlim_cur = limit.rlim_max;
    else
        return addOne(request, message);
    return setrlimit(RLIMIT_NOFILE, &limit) == 0 ? KOR_IIL_OK : KOR_IIL_ERR;
}

// It rejects callers while it has no descriptor for them, serves those it has, and takes new ones as soon as it can.
TEST_F(BadClientTest, FindsAServiceOutOfDescriptors)
{
    service_ = nullptr;
    ServiceProcess poor(limitDescriptors);
    ASSERT_EQ(KorIilExecute(kCaller, kService, kAmple, kAllowNoMore, 0, nullptr), KOR_IIL_OK);
    for (int i = 0; i < 3; ++i)
    {
        Peer peer = Peer::connectTo(kService);
        expectAnswer(peer, KOR_IIL_BUSY, true);
        EXPECT_EQ(callOnce(), KOR_IIL_OK);
    }

    ASSERT_EQ(KorIilExecute(kCaller, kService, kAmple, kAllowTooFew, 0, nullptr), KOR_IIL_OK);
    Peer waiting = Peer::connectTo(kService);
    EXPECT_EQ(callOnce(), KOR_IIL_OK);
    ASSERT_EQ(KorIilExecute(kCaller, kService, kAmple, kAllowAll, 0, nullptr), KOR_IIL_OK);
    waiting.greet();
    expectService(waiting);
    poor.kill();
    service_ = std::make_unique<RunningService>();
}

} // namespace
} // namespace host_test
