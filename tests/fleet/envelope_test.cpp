// The envelope: bytes that were written by hand, and what is refused.
#include "samples.h"

#include "base/hexadecimal.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fleet_test
{
namespace
{

using namespace tarn::fleet;

Fault faultIn(const Bytes& bytes)
{
    Envelope envelope;
    return decode(bytes.data(), bytes.size(), envelope);
}

Bytes fromHex(const std::string& text)
{
    const auto bytes = tarn::base::parseHex(text, " ");
    EXPECT_TRUE(bytes) << text;
    return bytes ? Bytes(bytes->begin(), bytes->end()) : Bytes();
}

struct Golden
{
    Kind kind;
    const char* bytes;
};

// Version, kind, byte order, refusal; session; sequence; run; clock; live; command; wait; status; contract; length; lengths of
// the names; the names; the message.
constexpr Golden kGolden[] = {
    {Kind::kRequest, "01 01 01 00 11 22 33 44 55 66 77 88 00 00 00 05 A1 B2 C3 D4 E5 F6 07 18 00 00 00 01 02 03 04 05 "
                     "00 00 0B B8 00 00 00 07 00 00 00 04 00 00 00 00 FE DC BA 98 76 54 32 10 00 00 25 70 00 00 00 05 05 04 "
                     "6E 6F 63 2D 31 54 41 52 4E 00 00 00 02 AB"},
    {Kind::kReply, "01 02 01 00 11 22 33 44 55 66 77 88 00 00 00 05 A1 B2 C3 D4 E5 F6 07 18 00 00 00 01 02 03 04 05 "
                   "00 00 00 00 00 00 00 07 00 00 00 00 00 00 00 00 FE DC BA 98 76 54 32 10 00 00 25 70 00 00 00 05 00 04 "
                   "54 41 52 4E 00 00 00 02 AB"},
    {Kind::kEvent,
     "01 03 01 00 00 00 00 00 00 00 00 00 00 00 00 05 A1 B2 C3 D4 E5 F6 07 18 00 00 00 01 02 03 04 05 "
     "00 00 00 00 00 00 00 02 00 00 00 00 00 00 00 00 FE DC BA 98 76 54 32 10 00 00 00 00 00 00 00 00 00 04 54 41 52 4E"},
    {Kind::kBirth,
     "01 04 01 00 00 00 00 00 00 00 00 00 00 00 00 05 A1 B2 C3 D4 E5 F6 07 18 00 00 00 01 02 03 04 05 "
     "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 FE DC BA 98 76 54 32 10 00 00 00 05 00 00 00 05 00 00 31 2E 30 2E 30"},
    {Kind::kWill, "01 05 01 00 00 00 00 00 00 00 00 00 00 00 00 05 A1 B2 C3 D4 E5 F6 07 18 00 00 00 01 02 03 04 05 "
                  "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 FE DC BA 98 76 54 32 10 00 00 00 00 00 00 00 00 00 00"},
    {Kind::kPing,
     "01 06 00 00 11 22 33 44 55 66 77 88 00 00 00 05 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
     "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 05 00 6E 6F 63 2D 31"},
    {Kind::kPong,
     "01 07 01 00 11 22 33 44 55 66 77 88 00 00 00 05 A1 B2 C3 D4 E5 F6 07 18 00 00 00 01 02 03 04 05 "
     "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 FE DC BA 98 76 54 32 10 00 00 00 05 00 00 00 05 00 00 31 2E 30 2E 30"},
};

TEST(EnvelopeTest, EachKindHasTheBytesThatAreDocumented)
{
    for (const Golden& golden : kGolden)
        EXPECT_EQ(tarn::base::hexText(encoded(sample(golden.kind)), " "), tarn::base::hexText(fromHex(golden.bytes), " "))
            << "kind " << static_cast<int>(golden.kind);
}

TEST(EnvelopeTest, EveryFieldIsReadFromTheBytesThatAreDocumented)
{
    for (const Golden& golden : kGolden)
    {
        SCOPED_TRACE("kind " + std::to_string(static_cast<int>(golden.kind)));
        const Bytes bytes = fromHex(golden.bytes);
        const Envelope expected = sample(golden.kind);
        Envelope envelope;
        ASSERT_EQ(decode(bytes.data(), bytes.size(), envelope), Fault::kNone);
        EXPECT_EQ(envelope.kind, expected.kind);
        EXPECT_EQ(envelope.byteOrder, expected.byteOrder);
        EXPECT_EQ(envelope.refusal, expected.refusal);
        EXPECT_EQ(envelope.session, expected.session);
        EXPECT_EQ(envelope.sequence, expected.sequence);
        EXPECT_EQ(envelope.run, expected.run);
        EXPECT_EQ(envelope.clock, expected.clock);
        EXPECT_EQ(envelope.live, expected.live);
        EXPECT_EQ(envelope.command, expected.command);
        EXPECT_EQ(envelope.wait, expected.wait);
        EXPECT_EQ(envelope.status, expected.status);
        EXPECT_EQ(envelope.contract, expected.contract);
        EXPECT_EQ(envelope.length, expected.length);
        EXPECT_STREQ(envelope.operatorId, expected.operatorId);
        EXPECT_STREQ(envelope.service, expected.service);
        EXPECT_EQ(unpacked(envelope), unpacked(expected));
    }
}

TEST(EnvelopeTest, ARefusalHasItsReasonAndAStatus)
{
    Envelope reply = sample(Kind::kReply);
    reply.refusal = Refusal::kPolicy;
    reply.status = 12;
    setMessage(reply, nullptr, 0, 0);
    const Bytes bytes = encoded(reply);
    ASSERT_FALSE(bytes.empty());
    EXPECT_EQ(bytes[3], 1);
    EXPECT_EQ(bytes[47], 12);
    Envelope read;
    ASSERT_EQ(decode(bytes.data(), bytes.size(), read), Fault::kNone);
    EXPECT_EQ(read.refusal, Refusal::kPolicy);
    EXPECT_EQ(read.status, 12u);
}

TEST(EnvelopeTest, AMessageOfZerosTravelsAsNothing)
{
    const char zeros[24] = {};
    Envelope request = sample(Kind::kRequest);
    setMessage(request, zeros, sizeof zeros, sizeof zeros);
    const Bytes bytes = encoded(request);
    EXPECT_EQ(bytes.size(), kHeaderSize + 5 + 4);
    Envelope read;
    ASSERT_EQ(decode(bytes.data(), bytes.size(), read), Fault::kNone);
    EXPECT_EQ(unpacked(read), Bytes(24));
}

TEST(EnvelopeTest, TheLongestEnvelopeFitsIntoTheLongestBuffer)
{
    const Bytes message(kLongestMessage, 0xFF);
    Envelope request = sample(Kind::kRequest);
    std::memset(request.operatorId, 'o', kIdSize - 1);
    std::memset(request.service, 's', kServiceSize - 1);
    request.live = kLongestLife;
    setMessage(request, reinterpret_cast<const char*>(message.data()), kLongestMessage, kLongestMessage);
    const Bytes bytes = encoded(request);
    EXPECT_EQ(bytes.size(), kLongestEnvelope);
    Envelope read;
    ASSERT_EQ(decode(bytes.data(), bytes.size(), read), Fault::kNone);
    EXPECT_EQ(unpacked(read), message);
}

TEST(EnvelopeTest, EveryEnvelopeThatIsCutShortIsRefused)
{
    for (const Kind kind : kKinds)
    {
        const Bytes whole = encoded(sample(kind));
        for (std::size_t size = 0; size < whole.size(); ++size)
        {
            const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)); // reading past it is seen
            EXPECT_EQ(faultIn(cut), Fault::kTruncated) << "kind " << static_cast<int>(kind) << ", size " << size;
        }
    }
}

