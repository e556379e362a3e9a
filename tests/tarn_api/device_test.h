// What the tests of the device service's functions share: a platform that expects its messages, and records to send and get.
#pragma once

#include "kor_iil_mock.hpp"
#include "support/samples.h"
#include "tarn_api.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarn::test
{

class DeviceTest : public testing::Test
{
protected:
    // A command by the caller "ledd". Every byte that the test does not name must be zero.
    mock::Call expectCommand(std::uint32_t command, std::uint32_t length, std::uint32_t wait = 3,
                             const char* file = __builtin_FILE(), unsigned line = static_cast<unsigned>(__builtin_LINE()))
    {
        return platform.expect("TARN", command, length, file, line).caller("ledd").wait(wait).restZero();
    }

    mock::Platform platform;
};

// The service fills the whole message of this length, up to the reply status, with nonZeroBytes. What is copied too far or from
// another place is seen then.
inline void replyNonZero(mock::Call call, std::uint32_t length)
{
    const std::vector<std::uint8_t> reply = nonZeroBytes(length - 4);
    call.replyBytes(0, reply.data(), reply.size());
}

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
        bytes.fill(kUntouchedByte);
    }

    std::uint8_t* data()
    {
        return bytes.data();
    }

    char* text()
    {
        return reinterpret_cast<char*>(bytes.data());
    }

    void expectUntouched() const
    {
        EXPECT_THAT(bytes, testing::Each(kUntouchedByte));
    }

    // All of it comes from this place of a message that replyNonZero filled, and nothing behind it was written.
    void expectFrom(std::size_t offset) const
    {
        const std::vector<std::uint8_t> reply = nonZeroBytes(offset + size);
        expectBytes({reply.begin() + static_cast<std::ptrdiff_t>(offset), reply.end()});
    }

    // The same for a text whose characters stand there without a NUL: it is cut to leave room for one.
    void expectCutTextFrom(std::size_t offset) const
    {
        std::vector<std::uint8_t> text = nonZeroBytes(offset + size);
        text.back() = 0;
        expectBytes({text.begin() + static_cast<std::ptrdiff_t>(offset), text.end()});
    }

    void expectBytes(const std::vector<std::uint8_t>& expected) const
    {
        EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin(), bytes.begin() + size), expected);
        EXPECT_THAT(std::vector<std::uint8_t>(bytes.begin() + size, bytes.end()), testing::Each(kUntouchedByte));
    }

private:
    std::array<std::uint8_t, size + 16> bytes;
};

// The same for an output that is a record. The function gets it by its own type.
template <class Record>
class RecordOutput : public Output<sizeof(Record)>
{
public:
    Record* record()
    {
        static_assert(alignof(Record) == 1, "bytes only, so that it may stand anywhere");
        return reinterpret_cast<Record*>(this->data());
    }
};

inline constexpr std::array<std::uint8_t, 6> kMac = {0x02, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E};

} // namespace tarn::test
