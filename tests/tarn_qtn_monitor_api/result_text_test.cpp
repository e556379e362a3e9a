// Result texts, whatever the size of the caller's buffer and whatever the service wrote.
//
// Each buffer is exactly as large as the size that is told, so that a byte too many is one behind the allocation.
#include "proxy_test.h"

#include <ostream>

using testing::Each;
using testing::ElementsAre;

namespace tarn::test
{
namespace
{

const char kName[kIfnameSize] = "wifi0";

struct TextFunction
{
    const char* name;
    std::uint32_t command;
    const char* output; // as its trace calls it
    std::int32_t (*call)(char* to, std::uint32_t size);
};

void PrintTo(const TextFunction& function, std::ostream* out)
{
    *out << function.name;
}

// The status of a reply that is full of "Z" to its end.
constexpr std::int32_t kEndlessStatus = 0x5A5A5A5A;

const TextFunction kTextFunctions[] = {
    {"interface_get_status", 7, "status",
     [](char* to, std::uint32_t size) { return tarn_qcsapi_interface_get_status("ledd", kName, to, size); }},
    {"wps_get_state", 8, "wps_state",
     [](char* to, std::uint32_t size) { return tarn_qcsapi_wps_get_state("ledd", kName, to, size); }},
    {"bootcfg_get_parameter", 16, "param_value",
     [](char* to, std::uint32_t size) { return tarn_qcsapi_bootcfg_get_parameter("ledd", "name", to, size); }},
    {"wifi_get_list_channels", 23, "list_of_channels",
     [](char* to, std::uint32_t size) { return tarn_qcsapi_wifi_get_list_channels("ledd", kName, to, size); }},
    {"regulatory_get_list_regulatory_channels", 24, "list_of_channels",
     [](char* to, std::uint32_t size)
     { return tarn_qcsapi_regulatory_get_list_regulatory_channels("ledd", "eu", 20, to, size); }},
    {"regulatory_get_list_regulatory_channels_if", 25, "list_of_channels",
     [](char* to, std::uint32_t size)
     { return tarn_qcsapi_regulatory_get_list_regulatory_channels_if("ledd", kName, "eu", 20, 0, to, size); }},
    {"wps_get_param", 38, "param_value",
     [](char* to, std::uint32_t size) { return tarn_qcsapi_wps_get_param("ledd", kName, 1, to, size); }},
    {"firmware_get_version", 42, "firmware_version",
     [](char* to, std::uint32_t size) { return tarn_qcsapi_firmware_get_version("ledd", to, size); }},
    {"wifi_get_phy_mode", 46, "p_wifi_phy_mode",
     [](char* to, std::uint32_t size) { return tarn_qcsapi_wifi_get_phy_mode("ledd", kName, to, size); }},
    {"wifi_get_supported_tx_power_levels", 79, "available_percentages",
     [](char* to, std::uint32_t size) { return tarn_qcsapi_wifi_get_supported_tx_power_levels("ledd", kName, to, size); }},
    {"wifi_get_connection_mode", 89, "p_wifi_phy_mode",
     [](char* to, std::uint32_t size) { return tarn_qcsapi_wifi_get_connection_mode("ledd", kName, 1, to, size); }},
    {"get_custom_value", 98, "custom_value",
     [](char* to, std::uint32_t size) { return tarn_qcsapi_get_custom_value("ledd", "key", to, size); }},
    {"errno_get_message", 100, "err_msg",
     [](char* to, std::uint32_t size) { return tarn_qcsapi_errno_get_message("ledd", 1, to, size); }},
    {"get_max_bitrate", 116, "max_bitrate",
     [](char* to, std::uint32_t size) { return tarn_qcsapi_get_max_bitrate("ledd", kName, to, size); }},
};

class ResultText : public ProxyTest, public testing::WithParamInterface<TextFunction>
{
protected:
    mock::Call expectCall()
    {
        return platform.expect("QTN_RPC_PROXY", GetParam().command, kMessageSize).caller("ledd").wait(3);
    }

    // A text that fills the result area without a NUL. What follows the area is other letters, with no NUL either.
    void expectEndlessText()
    {
        const std::string behind(kMessageSize - kOutWords, 'Z');
        expectCall().replyBytes(kOut, letters(kOutSize).data(), kOutSize).replyBytes(kOutWords, behind.data(), behind.size());
    }

