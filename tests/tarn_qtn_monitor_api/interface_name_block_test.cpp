// The commands that send the 65 bytes of the caller's name as they stand, where all others send a text.
#include "proxy_test.h"

#include <ostream>

namespace tarn::test
{
namespace
{

const std::uint8_t kMac[6] = {};

struct NameFunction
{
    const char* name;
    std::uint32_t command;
    std::int32_t (*call)(const char* ifname);
};

void PrintTo(const NameFunction& function, std::ostream* out)
{
    *out << function.name;
}

std::int32_t getNodeInfoset(const char* ifname)
{
    std::uint8_t record[536];
    return tarn_qcsapi_wifi_get_node_infoset("ledd", ifname, 0, kMac, record);
}

std::int32_t getRates(const char* ifname)
{
    std::uint8_t rates[8];
    return tarn_qcsapi_wifi_get_rates("ledd", ifname, 0, rates, sizeof rates);
}

std::int32_t getVapExtstats(const char* ifname)
{
    std::uint8_t record[24];
    return tarn_qcsapi_get_vap_extstats("ledd", ifname, record);
}

std::int32_t getParameter(const char* ifname)
{
    std::uint32_t value = 0;
    return tarn_qcsapi_wifi_get_parameter("ledd", ifname, 0, &value);
}

std::int32_t setParams(const char* ifname)
{
    const std::uint8_t block[1040] = {};
    return tarn_qcsapi_set_params("ledd", ifname, nullptr, block);
}

std::int32_t getMaxBitrate(const char* ifname)
{
    char bitrate[8];
    return tarn_qcsapi_get_max_bitrate("ledd", ifname, bitrate, sizeof bitrate);
}

const NameFunction kNameFunctions[] = {
    {"wifi_get_node_infoset", 105, getNodeInfoset},
    {"wifi_get_rates", 106, getRates},
    {"wps_cancel", 107, [](const char* ifname) { return tarn_qcsapi_wps_cancel("ledd", ifname); }},
    {"get_vap_extstats", 109, getVapExtstats},
    {"wifi_get_parameter", 110, getParameter},
    {"wifi_set_parameter", 111, [](const char* ifname) { return tarn_qcsapi_wifi_set_parameter("ledd", ifname, 0, 0); }},
    {"wifi_disable_11b", 112, [](const char* ifname) { return tarn_qcsapi_wifi_disable_11b("ledd", ifname, 0); }},
    {"wifi_set_sec_chan", 113, [](const char* ifname) { return tarn_qcsapi_wifi_set_sec_chan("ledd", ifname, 0, 0); }},
    {"wifi_set_enable_mu", 114, [](const char* ifname) { return tarn_qcsapi_wifi_set_enable_mu("ledd", ifname, 0); }},
    {"set_params", 115, setParams},
    {"get_max_bitrate", 116, getMaxBitrate},
    {"wifi_set_ac_agg_hold_time", 117,
     [](const char* ifname) { return tarn_qcsapi_wifi_set_ac_agg_hold_time("ledd", ifname, 0, 0); }},
    {"wifi_set_legacy_bbic", 118, [](const char* ifname) { return tarn_qcsapi_wifi_set_legacy_bbic("ledd", ifname, 0); }},
    {"thermal_mitig_start", 120, [](const char* name) { return tarn_qcsapi_thermal_mitig_start("ledd", name, 0, 0); }},
    {"thermal_mitig_stop", 121, [](const char* name) { return tarn_qcsapi_thermal_mitig_stop("ledd", name); }},
};

class InterfaceNameBlock : public ProxyTest, public testing::WithParamInterface<NameFunction>
{
};

INSTANTIATE_TEST_SUITE_P(AllFunctions, InterfaceNameBlock, testing::ValuesIn(kNameFunctions),
                         [](const testing::TestParamInfo<NameFunction>& each) { return std::string(each.param.name); });

// The buffer is exactly as long as what is sent of it.
TEST_P(InterfaceNameBlock, IsSentWithoutANulBeingAdded)
{
    const std::vector<std::uint8_t> name = nonZeroBytes(kIfnameSize);
    expectCommand(GetParam().command).bytes(kIfname, name.data(), name.size());
    EXPECT_EQ(GetParam().call(reinterpret_cast<const char*>(name.data())), 0);
}

TEST_P(InterfaceNameBlock, IsSentBeyondItsNul)
{
    const char name[kIfnameSize] = "wifi0\0what stood here before";
    platform.expect("QTN_RPC_PROXY", GetParam().command, kMessageSize).bytes(kIfname, name, sizeof name);
    EXPECT_EQ(GetParam().call(name), 0);
}

using InterfaceNameText = ProxyTest;

TEST_F(InterfaceNameText, IsSentByTheNeighboursOfThoseCommands)
{
    const char name[kIfnameSize] = "wifi0\0what stood here before";
    expectOnWifi0(101);
    expectOnWifi0(102);
    expectOnWifi0(103);
    expectOnWifi0(104);
    expectOnWifi0(123);
    expectOnWifi0(124);
    expectOnWifi0(125);
    expectOnWifi0(126);
    expectOnWifi0(127);

    std::uint32_t word = 0;
    std::uint32_t record[158] = {};
    EXPECT_EQ(tarn_qcsapi_wifi_start_scan_ext("ledd", name, 0), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_get_scan_status("ledd", name, &word), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_get_results_AP_scan("ledd", name, &word), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_get_properties_AP("ledd", name, 0, record), 0);
    EXPECT_EQ(tarn_qcsapi_get_cca_stats("ledd", name, record), 0);
    EXPECT_EQ(tarn_qcsapi_get_preamble_error("ledd", name, record), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_ieee80211r("ledd", name, 0), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_get_chan_avail_status("ledd", name, record), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_wea_cac_en("ledd", name, 0), 0);
}

} // namespace
} // namespace tarn::test
