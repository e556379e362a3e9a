// What is around the gateway: the air of each band, and the clients that may come to its access points.
#pragma once

#include "channels.h"
#include "clock.h"
#include "fields.h"
#include "rates.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace tarn::simulator
{

// Another network that a scan finds.
struct Neighbour
{
    MacAddress bssid{};
    std::string ssid;
    Band band = Band::k5;
    std::uint32_t channel = 0;
    std::uint32_t bandwidth = 20;
    std::int32_t rssi = -80; // dBm
    std::string security = "wpa2";
    std::uint32_t load = 5; // percent of the time that its traffic takes
};

struct Air
{
    std::int32_t noise2GHz = -92; // dBm in 20 MHz
    std::int32_t noise5GHz = -95;
    std::int32_t noise6GHz = -95;
    std::vector<Neighbour> neighbours;

    std::int32_t noise(Band band) const;
    std::vector<Neighbour> neighboursIn(Band band) const;

    // Percent of the time in which others are heard on a channel.
    std::uint32_t load(Band band, std::uint32_t channel, std::uint32_t bandwidth) const;
};

// A device that looks for a network.
struct Client
{
    MacAddress address{};
    std::set<Band> bands = {Band::k2, Band::k5};
    PhyMode phyMode = PhyMode::k11ac; // the best one that it can do
    std::uint32_t streams = 2;
    std::uint32_t pathLoss = 70;           // dB from an access point to it at 2.4 GHz: its position
    std::string ssid = "tarn";             // the network that it looks for,
    std::string passphrase = "passphrase"; // and what it knows of it
    std::uint32_t packetRate = 20;         // packets a second, each way
    Milliseconds patience = 10000;         // how long it keeps away from an access point that sent it away; 0: for ever

    bool gone = false; // for ever

    // dB in a band: free space adds the ratio of the frequencies, 20 log10.
    std::int32_t pathLossIn(Band band) const;
    // dBm that an access point receives from it.
    std::int32_t rssiIn(Band band) const;
};

// The noise that a client receives with, in dBm.
constexpr std::int32_t kClientNoise = -95;
// What a client still joins, in dBm.
constexpr std::int32_t kWeakestSignal = -88;

template <>
const Description<Neighbour>& descriptionOf();
template <>
const Description<Air>& descriptionOf();
template <>
const Description<Client>& descriptionOf();

} // namespace tarn::simulator
