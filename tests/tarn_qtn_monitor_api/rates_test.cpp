// The rates: the one record whose length is the caller's, and is trusted.
#include "proxy_test.h"

#include <algorithm>
#include <cstring>

using testing::Each;
using testing::ElementsAre;

namespace tarn::test
{
namespace
{

const char kName[kIfnameSize] = "wifi0";

// From the start of the result to the end of the message.
constexpr std::size_t kReadable = kMessageSize - kOut;

class Rates : public ProxyTest
{
protected:
    // A reply without a zero byte, up to and with its status.
    void expectFullReply()
    {
        reply = nonZeroBytes(kReadable);
        std::memcpy(&status, &reply[kStatus - kOut], sizeof status);
        expectOnWifi0(106).word(kParam1, 2).replyBytes(kOut, reply.data(), reply.size());
    }

    std::int32_t getRates(void* rates, std::size_t length)
    {
        return tarn_qcsapi_wifi_get_rates("ledd", kName, 2, rates, static_cast<std::uint32_t>(length));
    }

    std::vector<std::uint8_t> reply;
    std::int32_t status = 0;
};

// The first `length` bytes are those of the reply as far as it goes, and zeros behind it. The rest was never written.
void expectRates(const std::vector<std::uint8_t>& rates, std::size_t length, const std::vector<std::uint8_t>& reply)
{
    std::vector<std::uint8_t> expected(reply.begin(),
                                       reply.begin() + static_cast<std::ptrdiff_t>(std::min(length, reply.size())));
    expected.resize(length, 0);
    expected.resize(rates.size(), kUntouchedByte);
    EXPECT_EQ(rates, expected);
}

TEST_F(Rates, NoLengthWritesNothing)
{
    expectOnWifi0(106).word(kParam1, 2).replyText(kOut, "54").status(9);

    std::vector<std::uint8_t> rates(16, kUntouchedByte);
    EXPECT_EQ(getRates(rates.data(), 0), 9);
    EXPECT_THAT(rates, Each(kUntouchedByte));
}

TEST_F(Rates, AreRawBytesOfExactlyTheCallersLength)
{
    const std::uint8_t sixBytes[6] = {'5', 0, '4', 0, 0, 'x'};
    expectOnWifi0(106).word(kParam1, 2).replyBytes(kOut, sixBytes, sizeof sixBytes);

    std::uint8_t rates[6] = {0, 0, 0, 0, 0, kUntouchedByte};
    EXPECT_EQ(getRates(rates, 5), 0);
    EXPECT_THAT(rates, ElementsAre('5', 0, '4', 0, 0, kUntouchedByte));
}

TEST_F(Rates, GoOnBehindTheResultAreaUpToTheEndOfTheMessage)
{
    expectFullReply();
    std::vector<std::uint8_t> rates(kReadable + 8, kUntouchedByte);
    EXPECT_EQ(getRates(rates.data(), kReadable), status);
    expectRates(rates, kReadable, reply);
}

TEST_F(Rates, BehindTheMessageAreZeros)
{
    for (const std::size_t beyond : {1u, 3u, 100u, 20000u})
    {
        expectFullReply();
        std::vector<std::uint8_t> rates(kReadable + beyond + 8, kUntouchedByte);
        EXPECT_EQ(getRates(rates.data(), kReadable + beyond), status);
        expectRates(rates, kReadable + beyond, reply);
    }
}

// A buffer of exactly the length told.
TEST_F(Rates, FillABufferThatIsLargerThanTheMessageAndNoMore)
{
    expectFullReply();
    std::vector<std::uint8_t> rates(kReadable + 500, kUntouchedByte);
    EXPECT_EQ(getRates(rates.data(), rates.size()), status);
    expectRates(rates, rates.size(), reply);
}

TEST_F(Rates, NeedNoAlignment)
{
    expectFullReply();
    std::vector<std::uint8_t> rates(40, kUntouchedByte);
    EXPECT_EQ(getRates(&rates[1], 30), status);
    EXPECT_EQ(rates[0], kUntouchedByte);
    EXPECT_EQ(std::vector<std::uint8_t>(rates.begin() + 1, rates.begin() + 31), nonZeroBytes(30));
    EXPECT_EQ(rates[31], kUntouchedByte);
}

TEST_F(Rates, FailureLeavesTheBuffer)
{
    expectOnWifi0(106).word(kParam1, 2).fail(6);

    std::vector<std::uint8_t> rates(kReadable + 100, kUntouchedByte);
    EXPECT_EQ(getRates(rates.data(), rates.size()), -1);
    EXPECT_THAT(rates, Each(kUntouchedByte));
}

TEST_F(Rates, AMissingBufferIsRefusedWhateverItsLength)
{
    EXPECT_EQ(getRates(nullptr, 0), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_rates("ledd", nullptr, 2, nullptr, 0), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("rates is NULL", "ifname is NULL"));
}

} // namespace
} // namespace tarn::test
