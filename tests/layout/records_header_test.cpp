// The functions of the header against encoding and decoding by the same layout, at addresses that suit no processor.
#include "tarn_gateway_records.h"

#include "layout/c_header.h"
#include "layout/decode.h"
#include "layout/encode.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace
{

using namespace tarn::layout;
using tarn::base::Bytes;

// A record at an odd address.
template <typename Raw>
class Odd
{
public:
    explicit Odd(const Structure& structure) : structure_(structure), bytes_(structure.size + 1)
    {
        EXPECT_EQ(sizeof(Raw), structure.size);
    }

    Raw* get()
    {
        return reinterpret_cast<Raw*>(bytes_.data() + 1); // Raw is an array of bytes, and needs no alignment
    }

    void encode(const std::string& path, const std::string& value)
    {
        Bytes record(bytes_.begin() + 1, bytes_.end());
        tarn::layout::encode(structure_, path, value, record);
        std::copy(record.begin(), record.end(), bytes_.begin() + 1);
    }

    std::string decoded(const std::string& name)
    {
        for (const FieldLine& line : linesOf(decode(structure_, bytes_.data() + 1, structure_.size)))
            if (line.name == name)
                return line.value;
        return "nothing";
    }

private:
    const Structure& structure_;
    Bytes bytes_;
};

TEST(RecordsHeader, ReadsWhatIsEncoded)
{
    Odd<TarnRadioData> radio(*simulated().record("TarnRadioData"));
    radio.encode("channel", "100");
    radio.encode("temperature", "-7");
    radio.encode("neighboringStatus", "running");
    radio.encode("band", "2.4GHz");
    radio.encode("possibleChannels[0]", "36");
    radio.encode("possibleChannels[1]", "40");
    EXPECT_EQ(tarn_radio_data_channel(radio.get()), 100u);
    EXPECT_EQ(tarn_radio_data_temperature(radio.get()), -7);
    EXPECT_EQ(tarn_radio_data_neighboring_status(radio.get()), static_cast<std::uint32_t>(TARN_SCAN_STATE_RUNNING));
    char band[TARN_RADIO_DATA_BAND_SIZE];
    EXPECT_STREQ(tarn_radio_data_band(radio.get(), band), "2.4GHz");
    EXPECT_EQ(tarn_radio_data_possible_channels_count(radio.get()), 2u);
    EXPECT_EQ(tarn_radio_data_possible_channels(radio.get(), 1), 40u);
}

TEST(RecordsHeader, WritesWhatIsDecoded)
{
    Odd<TarnSsidIntfCfg> cfg(*simulated().record("TarnSsidIntfCfg"));
    EXPECT_EQ(tarn_ssid_intf_cfg_set_ssid(cfg.get(), "attic"), 0);
    EXPECT_EQ(tarn_ssid_intf_cfg_set_ssid(cfg.get(), std::string(33, 'x').c_str()), -1);
    tarn_ssid_intf_cfg_set_priority(cfg.get(), 3);
    tarn_ssid_intf_cfg_set_enabled(cfg.get(), TARN_SWITCH_ON);
    EXPECT_EQ(cfg.decoded("ssid"), "\"attic\"");
    EXPECT_EQ(cfg.decoded("priority"), "3");
    EXPECT_EQ(cfg.decoded("enabled"), "on (1)");

    Odd<TarnAccessPointAssociatedData> station(*simulated().record("TarnAccessPointAssociatedData"));
    const std::uint8_t address[] = {2, 0, 0, 0, 1, 255};
    tarn_access_point_associated_data_set_mac_address(station.get(), address);
    tarn_access_point_associated_data_set_rssi(station.get(), -61);
    EXPECT_EQ(station.decoded("macAddress"), "02:00:00:00:01:ff");
    EXPECT_EQ(station.decoded("rssi"), "-61");
}

TEST(RecordsHeader, ReachesIntoArraysOfFields)
{
    const Structure& block = *simulated().block("tarn_qcsapi_wifi_get_chan_avail_status.chan_avail_status");
    Bytes bytes(block.size);
    encode(block, "number", "2", bytes);
    encode(block, "channels[1].availability", "beingChecked", bytes);
    EXPECT_EQ(tarn_qcsapi_wifi_get_chan_avail_status_chan_avail_status_channels_count(bytes.data()), 2u);
    EXPECT_EQ(tarn_qcsapi_wifi_get_chan_avail_status_chan_avail_status_channels_availability(bytes.data(), 1),
              static_cast<std::uint8_t>(TARN_CHANNEL_AVAILABILITY_BEING_CHECKED));
}

TEST(RecordsHeader, KnowsStatusesFlagsAndSelections)
{
    EXPECT_EQ(TARN_STATUS_TARN_BUSY, 18u);
    EXPECT_EQ(TARN_STATUS_QTN_RPC_PROXY_INVALID_VALUE, -202);
    EXPECT_EQ(TARN_SET_RADIO_CFG_PARAM_BANDWIDTH, 8u);
    EXPECT_EQ(TARN_GET_LAST_ERROR_MASK_MASK_BUSY, 4u);
}

TEST(RecordsHeader, NamesAreThoseOfC)
{
    EXPECT_EQ(cName("TarnRadioData"), "tarn_radio_data");
    EXPECT_EQ(cName("TarnGetRadioIsSupportedWFAAlliance"), "tarn_get_radio_is_supported_wfa_alliance");
    EXPECT_EQ(cName("tarn_qcsapi_get_cca_stats.stats"), "tarn_qcsapi_get_cca_stats_stats");
    EXPECT_EQ(cName("EVT_RADIO_STATUS_CHANGED"), "evt_radio_status_changed");
    EXPECT_EQ(cName("disable11b"), "disable11b");
}

} // namespace
