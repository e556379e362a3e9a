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
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 44));
    const Record event = nextEvent(TARN_EVT_RADIO_OPR_CHANNEL_CHANGED, kChannelChanged);
    EXPECT_EQ(1U, event.number("radioId"));
    EXPECT_EQ(44U, event.number("channel"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 44)); // the same again is no change
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 45));
    EXPECT_TRUE(noMoreEvents());
}

TEST_F(EventsTest, BandwidthChangeIsTold)
{
    subscribe(TARN_EVT_RADIO_OPR_BANDWIDTH_CHANGED);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_bw)("wifi0", 40));
    const Record event = nextEvent(TARN_EVT_RADIO_OPR_BANDWIDTH_CHANGED, kBandwidthChanged);
    EXPECT_EQ(1U, event.number("radioId"));
    EXPECT_EQ(40U, event.number("bandwidth"));
    EXPECT_TRUE(noMoreEvents());
}

TEST_F(EventsTest, ConfigurationTellsWhatItChanges)
{
    for (std::uint32_t event = TARN_EVT_RADIO_STATUS_CHANGED; event <= TARN_EVT_RADIO_OPR_BANDWIDTH_CHANGED; ++event)
        subscribe(event);
    Record cfg = blank("TarnRadioCfg");
    cfg.setNumber("channel", 11);
    cfg.setNumber("bandwidth", 40);
    constexpr std::uint32_t kChannelAndBandwidth = 1U << 1 | 1U << 3;
    EXPECT_EQ(kDone, CALL(TarnSetRadioCfg)(2, kChannelAndBandwidth, rawOf<TarnRadioCfg>(cfg)));
    EXPECT_EQ(2U, nextEvent(TARN_EVT_RADIO_OPR_CHANNEL_CHANGED, kChannelChanged).number("radioId"));
    EXPECT_EQ(40U, nextEvent(TARN_EVT_RADIO_OPR_BANDWIDTH_CHANGED, kBandwidthChanged).number("bandwidth"));
    EXPECT_TRUE(noMoreEvents());
}

TEST_F(EventsTest, SwitchedRadioTellsOfItselfAndOfItsStations)
{
    subscribe(TARN_EVT_RADIO_STATUS_CHANGED);
    subscribe(TARN_EVT_AP_ASSOCIATED_CHANGED);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_radio_rfenable)("wifi0", 0));
    EXPECT_EQ(0U, nextEvent(TARN_EVT_RADIO_STATUS_CHANGED, kStatusChanged).number("enabled"));
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(0U, nextEvent(TARN_EVT_AP_ASSOCIATED_CHANGED, kAssociatedChanged).number("associated"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_radio_rfenable)("wifi0", 1));
    EXPECT_EQ(1U, nextEvent(TARN_EVT_RADIO_STATUS_CHANGED, kStatusChanged).number("enabled"));
    passSeconds(10);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(1U, nextEvent(TARN_EVT_AP_ASSOCIATED_CHANGED, kAssociatedChanged).number("associated"));
    EXPECT_TRUE(noMoreEvents());
}

TEST_F(EventsTest, KickedStationIsToldOf)
{
    subscribe(TARN_EVT_AP_ASSOCIATED_CHANGED);
    EXPECT_EQ(kDone, CALL(TarnKickOutAccessPointAssociated)(1, 2, kGuestStation.data()));
    const Record gone = nextEvent(TARN_EVT_AP_ASSOCIATED_CHANGED, kAssociatedChanged);
    EXPECT_EQ(1U, gone.number("radioId"));
    EXPECT_EQ(2U, gone.number("apId"));
    EXPECT_EQ(kGuestStation, gone.address("macAddress"));
    EXPECT_EQ(0U, gone.number("associated"));
    passSeconds(10);
    EXPECT_EQ(1U, nextEvent(TARN_EVT_AP_ASSOCIATED_CHANGED, kAssociatedChanged).number("associated"));
    EXPECT_TRUE(noMoreEvents());
}

TEST_F(EventsTest, WpsWindowTellsOfEachOfItsSteps)
{
    subscribe(TARN_EVT_AP_WPS_WIN_STATUS_CHANGED);
    const auto expectStatus = [](std::uint32_t status)
    {
        const Record event = nextEvent(TARN_EVT_AP_WPS_WIN_STATUS_CHANGED, kWindowChanged);
        EXPECT_EQ(1U, event.number("radioId"));
        EXPECT_EQ(1U, event.number("apId"));
        EXPECT_EQ(status, event.number("status"));
    };
    EXPECT_EQ(kDone, CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 1, 0));
    expectStatus(1);
    passSeconds(120); // nobody asks, and it closes all the same
    expectStatus(2);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wps_registrar_report_button_press)("wifi0"));
    expectStatus(1);
    EXPECT_EQ(kDone, CALL(TarnCancelAccessPointWpsWindow)(1, 1));
    expectStatus(3);
    EXPECT_TRUE(noMoreEvents());
}

TEST_F(EventsTest, FilteredStationIsToldOf)
{
    subscribe(TARN_EVT_AP_ASSOCIATED_CHANGED);
    EXPECT_EQ(kDone, CALL(TarnSetAccessPointMacFilterMode)(1, 1, 2));
    EXPECT_EQ(kDone, CALL(TarnAddAccessPointMacFilter)(1, 1, kSecondStation.data()));
    EXPECT_EQ(kSecondStation, nextEvent(TARN_EVT_AP_ASSOCIATED_CHANGED, kAssociatedChanged).address("macAddress"));
    EXPECT_TRUE(noMoreEvents());
}

} // namespace simulator_test
