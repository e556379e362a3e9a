#include "support.h"

namespace simulator_test
{

using EventsTest = SimulatorTest;

constexpr const char* kStatusChanged = "EVT_RADIO_STATUS_CHANGED";
constexpr const char* kChannelChanged = "EVT_RADIO_OPR_CHANNEL_CHANGED";
constexpr const char* kBandwidthChanged = "EVT_RADIO_OPR_BANDWIDTH_CHANGED";
constexpr const char* kAssociatedChanged = "EVT_AP_ASSOCIATED_CHANGED";
constexpr const char* kWindowChanged = "EVT_AP_WPS_WIN_STATUS_CHANGED";

TEST_F(EventsTest, ChannelChangeIsToldOnce)
{
    subscribe(TARN_EVT_RADIO_OPR_CHANNEL_CHANGED);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 44), kDone);
    const Record event = nextEvent(TARN_EVT_RADIO_OPR_CHANNEL_CHANGED, kChannelChanged);
    EXPECT_EQ(event.number("radioId"), 1u);
    EXPECT_EQ(event.number("channel"), 44u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 44), kDone); // the same again is no change
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 45), kModuleInvalidValue);
    EXPECT_TRUE(noMoreEvents());
}

TEST_F(EventsTest, BandwidthChangeIsTold)
{
    subscribe(TARN_EVT_RADIO_OPR_BANDWIDTH_CHANGED);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_bw)("wifi0", 40), kDone);
    const Record event = nextEvent(TARN_EVT_RADIO_OPR_BANDWIDTH_CHANGED, kBandwidthChanged);
    EXPECT_EQ(event.number("radioId"), 1u);
    EXPECT_EQ(event.number("bandwidth"), 40u);
    EXPECT_TRUE(noMoreEvents());
}

TEST_F(EventsTest, ConfigurationTellsWhatItChanges)
{
    for (std::uint32_t event = TARN_EVT_RADIO_STATUS_CHANGED; event <= TARN_EVT_RADIO_OPR_BANDWIDTH_CHANGED; ++event)
        subscribe(event);
    Record cfg = blank("TarnRadioCfg");
    cfg.setNumber("channel", 11);
    cfg.setNumber("bandwidth", 40);
    constexpr std::uint32_t kChannelAndBandwidth = 1u << 1 | 1u << 3;
    EXPECT_EQ(CALL(TarnSetRadioCfg)(2, kChannelAndBandwidth, rawOf<TarnRadioCfg>(cfg)), kDone);
    EXPECT_EQ(nextEvent(TARN_EVT_RADIO_OPR_CHANNEL_CHANGED, kChannelChanged).number("radioId"), 2u);
    EXPECT_EQ(nextEvent(TARN_EVT_RADIO_OPR_BANDWIDTH_CHANGED, kBandwidthChanged).number("bandwidth"), 40u);
    EXPECT_TRUE(noMoreEvents());
}

TEST_F(EventsTest, SwitchedRadioTellsOfItselfAndOfItsStations)
{
    subscribe(TARN_EVT_RADIO_STATUS_CHANGED);
    subscribe(TARN_EVT_AP_ASSOCIATED_CHANGED);
    EXPECT_EQ(CALL(tarn_qcsapi_radio_rfenable)("wifi0", 0), kDone);
    EXPECT_EQ(nextEvent(TARN_EVT_RADIO_STATUS_CHANGED, kStatusChanged).number("enabled"), 0u);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(nextEvent(TARN_EVT_AP_ASSOCIATED_CHANGED, kAssociatedChanged).number("associated"), 0u);
    EXPECT_EQ(CALL(tarn_qcsapi_radio_rfenable)("wifi0", 1), kDone);
    EXPECT_EQ(nextEvent(TARN_EVT_RADIO_STATUS_CHANGED, kStatusChanged).number("enabled"), 1u);
    passSeconds(10);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(nextEvent(TARN_EVT_AP_ASSOCIATED_CHANGED, kAssociatedChanged).number("associated"), 1u);
    EXPECT_TRUE(noMoreEvents());
}

TEST_F(EventsTest, KickedStationIsToldOf)
{
    subscribe(TARN_EVT_AP_ASSOCIATED_CHANGED);
    EXPECT_EQ(CALL(TarnKickOutAccessPointAssociated)(1, 2, kGuestStation.data()), kDone);
    const Record gone = nextEvent(TARN_EVT_AP_ASSOCIATED_CHANGED, kAssociatedChanged);
    EXPECT_EQ(gone.number("radioId"), 1u);
    EXPECT_EQ(gone.number("apId"), 2u);
    EXPECT_EQ(gone.address("macAddress"), kGuestStation);
    EXPECT_EQ(gone.number("associated"), 0u);
    passSeconds(10);
    EXPECT_EQ(nextEvent(TARN_EVT_AP_ASSOCIATED_CHANGED, kAssociatedChanged).number("associated"), 1u);
    EXPECT_TRUE(noMoreEvents());
}

TEST_F(EventsTest, WpsWindowTellsOfEachOfItsSteps)
{
    subscribe(TARN_EVT_AP_WPS_WIN_STATUS_CHANGED);
    const auto expectStatus = [](std::uint32_t status)
    {
        const Record event = nextEvent(TARN_EVT_AP_WPS_WIN_STATUS_CHANGED, kWindowChanged);
        EXPECT_EQ(event.number("radioId"), 1u);
        EXPECT_EQ(event.number("apId"), 1u);
        EXPECT_EQ(event.number("status"), status);
    };
    EXPECT_EQ(CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 1, 0), kDone);
    expectStatus(1);
    passSeconds(120); // nobody asks, and it closes all the same
    expectStatus(2);
    EXPECT_EQ(CALL(tarn_qcsapi_wps_registrar_report_button_press)("wifi0"), kDone);
    expectStatus(1);
    EXPECT_EQ(CALL(TarnCancelAccessPointWpsWindow)(1, 1), kDone);
    expectStatus(3);
    EXPECT_TRUE(noMoreEvents());
}

TEST_F(EventsTest, FilteredStationIsToldOf)
{
    subscribe(TARN_EVT_AP_ASSOCIATED_CHANGED);
    EXPECT_EQ(CALL(TarnSetAccessPointMacFilterMode)(1, 1, 2), kDone);
    EXPECT_EQ(CALL(TarnAddAccessPointMacFilter)(1, 1, kSecondStation.data()), kDone);
    EXPECT_EQ(nextEvent(TARN_EVT_AP_ASSOCIATED_CHANGED, kAssociatedChanged).address("macAddress"), kSecondStation);
    EXPECT_TRUE(noMoreEvents());
}

} // namespace simulator_test