TEST(EnvelopeTest, EveryEnvelopeThatGoesOnIsRefused)
{
    for (const Kind kind : kKinds)
    {
        Bytes bytes = encoded(sample(kind));
        bytes.push_back(0);
        EXPECT_EQ(faultIn(bytes), Fault::kOversize) << "kind " << static_cast<int>(kind);
    }
}

TEST(EnvelopeTest, EncodingWritesNothingIntoABufferThatIsTooSmall)
{
    const Envelope request = sample(Kind::kRequest);
    const std::size_t needed = encoded(request).size();
    for (std::size_t room = 0; room < needed; ++room)
    {
        Bytes bytes(room + 1, 0xEE);
        std::size_t size = 77;
        ASSERT_EQ(encode(request, bytes.data(), room, size), Fault::kNoRoom) << room;
        EXPECT_EQ(size, 77u);
        EXPECT_EQ(bytes, Bytes(room + 1, 0xEE));
    }
}

struct Wrong
{
    const char* what;
    Kind kind;
    std::size_t offset;
    const char* bytes; // that are written there
    Fault fault;
};

constexpr Wrong kWrong[] = {
    {"version 0", Kind::kRequest, 0, "00", Fault::kVersion},
    {"version 2", Kind::kRequest, 0, "02", Fault::kVersion},
    {"kind 0", Kind::kRequest, 1, "00", Fault::kKind},
    {"kind 8", Kind::kRequest, 1, "08", Fault::kKind},
    {"a request without a byte order", Kind::kRequest, 2, "00", Fault::kByteOrder},
    {"byte order 3", Kind::kReply, 2, "03", Fault::kByteOrder},
    {"a ping with a byte order", Kind::kPing, 2, "01", Fault::kByteOrder},
    {"a request that refuses", Kind::kRequest, 3, "01", Fault::kRefusal},
    {"refusal 11", Kind::kReply, 3, "0B", Fault::kRefusal},
    {"a refusal with status 0", Kind::kReply, 3, "01", Fault::kStatus},
    {"session 0", Kind::kRequest, 4, "00 00 00 00 00 00 00 00", Fault::kSession},
    {"an event of a session", Kind::kEvent, 11, "01", Fault::kSession},
    {"sequence 0", Kind::kReply, 12, "00 00 00 00", Fault::kSequence},
    {"a reply of no run", Kind::kReply, 16, "00 00 00 00 00 00 00 00", Fault::kRun},
    {"a ping for a run", Kind::kPing, 23, "01", Fault::kRun},
    {"a clock without its run", Kind::kRequest, 16, "00 00 00 00 00 00 00 00", Fault::kClock},
    {"a ping with a clock", Kind::kPing, 31, "01", Fault::kClock},
    {"no time to live", Kind::kRequest, 32, "00 00 00 00", Fault::kLive},
    {"more than a day to live", Kind::kRequest, 32, "05 26 5C 01", Fault::kLive},
    {"a reply with a time to live", Kind::kReply, 35, "01", Fault::kLive},
    {"a ping with a time to live", Kind::kPing, 35, "01", Fault::kLive},
    {"event 0", Kind::kEvent, 36, "00 00 00 00", Fault::kCommand},
    {"a birth with a command", Kind::kBirth, 39, "01", Fault::kCommand},
    {"wait 0", Kind::kRequest, 40, "00 00 00 00", Fault::kWait},
    {"a reply with a wait", Kind::kReply, 43, "01", Fault::kWait},
    {"a request with a status", Kind::kRequest, 47, "01", Fault::kStatus},
    {"a will with a status", Kind::kWill, 47, "01", Fault::kStatus},
    {"no contract", Kind::kEvent, 48, "00 00 00 00 00 00 00 00", Fault::kContract},
    {"a ping with a contract", Kind::kPing, 55, "01", Fault::kContract},
    {"a message of more than 16384 bytes", Kind::kRequest, 56, "00 00 40 01", Fault::kLength},
    {"a message of 4 GiB", Kind::kRequest, 56, "FF FF FF FF", Fault::kLength},
    {"a message for a failed call", Kind::kReply, 47, "07", Fault::kLength},
    {"a will with a message", Kind::kWill, 59, "01", Fault::kLength},
    {"a message that is shorter than its bytes", Kind::kRequest, 56, "00 00 00 04", Fault::kPresent},
    {"fewer bytes than there are", Kind::kRequest, 60, "00 00 00 04", Fault::kOversize},
    {"more bytes than there are", Kind::kRequest, 60, "00 00 00 06", Fault::kTruncated},
    {"4 GiB of bytes", Kind::kRequest, 60, "FF FF FF FF", Fault::kTruncated},
    {"a message that ends in a zero", Kind::kRequest, 79, "00", Fault::kTrailingZeros},
    {"an operator of 65 characters", Kind::kRequest, 64, "41", Fault::kOperator},
    {"an operator of 255 characters", Kind::kRequest, 64, "FF", Fault::kOperator},
    {"an operator with a slash", Kind::kRequest, 67, "2F", Fault::kOperator},
    {"an operator with a +", Kind::kRequest, 66, "2B", Fault::kOperator},
    {"an operator with a #", Kind::kPing, 66, "23", Fault::kOperator},
    {"an operator with a NUL", Kind::kRequest, 68, "00", Fault::kOperator},
    {"an operator with a line feed", Kind::kRequest, 68, "0A", Fault::kOperator},
    {"a service of 32 characters", Kind::kRequest, 65, "20", Fault::kService},
    {"a service with a slash", Kind::kReply, 66, "2F", Fault::kService},
    {"a service with a NUL", Kind::kReply, 68, "00", Fault::kService},
    {"a service with a leading dot", Kind::kEvent, 66, "2E", Fault::kService},
    {"a version with a space", Kind::kBirth, 67, "20", Fault::kProgramVersion},
    {"a version with a NUL", Kind::kPong, 67, "00", Fault::kProgramVersion},
    {"a version that is cut short", Kind::kPong, 59, "06", Fault::kProgramVersion},
};

