// The traffic counters of a station, an interface or a radio.
#pragma once

#include "record.h"

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

    // The record must have a field of the same name for every counter.
    void fill(Record& record) const
    {
        record.setNumber("txPackets", txPackets);
        record.setNumber("rxPackets", rxPackets);
        record.setNumber("txBytes", txBytes);
        record.setNumber("rxBytes", rxBytes);
        record.setNumber("txErrors", txErrors);
        record.setNumber("rxErrors", rxErrors);
        record.setNumber("txRetries", txRetries);
    }
};

} // namespace tarn::simulator
