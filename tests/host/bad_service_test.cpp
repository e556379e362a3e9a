// A status of its own for everything a service can do wrong, or leave undone; and the caller's message untouched every time,
// which callOnce sees to.
#include "support.h"

#include <sys/socket.h>
#include <sys/un.h>

namespace host_test
{
namespace
{

using koriil::Packet;
using koriil::PacketHeader;
using koriil::PacketKind;

class BadServiceTest : public HostTest
{
protected:
    // What a call of 12 bytes returns if the service, having received it, does this.
    static std::uint32_t statusIf(const std::function<void(Peer&, const PacketHeader&)>& answer, std::uint32_t wait = kAmple)
    {
        ScriptedService service(
            [&](Peer& peer)
            {
                welcome(peer);
                auto request = std::make_unique<Packet>();
                ASSERT_EQ(peer.receive(*request), ssize_t{sizeof(PacketHeader) + 12});
                answer(peer, request->header);
            });
        return callOnce(12, wait);
    }

    // What it returns if the service answers its hello so.
    static std::uint32_t statusIfGreeted(const std::function<void(Peer&, const PacketHeader&)>& answer,
                                         std::uint32_t wait = kAmple)
    {
        ScriptedService service(
            [&](Peer& peer)
            {
                auto hello = std::make_unique<Packet>();
                ASSERT_EQ(peer.receive(*hello), ssize_t{sizeof(PacketHeader)});
                answer(peer, hello->header);
            });
        return callOnce(12, wait);
    }
};

const std::string kTwelve = "ABCDEFGHIJKL";

TEST_F(BadServiceTest, NoServiceOfThatName)
{
    EXPECT_EQ(callOnce(), KOR_IIL_UNKNOWN_DST_ID);
}

TEST_F(BadServiceTest, ADeadServiceIsNoService)
{
    {
        ServiceProcess service;
        ASSERT_EQ(callOnce(), KOR_IIL_OK);
        service.kill();
    }
    ASSERT_EQ(access(socketOf(kService).c_str(), F_OK), 0) << "its socket was to stay behind";
    EXPECT_EQ(callOnce(), KOR_IIL_UNKNOWN_DST_ID);
}

TEST_F(BadServiceTest, ASocketOfAnotherKindIsNoPeer)
{
    const koriil::Descriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    socketOf(kService).copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listener.get(), 1), 0);
    EXPECT_EQ(callOnce(), KOR_IIL_MISMATCH_COMM);
}

TEST_F(BadServiceTest, NoReplyWithinTheWait)
{
    EXPECT_EQ(statusIf([](Peer& peer, const PacketHeader&) { EXPECT_TRUE(peer.hasEnded()); }, 1), KOR_IIL_TIMEOUT);
}

TEST_F(BadServiceTest, NoWelcomeWithinTheWait)
{
    EXPECT_EQ(statusIfGreeted([](Peer& peer, const PacketHeader&) { EXPECT_TRUE(peer.hasEnded()); }, 1), KOR_IIL_TIMEOUT);
}

TEST_F(BadServiceTest, AServiceThatAcceptsNobodyTimesOut)
{
    const koriil::Descriptor listener(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    socketOf(kService).copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listener.get(), 0), 0);
    const Peer first = Peer::connectTo(kService); // fills the queue
    EXPECT_EQ(callOnce(12, 1), KOR_IIL_TIMEOUT);
}

TEST_F(BadServiceTest, HangingUpInMidCall)
{
    EXPECT_EQ(statusIf([](Peer&, const PacketHeader&) {}), KOR_IIL_RX_FAIL);
}

TEST_F(BadServiceTest, HangingUpInsteadOfAWelcome)
{
    EXPECT_EQ(statusIfGreeted([](Peer&, const PacketHeader&) {}), KOR_IIL_RX_FAIL);
}

TEST_F(BadServiceTest, AProcessThatDiesInMidCall)
{
    ServiceProcess service([](const KorIilRequest&, unsigned char*) -> std::uint32_t { _exit(3); });
    EXPECT_EQ(callOnce(), KOR_IIL_RX_FAIL);
}

TEST_F(BadServiceTest, NotTakingTheRequest)
{
    EXPECT_EQ(statusIfGreeted(
                  [](Peer& peer, const PacketHeader& hello)
                  {
                      ASSERT_EQ(0, shutdown(peer.descriptor(), SHUT_RD));
                      ASSERT_TRUE(peer.send(replyTo(hello, 0)));
                      peer.hasEnded();
                  }),
              KOR_IIL_TX_FAIL);
}

