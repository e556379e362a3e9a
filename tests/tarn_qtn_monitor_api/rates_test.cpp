// The rates: the one record whose length is the caller's, and is trusted.
#include "proxy_test.h"

#include <cstring>

using testing::Each;

namespace tarn::test
{
namespace
{

// From the start of the result to the end of the message.
constexpr std::size_t kReadable = kMessageSize - kOut;

class Rates : public ProxyTest
{
protected:
    // Asks for so many bytes, of a reply without a zero byte up to and with its status, and expects them to be those of the
    // reply as far as it goes, and zeros behind it. The buffer is exactly as long.
    void expectRates(std::size_t length)
    {
        const std::vector<std::uint8_t> reply = nonZeroBytes(kReadable);
        std::int32_t status = 0;
        std::memcpy(&status, &reply[kStatus - kOut], sizeof status);
        expectOnWifi0(106).word(kParam1, 2).replyBytes(kOut, reply.data(), reply.size());

        std::vector<std::uint8_t> expected = nonZeroBytes(kReadable);
        expected.resize(length, 0);
        std::vector<std::uint8_t> rates(length, kUntouchedByte);
        EXPECT_EQ(tarn_qcsapi_wifi_get_rates("ledd", kWifi0, 2, rates.data(), static_cast<std::uint32_t>(length)), status);
        EXPECT_EQ(rates, expected);
    }
};

TEST_F(Rates, NoLengthWritesNothing)
{
    expectOnWifi0(106).replyText(kOut, "54").status(9);

    std::vector<std::uint8_t> rates(16, kUntouchedByte);
    EXPECT_EQ(tarn_qcsapi_wifi_get_rates("ledd", kWifi0, 0, rates.data(), 0), 9);
    EXPECT_THAT(rates, Each(kUntouchedByte));
}

TEST_F(Rates, AreRawBytesOfExactlyTheCallersLength)
{
    expectRates(5);
}

TEST_F(Rates, GoOnBehindTheResultAreaUpToTheEndOfTheMessage)
{
    expectRates(kReadable);
}

TEST_F(Rates, BehindTheMessageAreZeros)
{
    for (const std::size_t beyond : {1u, 100u, 20000u})
        expectRates(kReadable + beyond);
}

TEST_F(Rates, AMissingBufferIsRefusedWhateverItsLength)
{
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_rates), "ifname, rates");
}

} // namespace
} // namespace tarn::test
