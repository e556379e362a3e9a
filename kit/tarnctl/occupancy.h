// The channels of a band, and which networks cover them, as a picture.
#pragma once

#include "console.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::ctl
{

enum class Band
{
    k2GHz,
    k5GHz,
    k6GHz
};

struct Network
{
    std::string name;
    std::int64_t channel = 0;
    std::int64_t bandwidth = 0; // MHz
    std::int64_t signal = 0;    // dBm; of one of our own there is none
    bool isOwn = false;
};

// The lowest and the highest channel number that a network covers, both included.
struct Coverage
{
    std::int64_t first = 0;
    std::int64_t last = 0;
};

Coverage coverageOf(Band band, std::int64_t channel, std::int64_t bandwidth);

// Whether it is the number of a channel of 20 MHz in that band.
bool isChannel(Band band, std::int64_t channel);

// By the layout's word for it, "2.4GHz", else by the channel.
Band bandOf(const std::string& word, std::int64_t channel);
const char* toString(Band band);

// The middle of a channel of 20 MHz, in MHz.
std::int64_t frequencyOf(Band band, std::int64_t channel);

// One line a network, a bar over the channels that it covers, the strongest first and our own before them.
void writeOccupancy(const Console& console, Band band, std::vector<Network> networks);

} // namespace tarn::ctl