TEST_F(BadServiceTest, AnotherByteOrder)
{
    EXPECT_EQ(statusIfGreeted([](Peer& peer, const PacketHeader& hello)
                              { EXPECT_TRUE(peer.send(inOtherByteOrder(replyTo(hello, 0)))); }),
              KOR_IIL_MISMATCH_COMM);
    EXPECT_EQ(statusIf([](Peer& peer, const PacketHeader& request)
                       { EXPECT_TRUE(peer.send(inOtherByteOrder(replyTo(request, 12)), kTwelve)); }),
              KOR_IIL_MISMATCH_COMM);
}

TEST_F(BadServiceTest, AnotherVersion)
{
    EXPECT_EQ(statusIfGreeted(
                  [](Peer& peer, const PacketHeader& hello)
                  {
                      PacketHeader reply = replyTo(hello, 0);
                      ++reply.version;
                      EXPECT_TRUE(peer.sendBytes(&reply, 8)); // its header may well be a shorter one
                  }),
              KOR_IIL_MISMATCH_COMM);
}

TEST_F(BadServiceTest, ARefusalPassesItsStatusOn)
{
    for (const std::uint32_t status : {KOR_IIL_BUSY, KOR_IIL_UNKNOWN_SRC_ID, KOR_IIL_MISMATCH_COMM})
        EXPECT_EQ(statusIfGreeted(
                      [=](Peer& peer, const PacketHeader& hello)
                      {
                          PacketHeader reply = replyTo(hello, 0);
                          reply.status = status;
                          EXPECT_TRUE(peer.send(reply));
                      }),
                  status);
}

TEST_F(BadServiceTest, ARefusalIsHeardThoughTheHelloIsNotRead)
{
    ScriptedService service(
        [&](Peer& peer)
        {
            PacketHeader reply = replyTo(PacketHeader(), 0);
            reply.sequence = 1;
            reply.status = KOR_IIL_BUSY;
            EXPECT_TRUE(peer.send(reply));
        });
    EXPECT_EQ(callOnce(), KOR_IIL_BUSY);
}

TEST_F(BadServiceTest, MalformedReplies)
{
    const std::function<void(PacketHeader&)> faults[] = {
        [](PacketHeader& reply) { reply.magic = 0; },
        [](PacketHeader& reply) { reply.kind = PacketKind::kEvent; },
        [](PacketHeader& reply) { reply.kind = PacketKind::kRequest; },
        [](PacketHeader& reply) { ++reply.sequence; },
        [](PacketHeader& reply) { --reply.sequence; },
        [](PacketHeader& reply) { ++reply.command; },
        [](PacketHeader& reply) { reply.length = 11; },
        [](PacketHeader& reply) { reply.length = 13; },
        [](PacketHeader& reply) { reply.length = UINT32_MAX; },
        [](PacketHeader& reply) { reply.status = KOR_IIL_UNSUPPORT; }, // and a message behind it
    };
    int number = 0;
    for (const auto& fault : faults)
    {
        EXPECT_EQ(statusIf(
                      [&](Peer& peer, const PacketHeader& request)
                      {
                          PacketHeader reply = replyTo(request, 12);
                          fault(reply);
                          EXPECT_TRUE(peer.send(reply, kTwelve));
                      }),
                  KOR_IIL_BAD_RET)
            << "fault " << number;
        ++number;
    }
}

TEST_F(BadServiceTest, FragmentsOfReplies)
{
    for (const std::size_t length : {std::size_t{1}, std::size_t{5}, std::size_t{8}, sizeof(PacketHeader) - 1})
        EXPECT_EQ(statusIf(
                      [=](Peer& peer, const PacketHeader& request)
                      {
                          const PacketHeader reply = replyTo(request, 12);
                          EXPECT_TRUE(peer.sendBytes(&reply, length));
                      }),
                  KOR_IIL_BAD_RET)
            << length;
}

TEST_F(BadServiceTest, RepliesOfAnotherLength)
{
    for (const std::size_t length : {std::size_t{0}, std::size_t{11}, std::size_t{13}, std::size_t{KOR_IIL_MAX_LENGTH},
                                     std::size_t{KOR_IIL_MAX_LENGTH} + 1})
        EXPECT_EQ(
            statusIf(
                [=](Peer& peer, const PacketHeader& request)
                { EXPECT_TRUE(peer.send(replyTo(request, static_cast<std::uint32_t>(length)), std::string(length, 'x'))); }),
            KOR_IIL_MISMATCH_CMD_LEN)
            << length;
}

TEST_F(BadServiceTest, EveryStatusOfAHandlerReachesTheCaller)
{
    RunningService service([](const KorIilRequest& request, unsigned char* message) -> std::uint32_t
                           { return message[0] = 0xEE, request.command; });
    for (std::uint32_t status = 1; status < 30; ++status)
    {
        if (status == KOR_IIL_TIMEOUT)
            continue;
        char message[] = "untouched";
        EXPECT_EQ(KorIilExecute(kCaller, kService, kAmple, status, sizeof message, message), status);
        EXPECT_STREQ(message, "untouched");
    }
}

} // namespace
} // namespace host_test
