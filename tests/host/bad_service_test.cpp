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
    static uint32_t statusIf(const std::function<void(Peer&, const PacketHeader&)>& answer, uint32_t wait = kAmple)
    {
        ScriptedService service(
            [&](Peer& peer)
            {
                welcome(peer);
                auto request = std::make_unique<Packet>();
                ASSERT_EQ(ssize_t{sizeof(PacketHeader) + 12}, peer.receive(*request));
                answer(peer, request->header);
            });
        return callOnce(12, wait);
    }

    // What it returns if the service answers its hello so.
    static uint32_t statusIfGreeted(const std::function<void(Peer&, const PacketHeader&)>& answer, uint32_t wait = kAmple)
    {
        ScriptedService service(
            [&](Peer& peer)
            {
                auto hello = std::make_unique<Packet>();
                ASSERT_EQ(ssize_t{sizeof(PacketHeader)}, peer.receive(*hello));
                answer(peer, hello->header);
            });
        return callOnce(12, wait);
    }
};

const std::string kTwelve = "ABCDEFGHIJKL";

TEST_F(BadServiceTest, NoServiceOfThatName)
{
    EXPECT_EQ(KOR_IIL_UNKNOWN_DST_ID, callOnce());
}

TEST_F(BadServiceTest, ADeadServiceIsNoService)
{
    {
        ServiceProcess service;
        ASSERT_EQ(KOR_IIL_OK, callOnce());
        service.kill();
    }
    ASSERT_EQ(0, access(socketOf(kService).c_str(), F_OK)) << "its socket was to stay behind";
    EXPECT_EQ(KOR_IIL_UNKNOWN_DST_ID, callOnce());
}

TEST_F(BadServiceTest, ASocketOfAnotherKindIsNoPeer)
{
    const koriil::Descriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    socketOf(kService).copy(address.sun_path, sizeof(address.sun_path) - 1);
    ASSERT_EQ(0, bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)));
    ASSERT_EQ(0, listen(listener.get(), 1));
    EXPECT_EQ(KOR_IIL_MISMATCH_COMM, callOnce());
}

TEST_F(BadServiceTest, NoReplyWithinTheWait)
{
    EXPECT_EQ(KOR_IIL_TIMEOUT, statusIf([](Peer& peer, const PacketHeader&) { EXPECT_TRUE(peer.hasEnded()); }, 1));
}

TEST_F(BadServiceTest, NoWelcomeWithinTheWait)
{
    EXPECT_EQ(KOR_IIL_TIMEOUT, statusIfGreeted([](Peer& peer, const PacketHeader&) { EXPECT_TRUE(peer.hasEnded()); }, 1));
}

TEST_F(BadServiceTest, AServiceThatAcceptsNobodyTimesOut)
{
    const koriil::Descriptor listener(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    socketOf(kService).copy(address.sun_path, sizeof(address.sun_path) - 1);
    ASSERT_EQ(0, bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)));
    ASSERT_EQ(0, listen(listener.get(), 0));
    const Peer first = Peer::connectTo(kService); // fills the queue
    EXPECT_EQ(KOR_IIL_TIMEOUT, callOnce(12, 1));
}

TEST_F(BadServiceTest, HangingUpInMidCall)
{
    EXPECT_EQ(KOR_IIL_RX_FAIL, statusIf([](Peer&, const PacketHeader&) {}));
}

TEST_F(BadServiceTest, HangingUpInsteadOfAWelcome)
{
    EXPECT_EQ(KOR_IIL_RX_FAIL, statusIfGreeted([](Peer&, const PacketHeader&) {}));
}

TEST_F(BadServiceTest, AProcessThatDiesInMidCall)
{
    ServiceProcess service([](const KorIilRequest&, unsigned char*) -> uint32_t { _exit(3); });
    EXPECT_EQ(KOR_IIL_RX_FAIL, callOnce());
}

TEST_F(BadServiceTest, NotTakingTheRequest)
{
    EXPECT_EQ(KOR_IIL_TX_FAIL, statusIfGreeted(
                                   [](Peer& peer, const PacketHeader& hello)
                                   {
                                       ASSERT_EQ(0, shutdown(peer.descriptor(), SHUT_RD));
                                       ASSERT_TRUE(peer.send(replyTo(hello, 0)));
                                       peer.hasEnded();
                                   }));
}