TEST(EnvelopeTest, WhateverIsNotExactlyRightIsRefusedWithItsReason)
{
    for (const Wrong& wrong : kWrong)
    {
        Bytes bytes = encoded(sample(wrong.kind));
        const Bytes changed = fromHex(wrong.bytes);
        ASSERT_LE(wrong.offset + changed.size(), bytes.size());
        std::copy(changed.begin(), changed.end(), bytes.begin() + static_cast<std::ptrdiff_t>(wrong.offset));
        EXPECT_EQ(faultIn(bytes), wrong.fault) << wrong.what << ": " << describe(faultIn(bytes));
    }
}

TEST(EnvelopeTest, NamesThatAKindDoesNotHaveAreRefused)
{
    Envelope reply = sample(Kind::kReply);
    std::strcpy(reply.operatorId, "noc-1");
    EXPECT_EQ(check(reply), Fault::kOperator);
    Envelope ping = sample(Kind::kPing);
    std::strcpy(ping.service, "TARN");
    EXPECT_EQ(check(ping), Fault::kService);
    Envelope request = sample(Kind::kRequest);
    request.operatorId[0] = '\0';
    EXPECT_EQ(check(request), Fault::kOperator);
}

TEST(EnvelopeTest, WhatCannotBeDecodedIsNotEncoded)
{
    Envelope request = sample(Kind::kRequest);
    request.present = request.length + 1;
    EXPECT_EQ(check(request), Fault::kPresent);
    EXPECT_TRUE(encoded(request).empty());
    Envelope named = sample(Kind::kRequest);
    std::memset(named.operatorId, 'o', kIdSize); // no NUL
    EXPECT_EQ(check(named), Fault::kOperator);
}

TEST(EnvelopeTest, EveryFaultAndEveryRefusalHasATextOfItsOwn)
{
    std::vector<std::string> texts;
    for (int fault = 0; fault <= static_cast<int>(Fault::kNoRoom); ++fault)
        texts.emplace_back(describe(static_cast<Fault>(fault)));
    for (int refusal = 0; refusal <= kLastRefusal; ++refusal)
        texts.emplace_back(describe(static_cast<Refusal>(refusal)));
    std::sort(texts.begin(), texts.end());
    EXPECT_EQ(std::adjacent_find(texts.begin(), texts.end()), texts.end());
    EXPECT_THAT(texts, ::testing::Each(::testing::Not(::testing::StartsWith("unknown"))));
}

} // namespace
} // namespace fleet_test
