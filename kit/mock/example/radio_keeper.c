#include "radio_keeper.h"

#include "tarn_api.h"
#include "tarn_frame.h"
#include "tarn_gateway_records.h"

#include <pthread.h>
#include <string.h>

#define CALLER_ID "radio_keeper"

enum
{
    kRoom = 128
};

/* A handler has no context argument, so its data is static. Events may come on any thread. */
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static uint32_t radio;
static uint32_t accessPoint;
static uint32_t channel;
static uint32_t arrivals;
static uint32_t departures;

/* Stations that have been steered and were not seen on this radio since. */
static uint8_t steered[kRoom][6];
static size_t steeredCount;

/* --- Events --- */

static void onChannelChanged(const char* serviceId, uint32_t evt, const void* data, uint32_t length)
{
    (void)serviceId;
    (void)evt;
    if (length < TARN_EVT_RADIO_OPR_CHANNEL_CHANGED_SIZE)
        return;
    pthread_mutex_lock(&lock);
    if (tarn_evt_radio_opr_channel_changed_radio_id(data) == radio)
        channel = tarn_evt_radio_opr_channel_changed_channel(data);
    pthread_mutex_unlock(&lock);
}

static void onAssociatedChanged(const char* serviceId, uint32_t evt, const void* data, uint32_t length)
{
    (void)serviceId;
    (void)evt;
    if (length < TARN_EVT_AP_ASSOCIATED_CHANGED_SIZE)
        return;
    pthread_mutex_lock(&lock);
    if (tarn_evt_ap_associated_changed_radio_id(data) == radio && tarn_evt_ap_associated_changed_ap_id(data) == accessPoint)
    {
        if (tarn_evt_ap_associated_changed_associated(data) == TARN_ASSOCIATION_ASSOCIATED)
            ++arrivals;
        else
            ++departures;
    }
    pthread_mutex_unlock(&lock);
}

int radioKeeperStart(uint32_t radioId, uint32_t apId)
{
    pthread_mutex_lock(&lock);
    radio = radioId;
    accessPoint = apId;
    channel = arrivals = departures = 0;
    pthread_mutex_unlock(&lock);
    steeredCount = 0;
    if (tarnSubscribeEvent(CALLER_ID, TARN_EVT_RADIO_OPR_CHANNEL_CHANGED, NULL, onChannelChanged) != TARN_OK)
        return -1;
    if (tarnSubscribeEvent(CALLER_ID, TARN_EVT_AP_ASSOCIATED_CHANGED, NULL, onAssociatedChanged) == TARN_OK)
        return 0;
    tarnCancelEvent(CALLER_ID, TARN_EVT_RADIO_OPR_CHANNEL_CHANGED, NULL, onChannelChanged);
    return -1;
}

int radioKeeperStop(void)
{
    const uint32_t first = tarnCancelEvent(CALLER_ID, TARN_EVT_RADIO_OPR_CHANNEL_CHANGED, NULL, onChannelChanged);
    const uint32_t second = tarnCancelEvent(CALLER_ID, TARN_EVT_AP_ASSOCIATED_CHANGED, NULL, onAssociatedChanged);
    return first == TARN_OK && second == TARN_OK ? 0 : -1;
}

static uint32_t read(const uint32_t* number)
{
    uint32_t current;
    pthread_mutex_lock(&lock);
    current = *number;
    pthread_mutex_unlock(&lock);
    return current;
}

uint32_t radioKeeperChannel(void)
{
    return read(&channel);
}

uint32_t radioKeeperArrivals(void)
{
    return read(&arrivals);
}

uint32_t radioKeeperDepartures(void)
{
    return read(&departures);
}

/* --- Stations --- */

static int listStations(uint32_t radioId, uint32_t apId, RadioKeeperStation* stations, size_t room)
{
    uint32_t number = 0;
    uint32_t i;
    if (TarnGetAccessPointAssociatedNum(CALLER_ID, radioId, apId, &number) != TARN_OK)
        return -1;
    for (i = 0; i < number && i < room; ++i)
    {
        TarnAccessPointAssociatedData data;
        if (TarnGetAccessPointAssociatedAt(CALLER_ID, radioId, apId, i, &data) != TARN_OK)
            return -1;
        memcpy(stations[i].address, tarn_access_point_associated_data_mac_address(&data), sizeof stations[i].address);
        stations[i].rssi = tarn_access_point_associated_data_rssi(&data);
        stations[i].secondsAssociated = tarn_access_point_associated_data_seconds_associated(&data);
    }
    return (int)number;
}

int radioKeeperStations(RadioKeeperStation* stations, size_t room)
{
    return listStations(radio, accessPoint, stations, room);
}