TEST_F(BadServiceTest, AnotherByteOrder)
{
    EXPECT_EQ(KOR_IIL_MISMATCH_COMM, statusIfGreeted([](Peer& peer, const PacketHeader& hello)
                                                     { EXPECT_TRUE(peer.send(inOtherByteOrder(replyTo(hello, 0)))); }));
    EXPECT_EQ(KOR_IIL_MISMATCH_COMM, statusIf([](Peer& peer, const PacketHeader& request)
                                              { EXPECT_TRUE(peer.send(inOtherByteOrder(replyTo(request, 12)), kTwelve)); }));
}

TEST_F(BadServiceTest, AnotherVersion)
{
    EXPECT_EQ(KOR_IIL_MISMATCH_COMM, statusIfGreeted(
                                         [](Peer& peer, const PacketHeader& hello)
                                         {
                                             PacketHeader reply = replyTo(hello, 0);
                                             ++reply.version;
                                             EXPECT_TRUE(peer.sendBytes(&reply, 8)); // its header may well be a shorter one
                                         }));
}

TEST_F(BadServiceTest, ARefusalPassesItsStatusOn)
{
    for (const uint32_t status : {KOR_IIL_BUSY, KOR_IIL_UNKNOWN_SRC_ID, KOR_IIL_MISMATCH_COMM})
        EXPECT_EQ(status, statusIfGreeted(
                              [=](Peer& peer, const PacketHeader& hello)
                              {
                                  PacketHeader reply = replyTo(hello, 0);
                                  reply.status = status;
                                  EXPECT_TRUE(peer.send(reply));
                              }));
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
    EXPECT_EQ(KOR_IIL_BUSY, callOnce());
}

TEST_F(BadServiceTest, MalformedReplies)
{
    const std::function<void(PacketHeader&)> faults[] = {
        [](PacketHeader& reply) { reply.magic = 0; },
        [](PacketHeader& reply) { reply.kind = PacketKind::Event; },
        [](PacketHeader& reply) { reply.kind = PacketKind::Request; },
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
        EXPECT_EQ(KOR_IIL_BAD_RET, statusIf(
                                       [&](Peer& peer, const PacketHeader& request)
                                       {
                                           PacketHeader reply = replyTo(request, 12);
                                           fault(reply);
                                           EXPECT_TRUE(peer.send(reply, kTwelve));
                                       }))
            << "fault " << number;
        ++number;
    }
}

TEST_F(BadServiceTest, FragmentsOfReplies)
{
    for (const size_t length : {size_t{1}, size_t{5}, size_t{8}, sizeof(PacketHeader) - 1})
        EXPECT_EQ(KOR_IIL_BAD_RET, statusIf(
                                       [=](Peer& peer, const PacketHeader& request)
                                       {
                                           const PacketHeader reply = replyTo(request, 12);
                                           EXPECT_TRUE(peer.sendBytes(&reply, length));
                                       }))
            << length;
}

TEST_F(BadServiceTest, RepliesOfAnotherLength)
{
    for (const size_t length : {size_t{0}, size_t{11}, size_t{13}, size_t{KOR_IIL_MAX_LENGTH}, size_t{KOR_IIL_MAX_LENGTH} + 1})
        EXPECT_EQ(
            KOR_IIL_MISMATCH_CMD_LEN,
            statusIf([=](Peer& peer, const PacketHeader& request)
                     { EXPECT_TRUE(peer.send(replyTo(request, static_cast<uint32_t>(length)), std::string(length, 'x'))); }))
            << length;
}

TEST_F(BadServiceTest, EveryStatusOfAHandlerReachesTheCaller)
{
    RunningService service([](const KorIilRequest& request, unsigned char* message) -> uint32_t
                           { return message[0] = 0xEE, request.command; });
    for (uint32_t status = 1; status < 30; ++status)
    {
        if (status == KOR_IIL_TIMEOUT)
            continue;
        char message[] = "untouched";
        EXPECT_EQ(status, KorIilExecute(kCaller, kService, kAmple, status, sizeof(message), message));
        EXPECT_STREQ("untouched", message);
    }
}

} // namespace
} // namespace host_test
