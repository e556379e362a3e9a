// Result records: every one is copied with its own length, from the start of the result.
#include "proxy_test.h"

#include <algorithm>
#include <ostream>

namespace tarn::test
{
namespace
{

const std::uint8_t kMac[6] = {};

struct RecordFunction
{
    const char* name;
    std::uint32_t command;
    std::size_t size;
    std::size_t misalignment; // records of words are the caller's words, the others may lie anywhere
    std::int32_t (*call)(void* record);
};

void PrintTo(const RecordFunction& function, std::ostream* out)
{
    *out << function.name;
}

const RecordFunction kRecordFunctions[] = {
    {"get_interface_stats", 86, 84, 1, [](void* record) { return tarn_qcsapi_get_interface_stats("ledd", kWifi0, record); }},
    {"wifi_get_node_stats", 94, 20, 0,
     [](void* record)
     {
         return tarn_qcsapi_wifi_get_node_stats("ledd", kWifi0, 0, nullptr, nullptr, nullptr, nullptr, nullptr,
                                                static_cast<std::uint32_t*>(record));
     }},
    {"wifi_get_associated_device_mac_addr", 96, 6, 1,
     [](void* record)
     { return tarn_qcsapi_wifi_get_associated_device_mac_addr("ledd", kWifi0, 0, static_cast<std::uint8_t*>(record)); }},
    {"wifi_get_properties_AP", 104, 632, 1,
     [](void* record) { return tarn_qcsapi_wifi_get_properties_AP("ledd", kWifi0, 0, record); }},
    {"wifi_get_node_infoset", 105, 536, 1,
     [](void* record) { return tarn_qcsapi_wifi_get_node_infoset("ledd", kWifi0, 0, kMac, record); }},
    {"get_vap_extstats", 109, 24, 1, [](void* record) { return tarn_qcsapi_get_vap_extstats("ledd", kWifi0, record); }},
    {"get_cca_stats", 123, 20, 1, [](void* record) { return tarn_qcsapi_get_cca_stats("ledd", kWifi0, record); }},
    {"get_preamble_error", 124, 8, 0,
     [](void* record) { return tarn_qcsapi_get_preamble_error("ledd", kWifi0, static_cast<std::uint32_t*>(record)); }},
    {"wifi_get_chan_avail_status", 126, 511, 1,
     [](void* record) { return tarn_qcsapi_wifi_get_chan_avail_status("ledd", kWifi0, record); }},
};

class ResultRecord : public ProxyTest, public testing::WithParamInterface<RecordFunction>
{
};

INSTANTIATE_TEST_SUITE_P(AllFunctions, ResultRecord, testing::ValuesIn(kRecordFunctions),
                         [](const testing::TestParamInfo<RecordFunction>& row) { return std::string(row.param.name); });

// And nothing in front of it or behind it is written.
TEST_P(ResultRecord, IsCopiedWithItsLengthAndNoMore)
{
    const std::vector<std::uint8_t> reply = nonZeroBytes(kStatus - kOut);
    expectOnWifi0(GetParam().command).replyBytes(kOut, reply.data(), reply.size()).status(static_cast<std::uint32_t>(-5));

    const std::size_t start = GetParam().misalignment;
    std::vector<std::uint8_t> buffer(GetParam().size + 16, kUntouchedByte);
    std::vector<std::uint8_t> expected = buffer;
    std::copy_n(reply.begin(), GetParam().size, expected.begin() + static_cast<std::ptrdiff_t>(start));
    EXPECT_EQ(GetParam().call(&buffer[start]), -5);
    EXPECT_EQ(buffer, expected);
}

} // namespace
} // namespace tarn::test