int radioKeeperSendWeakAway(int32_t weakest)
{
    RadioKeeperStation stations[kRoom];
    const int number = radioKeeperStations(stations, kRoom);
    int sent = 0;
    int i;
    if (number < 0)
        return -1;
    for (i = 0; i < number && i < kRoom; ++i)
    {
        if (stations[i].rssi >= weakest)
            continue;
        if (TarnKickOutAccessPointAssociated(CALLER_ID, radio, accessPoint, stations[i].address) != TARN_OK)
            return -1;
        ++sent;
    }
    return sent;
}

/* --- Band steering --- */

/* Its place among the steered, or their number if it is none of them. */
static size_t placeOf(const uint8_t address[6])
{
    size_t place = 0;
    while (place < steeredCount && memcmp(steered[place], address, sizeof steered[place]) != 0)
        ++place;
    return place;
}

static void forget(const uint8_t address[6])
{
    const size_t place = placeOf(address);
    if (place < steeredCount)
        memmove(steered[place], steered[--steeredCount], sizeof steered[place]);
}

int radioKeeperSteer(uint32_t fromRadio, uint32_t fromAp, int32_t strong)
{
    RadioKeeperStation stations[kRoom];
    uint32_t isReady = 0;
    int number;
    int sent = 0;
    int i;
    if (TarnGetRadioIsReady(CALLER_ID, radio, &isReady) != TARN_OK)
        return -1;
    if (!isReady)
        return 0;
    number = radioKeeperStations(stations, kRoom);
    if (number < 0)
        return -1;
    for (i = 0; i < number && i < kRoom; ++i)
        forget(stations[i].address);
    number = listStations(fromRadio, fromAp, stations, kRoom);
    if (number < 0)
        return -1;
    for (i = 0; i < number && i < kRoom && steeredCount < kRoom; ++i)
    {
        if (stations[i].rssi < strong || placeOf(stations[i].address) < steeredCount)
            continue;
        if (TarnKickOutAccessPointAssociated(CALLER_ID, fromRadio, fromAp, stations[i].address) != TARN_OK)
            return -1;
        memcpy(steered[steeredCount++], stations[i].address, sizeof steered[0]);
        ++sent;
    }
    return sent;
}

/* --- Channel --- */

int radioKeeperScan(void)
{
    return TarnScanRadioNeighborhood(CALLER_ID, radio) == TARN_OK ? 0 : -1;
}

/* The first of the channels that a radio with that bandwidth, in MHz, occupies when it works on one of them. */
static uint32_t blockOf(uint32_t channelNumber, uint32_t bandwidth)
{
    const uint32_t first = channelNumber < 149 ? 36 : 149;
    const uint32_t width = bandwidth / 5; /* channel numbers are 5 MHz apart */
    return channelNumber < first || width == 0 ? channelNumber : channelNumber - (channelNumber - first) % width;
}

/* Networks of the last scan by their blocks, of whose numbers there are fewer than 256. Returns 0, or -1. */
static int countNetworks(uint32_t bandwidth, uint32_t networks[256])
{
    uint32_t number = 0;
    uint32_t i;
    if (TarnGetRadioNeighboringResultNum(CALLER_ID, radio, &number) != TARN_OK)
        return -1;
    memset(networks, 0, 256 * sizeof networks[0]);
    for (i = 0; i < number; ++i)
    {
        TarnNeighborBss bss;
        if (TarnGetRadioNeighboringResultAt(CALLER_ID, radio, i, &bss) != TARN_OK)
            return -1;
        ++networks[blockOf(tarn_neighbor_bss_channel(&bss), bandwidth) % 256];
    }
    return 0;
}

static int moveTo(uint32_t wanted)
{
    TarnRadioCfg cfg;
    memset(&cfg, 0, sizeof cfg);
    tarn_radio_cfg_set_channel(&cfg, wanted);
    return TarnSetRadioCfg(CALLER_ID, radio, TARN_SET_RADIO_CFG_PARAM_CHANNEL, cfg) == TARN_OK ? (int)wanted : -1;
}

int radioKeeperRelieve(uint32_t mostLoad)
{
    uint32_t networks[256];
    TarnRadioStats stats;
    TarnRadioData data;
    uint32_t bandwidth;
    uint32_t best;
    size_t i;
    if (TarnGetRadioStats(CALLER_ID, radio, &stats) != TARN_OK)
        return -1;
    if (tarn_radio_stats_channel_load(&stats) <= mostLoad)
        return 0;
    if (TarnGetRadio(CALLER_ID, radio, &data) != TARN_OK)
        return -1;
    bandwidth = tarn_radio_data_bandwidth(&data);
    if (countNetworks(bandwidth, networks) != 0)
        return -1;
    best = tarn_radio_data_channel(&data);
    for (i = 0; i < tarn_radio_data_possible_channels_count(&data); ++i)
    {
        const uint32_t other = tarn_radio_data_possible_channels(&data, i);
        if (networks[blockOf(other, bandwidth) % 256] < networks[blockOf(best, bandwidth) % 256])
            best = other;
    }
    return best == tarn_radio_data_channel(&data) ? 0 : moveTo(best);
}