    std::int32_t call(std::vector<char>& to)
    {
        return GetParam().call(to.data(), static_cast<std::uint32_t>(to.size()));
    }
};

INSTANTIATE_TEST_SUITE_P(AllFunctions, ResultText, testing::ValuesIn(kTextFunctions),
                         [](const testing::TestParamInfo<TextFunction>& each) { return std::string(each.param.name); });

TEST_P(ResultText, Size0LeavesTheBuffer)
{
    expectCall().replyText(kOut, "text").status(3);
    char to = '#';
    EXPECT_EQ(GetParam().call(&to, 0), 3);
    EXPECT_EQ(to, '#');
}

TEST_P(ResultText, Size1GivesAnEmptyText)
{
    expectCall().replyText(kOut, "text").status(3);
    std::vector<char> to(1, '#');
    EXPECT_EQ(call(to), 3);
    EXPECT_EQ(to[0], '\0');
}

TEST_P(ResultText, Size8GivesSevenCharacters)
{
    expectCall().replyText(kOut, "a long text");
    std::vector<char> to(8, '#');
    EXPECT_EQ(call(to), 0);
    EXPECT_STREQ(to.data(), "a long ");
}

TEST_P(ResultText, ShortTextLeavesWhatIsBehindItsNul)
{
    expectCall().replyText(kOut, "ok");
    std::vector<char> to(8, '#');
    EXPECT_EQ(call(to), 0);
    EXPECT_EQ(std::string(to.begin(), to.end()), std::string("ok\0#####", 8));
}

TEST_P(ResultText, TextThatIsCutByOneCharacter)
{
    expectCall().replyText(kOut, "text");
    std::vector<char> to(4, '#');
    EXPECT_EQ(call(to), 0);
    EXPECT_STREQ(to.data(), "tex");
}

TEST_P(ResultText, TextThatJustFits)
{
    expectCall().replyText(kOut, "text");
    std::vector<char> to(5, '#');
    EXPECT_EQ(call(to), 0);
    EXPECT_STREQ(to.data(), "text");
}

TEST_P(ResultText, EmptyText)
{
    expectCall();
    std::vector<char> to(8, '#');
    EXPECT_EQ(call(to), 0);
    EXPECT_STREQ(to.data(), "");
    EXPECT_EQ(to[1], '#');
}

TEST_P(ResultText, LongestTextIsCopiedWhole)
{
    expectCall().replyText(kOut, letters(kOutSize - 1).c_str());
    std::vector<char> to(kOutSize, '#');
    EXPECT_EQ(call(to), 0);
    EXPECT_EQ(to.data(), letters(kOutSize - 1));
}

TEST_P(ResultText, TextWithoutNulIsCutToASmallBuffer)
{
    expectEndlessText();
    std::vector<char> to(8, '#');
    EXPECT_EQ(call(to), kEndlessStatus);
    EXPECT_STREQ(to.data(), "abcdefg");
}

TEST_P(ResultText, TextWithoutNulIsCutToABufferOfTheAreasSize)
{
    expectEndlessText();
    std::vector<char> to(kOutSize, '#');
    EXPECT_EQ(call(to), kEndlessStatus);
    EXPECT_EQ(to.data(), letters(kOutSize - 1));
}

TEST_P(ResultText, TextWithoutNulEndsWithTheArea)
{
    for (const std::size_t size : {kOutSize + 1, kOutSize + 2, kMessageSize, 3 * kMessageSize})
    {
        expectEndlessText();
        std::vector<char> to(size, '#');
        EXPECT_EQ(call(to), kEndlessStatus);
        EXPECT_EQ(std::string(to.data()), letters(kOutSize));
        EXPECT_THAT(std::vector<char>(to.begin() + kOutSize + 1, to.end()), Each('#'));
    }
}

// A size of which only the text's length is really there.
TEST_P(ResultText, SizeIsABoundAndNotFilled)
{
    expectCall().replyText(kOut, "text");
    std::vector<char> to(5, '#');
    EXPECT_EQ(GetParam().call(to.data(), 0xFFFFFFFF), 0);
    EXPECT_STREQ(to.data(), "text");
}

TEST_P(ResultText, IsCopiedWhateverTheReplyStatus)
{
    expectCall().replyText(kOut, "text").status(static_cast<std::uint32_t>(-22));
    std::vector<char> to(8, '#');
    EXPECT_EQ(call(to), -22);
    EXPECT_STREQ(to.data(), "text");
}

TEST_P(ResultText, FailureLeavesTheBuffer)
{
    expectCall().replyText(kOut, "text").fail(7);
    std::vector<char> to(8, '#');
    EXPECT_EQ(call(to), -1);
    EXPECT_THAT(to, Each('#'));
}

TEST_P(ResultText, MissingBufferIsRefusedEvenWithSize0)
{
    EXPECT_EQ(GetParam().call(nullptr, 0), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre(std::string(GetParam().output) + " is NULL"));
}

} // namespace
} // namespace tarn::test
