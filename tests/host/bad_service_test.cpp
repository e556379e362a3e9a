// Every fault of a service has its own status, and leaves the caller's message unchanged, which callOnce checks.
#include "support.h"

#include <cstddef>
#include <functional>
#include <iterator>
#include <string>

#include <sys/socket.h>
#include <unistd.h>

namespace host_test
{
namespace
{

using koriil::PacketHeader;
using koriil::PacketKind;

// What a service does with a packet it has received.
using Reaction = std::function<void(Peer&, const PacketHeader&)>;

// What is wrong with a header.
using Fault = std::function<void(PacketHeader&)>;

class BadServiceTest : public HostTest
{
protected:
    // The status of a call of 12 bytes whose request meets this reaction.
    static std::uint32_t statusIf(const Reaction& reaction, std::uint32_t wait = kAmple)
    {
        ScriptedService service(
            [&](ScriptedService& self)
            {
                Peer peer = self.welcome();
                const PacketHeader request = peer.receiveHeader();
                ASSERT_EQ(request.length, 12u);
                reaction(peer, request);
            });
        return callOnce(12, wait);
    }

    // The same where the client's hello meets it.
    static std::uint32_t statusIfGreeted(const Reaction& reaction, std::uint32_t wait = kAmple)
    {
        ScriptedService service(
            [&](ScriptedService& self)
            {
                Peer peer = self.accept();
                const PacketHeader hello = peer.receiveHeader();
                ASSERT_EQ(hello.length, 0u);
                reaction(peer, hello);
            });
        return callOnce(12, wait);
    }
};

void closeAtOnce(Peer&, const PacketHeader&)
{
}

void sayNothing(Peer& peer, const PacketHeader&)
{
    EXPECT_TRUE(peer.hasEnded());
}

// Replies with this message and a header that is correct but for the fault.
Reaction replyWith(const std::string& message, const Fault& fault)
{
    return [=](Peer& peer, const PacketHeader& request)
    {
        PacketHeader reply = replyTo(request, static_cast<std::uint32_t>(message.size()));
        fault(reply);
        EXPECT_TRUE(peer.send(reply, message));
    };
}

// Replies with the first `length` bytes of such a header.
Reaction replyCutTo(std::size_t length, const Fault& fault)
{
    return [=](Peer& peer, const PacketHeader& request)
    {
        PacketHeader reply = replyTo(request, 12);
        fault(reply);
        EXPECT_TRUE(peer.sendBytes(&reply, length));
    };
}

void noFault(PacketHeader&)
{
}

void swapBytes(PacketHeader& header)
{
    header = inOtherByteOrder(header);
}

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
    ASSERT_EQ(access(socketOf(kService).c_str(), F_OK), 0) << "its socket is left";
    EXPECT_EQ(callOnce(), KOR_IIL_UNKNOWN_DST_ID);
}

TEST_F(BadServiceTest, ASocketOfAnotherKindIsNoPeer)
{
    const koriil::Descriptor listener = listenAs(kService, SOCK_STREAM);
    EXPECT_EQ(callOnce(), KOR_IIL_MISMATCH_COMM);
}

TEST_F(BadServiceTest, NoReplyWithinTheWait)
{
    EXPECT_EQ(statusIf(sayNothing, 1), KOR_IIL_TIMEOUT);
}

TEST_F(BadServiceTest, NoWelcomeWithinTheWait)
{
    EXPECT_EQ(statusIfGreeted(sayNothing, 1), KOR_IIL_TIMEOUT);
}

TEST_F(BadServiceTest, AServiceThatAcceptsNobodyTimesOut)
{
    const koriil::Descriptor listener = listenAs(kService, SOCK_SEQPACKET, 0);
    const Peer first = Peer::connectTo(kService); // fills the queue
    EXPECT_EQ(callOnce(12, 1), KOR_IIL_TIMEOUT);
}

TEST_F(BadServiceTest, HangingUpInMidCall)
{
    EXPECT_EQ(statusIf(closeAtOnce), KOR_IIL_RX_FAIL);
}

TEST_F(BadServiceTest, HangingUpInsteadOfAWelcome)
{
    EXPECT_EQ(statusIfGreeted(closeAtOnce), KOR_IIL_RX_FAIL);
}

TEST_F(BadServiceTest, AProcessThatDiesInMidCall)
{
    ServiceProcess service([](const KorIilRequest&, unsigned char*) -> std::uint32_t { _exit(3); });
    EXPECT_EQ(callOnce(), KOR_IIL_RX_FAIL);
}

TEST_F(BadServiceTest, NotTakingTheRequest)
{
    ScriptedService service(
        [](ScriptedService& self)
        {
            for (int attempt = 0; attempt < 3; ++attempt)
            {
                Peer peer = self.accept();
                const PacketHeader hello = peer.receiveHeader();
                ASSERT_EQ(shutdown(peer.descriptor(), SHUT_RD), 0);
                ASSERT_TRUE(peer.send(replyTo(hello, 0)));
                peer.hasEnded();
            }
        });
    EXPECT_EQ(callOnce(), KOR_IIL_TX_FAIL);
}

TEST_F(BadServiceTest, AnotherByteOrder)
{
    EXPECT_EQ(statusIfGreeted(replyWith("", swapBytes)), KOR_IIL_MISMATCH_COMM);
    EXPECT_EQ(statusIf(replyWith(kTwelve, swapBytes)), KOR_IIL_MISMATCH_COMM);
}

TEST_F(BadServiceTest, AnotherVersion)
{
    const auto reply = replyCutTo(8, [](PacketHeader& header) { ++header.version; }); // its header may be shorter
    EXPECT_EQ(statusIfGreeted(reply), KOR_IIL_MISMATCH_COMM);
}

TEST_F(BadServiceTest, ARefusalPassesItsStatusOn)
{
    for (const std::uint32_t status : {KOR_IIL_BUSY, KOR_IIL_UNKNOWN_SRC_ID, KOR_IIL_MISMATCH_COMM})
        EXPECT_EQ(statusIfGreeted(replyWith("", [=](PacketHeader& reply) { reply.status = status; })), status);
}

TEST_F(BadServiceTest, ARefusalIsHeardThoughTheHelloIsNotRead)
{
    ScriptedService service(
        [](ScriptedService& self)
        {
            PacketHeader reply = replyTo(PacketHeader(), 0);
            reply.sequence = 1;
            reply.status = KOR_IIL_BUSY;
            EXPECT_TRUE(self.accept().send(reply));
        });
    EXPECT_EQ(callOnce(), KOR_IIL_BUSY);
}

TEST_F(BadServiceTest, MalformedReplies)
{
    const Fault faults[] = {
        [](PacketHeader& reply) { reply.magic = 0; },
        [](PacketHeader& reply) { reply.kind = PacketKind::kEvent; },
        [](PacketHeader& reply) { reply.kind = PacketKind::kRequest; },
        [](PacketHeader& reply) { ++reply.sequence; },
        [](PacketHeader& reply) { --reply.sequence; },
        [](PacketHeader& reply) { ++reply.command; },
        [](PacketHeader& reply) { reply.length = 11; },
        [](PacketHeader& reply) { reply.length = 13; },
        [](PacketHeader& reply) { reply.length = UINT32_MAX; },
        [](PacketHeader& reply) { reply.status = KOR_IIL_UNSUPPORT; }, // with a message behind it
    };
    for (std::size_t i = 0; i < std::size(faults); ++i)
        EXPECT_EQ(statusIf(replyWith(kTwelve, faults[i])), KOR_IIL_BAD_RET) << "fault " << i;
}

TEST_F(BadServiceTest, FragmentsOfReplies)
{
    for (const std::size_t length : {std::size_t{1}, std::size_t{5}, std::size_t{8}, sizeof(PacketHeader) - 1})
        EXPECT_EQ(statusIf(replyCutTo(length, noFault)), KOR_IIL_BAD_RET) << length;
}

TEST_F(BadServiceTest, RepliesOfAnotherLength)
{
    for (const unsigned length : {0u, 11u, 13u, KOR_IIL_MAX_LENGTH, KOR_IIL_MAX_LENGTH + 1})
        EXPECT_EQ(statusIf(replyWith(std::string(length, 'x'), noFault)), KOR_IIL_MISMATCH_CMD_LEN) << length;
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
