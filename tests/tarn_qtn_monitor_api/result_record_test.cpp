// Result records: each is copied with its own length, from the start of the result.
#include "proxy_test.h"

#include <ostream>

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace tarn::test
{
namespace
{

const char kName[kIfnameSize] = "wifi0";
const std::uint8_t kMac[6] = {2, 0, 0, 0, 0, 9};

struct RecordFunction
{
    const char* name;
    std::uint32_t command;
    const char* output; // as its trace calls it; null if it may be left out
    std::size_t size;
    std::size_t misalignment; // records of words are the caller's words, the others lie anywhere
    std::int32_t (*call)(void* record);
};

void PrintTo(const RecordFunction& function, std::ostream* out)
{
    *out << function.name;
}

const RecordFunction kRecordFunctions[] = {
    {"get_interface_stats", 86, "stats", 84, 1,
     [](void* record) { return tarn_qcsapi_get_interface_stats("ledd", kName, record); }},
    {"wifi_get_node_stats", 94, nullptr, 20, 0,
     [](void* record)
     {
         return tarn_qcsapi_wifi_get_node_stats("ledd", kName, 1, nullptr, nullptr, nullptr, nullptr, nullptr,
                                                static_cast<std::uint32_t*>(record));
     }},
    {"wifi_get_associated_device_mac_addr", 96, "mac_addr", 6, 1,
     [](void* record)
     { return tarn_qcsapi_wifi_get_associated_device_mac_addr("ledd", kName, 1, static_cast<std::uint8_t*>(record)); }},
    {"wifi_get_properties_AP", 104, "ap_property", 632, 1,
     [](void* record) { return tarn_qcsapi_wifi_get_properties_AP("ledd", kName, 1, record); }},
    {"wifi_get_node_infoset", 105, "nis", 536, 1,
     [](void* record) { return tarn_qcsapi_wifi_get_node_infoset("ledd", kName, 1, kMac, record); }},
    {"get_vap_extstats", 109, "stats", 24, 1, [](void* record) { return tarn_qcsapi_get_vap_extstats("ledd", kName, record); }},
    {"get_cca_stats", 123, "stats", 20, 1, [](void* record) { return tarn_qcsapi_get_cca_stats("ledd", kName, record); }},
    {"get_preamble_error", 124, "preamble_error", 8, 0,
     [](void* record) { return tarn_qcsapi_get_preamble_error("ledd", kName, static_cast<std::uint32_t*>(record)); }},
    {"wifi_get_chan_avail_status", 126, "chan_avail_status", 511, 1,
     [](void* record) { return tarn_qcsapi_wifi_get_chan_avail_status("ledd", kName, record); }},
};

class ResultRecord : public ProxyTest, public testing::WithParamInterface<RecordFunction>
{
protected:
    mock::Call expectCall()
    {
        const std::vector<std::uint8_t> reply = nonZeroBytes(kStatus - kOut);
        return platform.expect("QTN_RPC_PROXY", GetParam().command, kMessageSize)
            .caller("ledd")
            .wait(3)
            .replyBytes(kOut, reply.data(), reply.size());
    }

    void* record()
    {
        return buffer.data() + GetParam().misalignment;
    }

    // The record as the service wrote it, and nothing in front of it or behind it.
    std::vector<std::uint8_t> bufferWithRecord() const
    {
        std::vector<std::uint8_t> expected(GetParam().misalignment, kUntouchedByte);
        const std::vector<std::uint8_t> reply = nonZeroBytes(GetParam().size);
        expected.insert(expected.end(), reply.begin(), reply.end());
        expected.resize(buffer.size(), kUntouchedByte);
        return expected;
    }

    std::vector<std::uint8_t> buffer = std::vector<std::uint8_t>(GetParam().size + 16, kUntouchedByte);
};

INSTANTIATE_TEST_SUITE_P(AllFunctions, ResultRecord, testing::ValuesIn(kRecordFunctions),
                         [](const testing::TestParamInfo<RecordFunction>& each) { return std::string(each.param.name); });

TEST_P(ResultRecord, IsCopiedWithItsLengthAndNoMore)
{
    expectCall();
    EXPECT_EQ(GetParam().call(record()), 0);
    EXPECT_EQ(buffer, bufferWithRecord());
}

TEST_P(ResultRecord, IsCopiedWhateverTheReplyStatus)
{
    expectCall().status(static_cast<std::uint32_t>(-5));
    EXPECT_EQ(GetParam().call(record()), -5);
    EXPECT_EQ(buffer, bufferWithRecord());
}

TEST_P(ResultRecord, IsLeftAsItWasAfterAFailure)
{
    expectCall().fail(7);
    EXPECT_EQ(GetParam().call(record()), -1);
    EXPECT_THAT(buffer, Each(kUntouchedByte));
}

TEST_P(ResultRecord, NeedsRoomUnlessItMayBeLeftOut)
{
    if (GetParam().output == nullptr)
    {
        expectCall();
        EXPECT_EQ(GetParam().call(nullptr), 0);
        EXPECT_THAT(platform.traceTexts(), IsEmpty());
        return;
    }
    EXPECT_EQ(GetParam().call(nullptr), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre(std::string(GetParam().output) + " is NULL"));
}

} // namespace
} // namespace tarn::test
