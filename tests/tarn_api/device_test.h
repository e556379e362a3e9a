// What the tests of the device service's functions share: a platform that expects its messages, and records to send and get.
#pragma once

#include "support/platform_test.h"
#include "support/samples.h"
#include "tarn_api.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace tarn::test
{

// The service fills the whole message of this length, up to the reply status, with nonZeroBytes. What is copied too far or from
// another place is seen then.
inline void replyNonZero(mock::Call call, std::uint32_t length)
{
    const std::vector<std::uint8_t> reply = nonZeroBytes(length - 4);
    call.replyBytes(0, reply.data(), reply.size());
}

class DeviceTest : public PlatformTest
{
protected:
    // A command by the caller "ledd". Every byte that the test does not name must be zero.
    mock::Call expectCommand(std::uint32_t command, std::uint32_t length, std::uint32_t wait = 3,
                             const char* file = __builtin_FILE(), unsigned line = static_cast<unsigned>(__builtin_LINE()))
    {
        return platform.expect("TARN", command, length, file, line).caller("ledd").wait(wait).restZero();
    }

    // A function that asks for one word, of the service, of radio 2, or of object 3 of radio 2: sends these ids less one as the
    // first words and nothing else, and stores the word that the reply holds at this offset.
    template <class... Arguments>
    void expectWordAt(std::uint32_t offset, std::uint32_t command, std::uint32_t length,
                      std::uint32_t (*read)(const char* callerId, Arguments...), std::uint32_t wait = 3,
                      const char* file = __builtin_FILE(), unsigned line = static_cast<unsigned>(__builtin_LINE()))
    {
        const testing::ScopedTrace trace(file, static_cast<int>(line), "command " + std::to_string(command));
        mock::Call call = expectCommand(command, length, wait, file, line);
        for (std::uint32_t i = 0; i + 1 < sizeof...(Arguments); ++i)
            call.word(4 * i, i + 1);
        replyNonZero(call, length);

        std::uint32_t word = kUntouched;
        std::uint32_t id = 2;
        const std::tuple<const char*, Arguments...> arguments{"ledd", idOrWord<Arguments>(id, word)...};
        EXPECT_EQ(std::apply(read, arguments), 0u);

        std::uint32_t expected = 0;
        std::memcpy(&expected, &nonZeroBytes(length)[offset], sizeof expected);
        EXPECT_EQ(word, expected);
    }

private:
    template <class Argument>
    static Argument idOrWord(std::uint32_t& id, std::uint32_t& word)
    {
        if constexpr (std::is_pointer_v<Argument>)
            return &word;
        else
            return id++;
    }
};

// A record to send, its bytes those of nonZeroBytes.
template <class Record>
Record nonZeroRecord()
{
    Record record;
    const std::vector<std::uint8_t> bytes = nonZeroBytes(sizeof record.bytes);
    std::copy(bytes.begin(), bytes.end(), record.bytes);
    return record;
}

// An output of `size` bytes, and behind it some that no call may write.
template <std::size_t size>
class Output
{
public:
    Output()
    {
        bytes_.fill(kUntouchedByte);
    }

    std::uint8_t* data()
    {
        return bytes_.data();
    }

    char* text()
    {
        return reinterpret_cast<char*>(bytes_.data());
    }

    void expectUntouched() const
    {
        EXPECT_THAT(bytes_, testing::Each(kUntouchedByte));
    }

    // All of it comes from this place of a message that replyNonZero filled, and nothing behind it was written.
    void expectFrom(std::size_t offset) const
    {
        const std::vector<std::uint8_t> reply = nonZeroBytes(offset + size);
        expectBytes({reply.begin() + static_cast<std::ptrdiff_t>(offset), reply.end()});
    }

    // The same for a text that has no NUL there: it is cut to leave room for one.
    void expectCutTextFrom(std::size_t offset) const
    {
        std::vector<std::uint8_t> text = nonZeroBytes(offset + size);
        text.back() = 0;
        expectBytes({text.begin() + static_cast<std::ptrdiff_t>(offset), text.end()});
    }

    void expectBytes(const std::vector<std::uint8_t>& expected) const
    {
        EXPECT_EQ(std::vector<std::uint8_t>(bytes_.begin(), bytes_.begin() + size), expected);
        EXPECT_THAT(std::vector<std::uint8_t>(bytes_.begin() + size, bytes_.end()), testing::Each(kUntouchedByte));
    }

private:
    std::array<std::uint8_t, size + 16> bytes_;
};

// The same for an output that is a record of `size` bytes on the wire. The function gets it by its own type.
template <class Record, std::size_t size>
class RecordOutput : public Output<size>
{
public:
    Record* record()
    {
        static_assert(sizeof(Record) == size);
        static_assert(alignof(Record) == 1, "bytes only, so that it may lie at any address");
        return reinterpret_cast<Record*>(this->data());
    }
};

inline constexpr std::array<std::uint8_t, 6> kMac = {0x02, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E};

} // namespace tarn::test
