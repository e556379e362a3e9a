// The traffic counters of a station, an interface or a radio.
#pragma once

#include <cstdint>

namespace tarn::simulator
{

struct Counters
{
    std::uint64_t txPackets = 0;
    std::uint64_t rxPackets = 0;
    std::uint64_t txBytes = 0;
    std::uint64_t rxBytes = 0;
    std::uint64_t txErrors = 0;
    std::uint64_t rxErrors = 0;
    std::uint64_t txRetries = 0;

    void add(const Counters& other)
    {
        txPackets += other.txPackets;
        rxPackets += other.rxPackets;
        txBytes += other.txBytes;
        rxBytes += other.rxBytes;
        txErrors += other.txErrors;
        rxErrors += other.rxErrors;
        txRetries += other.txRetries;
    }
};

} // namespace tarn::simulator
