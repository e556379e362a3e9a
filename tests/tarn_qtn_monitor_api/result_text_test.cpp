// Result texts, whatever the size of the caller's buffer and whatever the service wrote.
//
// Each buffer is exactly as large as the size that is told, so that a byte too many is one behind the allocation.
#include "proxy_test.h"

#include <ostream>

using testing::Each;

namespace tarn::test
{
namespace
{

struct TextFunction
{
    const char* name;
    std::uint32_t command;
    bool namesInterface;
    std::int32_t (*call)(char* to, std::uint32_t size); // with 0 for a number that it sends, and an empty text
};

void PrintTo(const TextFunction& function, std::ostream* out)
{
    *out << function.name;
}

const TextFunction kTextFunctions[] = {
    {"interface_get_status", 7, true,
     [](char* to, std::uint32_t size) { return tarn_qcsapi_interface_get_status("ledd", kWifi0, to, size); }},
    {"wps_get_state", 8, true,
     [](char* to, std::uint32_t size) { return tarn_qcsapi_wps_get_state("ledd", kWifi0, to, size); }},
    {"bootcfg_get_parameter", 16, false,
     [](char* to, std::uint32_t size) { return tarn_qcsapi_bootcfg_get_parameter("ledd", "", to, size); }},
    {"wifi_get_list_channels", 23, true,
     [](char* to, std::uint32_t size) { return tarn_qcsapi_wifi_get_list_channels("ledd", kWifi0, to, size); }},
    {"regulatory_get_list_regulatory_channels", 24, false,
     [](char* to, std::uint32_t size) { return tarn_qcsapi_regulatory_get_list_regulatory_channels("ledd", "", 0, to, size); }},
    {"regulatory_get_list_regulatory_channels_if", 25, true,
     [](char* to, std::uint32_t size)
     { return tarn_qcsapi_regulatory_get_list_regulatory_channels_if("ledd", kWifi0, "", 0, 0, to, size); }},
    {"wps_get_param", 38, true,
     [](char* to, std::uint32_t size) { return tarn_qcsapi_wps_get_param("ledd", kWifi0, 0, to, size); }},
    {"firmware_get_version", 42, false,
     [](char* to, std::uint32_t size) { return tarn_qcsapi_firmware_get_version("ledd", to, size); }},
    {"wifi_get_phy_mode", 46, true,
     [](char* to, std::uint32_t size) { return tarn_qcsapi_wifi_get_phy_mode("ledd", kWifi0, to, size); }},
    {"wifi_get_supported_tx_power_levels", 79, true,
     [](char* to, std::uint32_t size) { return tarn_qcsapi_wifi_get_supported_tx_power_levels("ledd", kWifi0, to, size); }},
    {"wifi_get_connection_mode", 89, true,
     [](char* to, std::uint32_t size) { return tarn_qcsapi_wifi_get_connection_mode("ledd", kWifi0, 0, to, size); }},
    {"get_custom_value", 98, false,
     [](char* to, std::uint32_t size) { return tarn_qcsapi_get_custom_value("ledd", "", to, size); }},
    {"errno_get_message", 100, false,
     [](char* to, std::uint32_t size) { return tarn_qcsapi_errno_get_message("ledd", 0, to, size); }},
    {"get_max_bitrate", 116, true,
     [](char* to, std::uint32_t size) { return tarn_qcsapi_get_max_bitrate("ledd", kWifi0, to, size); }},
};

class ResultText : public ProxyTest, public testing::WithParamInterface<TextFunction>
{
protected:
    mock::Call expectCall()
    {
        return GetParam().namesInterface ? expectOnWifi0(GetParam().command) : expectCommand(GetParam().command);
    }
};

INSTANTIATE_TEST_SUITE_P(AllFunctions, ResultText, testing::ValuesIn(kTextFunctions),
                         [](const testing::TestParamInfo<TextFunction>& row) { return std::string(row.param.name); });

TEST_P(ResultText, Size0LeavesTheBuffer)
{
    expectCall().replyText(kOut, "text").status(3);
    char to = '#';
    EXPECT_EQ(GetParam().call(&to, 0), 3);
    EXPECT_EQ(to, '#');
}

TEST_P(ResultText, Size8GivesSevenCharacters)
{
    expectCall().replyText(kOut, "a long text");
    std::vector<char> to(8, '#');
    EXPECT_EQ(GetParam().call(to.data(), 8), 0);
    EXPECT_STREQ(to.data(), "a long ");
}

TEST_P(ResultText, ShortTextLeavesWhatIsBehindItsNul)
{
    expectCall().replyText(kOut, "ok");
    std::vector<char> to(8, '#');
    EXPECT_EQ(GetParam().call(to.data(), 8), 0);
    EXPECT_EQ(std::string(to.begin(), to.end()), std::string("ok\0#####", 8));
}

// The area is full of letters. What follows it is other letters, with no NUL either, and so is the status.
TEST_P(ResultText, TextWithoutNulEndsWithTheArea)
{
    const std::string behind(kMessageSize - kOutWords, 'Z');
    expectCall().replyBytes(kOut, letters(kOutSize).data(), kOutSize).replyBytes(kOutWords, behind.data(), behind.size());

    std::vector<char> to(kMessageSize, '#');
    EXPECT_EQ(GetParam().call(to.data(), kMessageSize), 0x5A5A5A5A);
    EXPECT_EQ(std::string(to.data()), letters(kOutSize));
    EXPECT_THAT(std::vector<char>(to.begin() + kOutSize + 1, to.end()), Each('#'));
}

} // namespace
} // namespace tarn::test
