// Random envelopes and random bytes. TARN_FLEET_SEED gives other random numbers, TARN_FLEET_ROUNDS a longer campaign.
#include "samples.h"

#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace fleet_test
{
namespace
{

using namespace tarn::fleet;

std::uint32_t setting(const char* name, std::uint32_t otherwise)
{
    const char* text = std::getenv(name);
    return text == nullptr ? otherwise : static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10));
}

class EnvelopeFuzzTest : public ::testing::Test
{
protected:
    std::uint32_t below(std::uint32_t limit)
    {
        return static_cast<std::uint32_t>(random_() % limit);
    }
    std::uint64_t notZero()
    {
        return (static_cast<std::uint64_t>(random_()) << 32 | random_()) | 1u;
    }
    Kind anyKind()
    {
        return kKinds[below(std::size(kKinds))];
    }

    // A sample with other numbers, names and message wherever its kind has them.
    Envelope any(Bytes& message)
    {
        Envelope envelope = sample(anyKind());
        const bool isMessage =
            envelope.kind == Kind::kRequest || envelope.kind == Kind::kReply || envelope.kind == Kind::kEvent;
        envelope.sequence = static_cast<std::uint32_t>(notZero());
        for (std::uint64_t* number : {&envelope.session, &envelope.run, &envelope.contract})
            *number = *number == 0 ? 0 : notZero();
        for (std::uint32_t* number : {&envelope.live, &envelope.wait, &envelope.command})
            *number = *number == 0 ? 0 : 1 + below(kLongestLife);
        if (envelope.operatorId[0] != '\0')
            fill(envelope.operatorId, kIdSize, "az09.-_:@$~");
        if (envelope.service[0] != '\0')
            fill(envelope.service, kServiceSize, "AZaz09_-");
        if (isMessage)
        {
            message.resize(below(2) == 0 ? 1 + below(64) : 1 + below(kLongestMessage));
            for (std::uint8_t& byte : message)
                byte = static_cast<std::uint8_t>(below(3) == 0 ? random_() : 0);
            setMessage(envelope, reinterpret_cast<const char*>(message.data()), static_cast<std::uint32_t>(message.size()),
                       static_cast<std::uint32_t>(message.size()));
        }
        return envelope;
    }

    std::uint32_t rounds(std::uint32_t otherwise)
    {
        return setting("TARN_FLEET_ROUNDS", otherwise);
    }

private:
    void fill(char* text, std::size_t size, const std::string& characters)
    {
        const std::size_t length = 1 + below(static_cast<std::uint32_t>(size - 1));
        std::memset(text, 0, size);
        for (std::size_t at = 0; at < length; ++at)
            text[at] = characters[below(static_cast<std::uint32_t>(characters.size()))];
    }

    const std::uint32_t seed_ = setting("TARN_FLEET_SEED", 1);
    ::testing::ScopedTrace trace_{__FILE__, __LINE__, "TARN_FLEET_SEED=" + std::to_string(seed_)};
    std::mt19937 random_{seed_};
};

TEST_F(EnvelopeFuzzTest, WhatIsDecodedIsWhatWasEncoded)
{
    for (std::uint32_t round = rounds(2000); round > 0; --round)
    {
        Bytes message;
        const Envelope envelope = any(message);
        ASSERT_EQ(check(envelope), Fault::kNone) << describe(check(envelope));
        const Bytes bytes = encoded(envelope);
        ASSERT_FALSE(bytes.empty());
        Envelope read;
        ASSERT_EQ(decode(bytes.data(), bytes.size(), read), Fault::kNone);
        ASSERT_EQ(unpacked(read), unpacked(envelope));
        ASSERT_EQ(encoded(read), bytes);
        ASSERT_EQ(read.session, envelope.session);
        ASSERT_EQ(read.live, envelope.live);
        ASSERT_STREQ(read.operatorId, envelope.operatorId);
        ASSERT_STREQ(read.service, envelope.service);
    }
}

// There is one way to write an envelope: whatever is accepted has the bytes that encoding gives it.
TEST_F(EnvelopeFuzzTest, AcceptedBytesAreTheOnlyOnesOfTheirEnvelope)
{
    std::uint32_t accepted = 0;
    for (std::uint32_t round = rounds(4000); round > 0; --round)
    {
        Bytes message;
        Bytes bytes = encoded(any(message));
        for (std::uint32_t changes = 1 + below(3); changes > 0; --changes)
            bytes[below(static_cast<std::uint32_t>(bytes.size()))] = static_cast<std::uint8_t>(below(256));
        if (below(4) == 0)
            bytes.resize(below(static_cast<std::uint32_t>(bytes.size()) + 8));
        bytes.shrink_to_fit(); // so that reading past the end is seen
        Envelope read;
        if (decode(bytes.data(), bytes.size(), read) != Fault::kNone)
            continue;
        ++accepted;
        ASSERT_EQ(encoded(read), bytes);
    }
    EXPECT_GT(accepted, 0u);
}

TEST_F(EnvelopeFuzzTest, NoiseIsRefused)
{
    for (std::uint32_t round = rounds(4000); round > 0; --round)
    {
        Bytes bytes(below(300));
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(below(256));
        if (!bytes.empty() && below(2) == 0)
            bytes[0] = kEnvelopeVersion;
        Envelope read;
        ASSERT_NE(decode(bytes.data(), bytes.size(), read), Fault::kNone);
        ASSERT_EQ(read.sequence, 0u) << "it was left as it was";
    }
}

} // namespace
} // namespace fleet_test
