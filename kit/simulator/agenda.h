// What is due, in order of time: the one queue of everything that happens by itself.
#pragma once

#include "base/mac_address.h"
#include "clock.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace tarn::simulator
{

// What can be due. At the same instant things happen in this order, and those of one kind in the order of their radios,
// interfaces, addresses and channels.
enum class Occurrence : std::uint32_t
{
    kDownloadEnds,
    kProductionEnds,
    kScanEnds,
    kRadarCheckEnds,
    kDfsRadioEnds,
    kWpsWindowCloses,
    kNonOccupancyEnds, // a channel may be used again after radar
    kRadarAppears,
    kClientReturns // to an access point that it kept away from
};

inline constexpr const char* kOccurrenceNames[] = {"downloadEnds",     "productionEnds", "scanEnds",
                                                   "radarCheckEnds",   "dfsRadioEnds",   "wpsWindowCloses",
                                                   "nonOccupancyEnds", "radarAppears",   "clientReturns"};

// Something that is due, and to which object: 0, or an address of zeros, where it is to none.
struct Due
{
    Occurrence what = Occurrence::kDownloadEnds;
    std::uint32_t radioId = 0;
    std::uint32_t interfaceId = 0;
    base::MacAddress address{};
    std::uint32_t channel = 0;

    bool operator==(const Due& other) const
    {
        return key() == other.key();
    }

    bool operator<(const Due& other) const
    {
        return key() < other.key();
    }

private:
    std::tuple<const Occurrence&, const std::uint32_t&, const std::uint32_t&, const base::MacAddress&, const std::uint32_t&>
    key() const
    {
        return std::tie(what, radioId, interfaceId, address, channel);
    }
};

struct DueHash
{
    std::size_t operator()(const Due& due) const
    {
        std::size_t hash = base::MacAddressHash()(due.address);
        for (const std::uint32_t each : {static_cast<std::uint32_t>(due.what), due.radioId, due.interfaceId, due.channel})
            hash = hash * 31 + each;
        return hash;
    }
};

class Agenda
{
public:
    // In place of an earlier time for the same, if there is one.
    void set(const Due& due, Milliseconds time)
    {
        const auto [entry, isNew] = times_.try_emplace(due, time);
        if (!isNew)
            queue_.erase({std::exchange(entry->second, time), due});
        queue_.insert({time, due});
    }

    void cancel(const Due& due)
    {
        const auto found = times_.find(due);
        if (found == times_.end())
            return;
        queue_.erase({found->second, due});
        times_.erase(found);
    }

    std::optional<Milliseconds> time(const Due& due) const
    {
        const auto found = times_.find(due);
        return found == times_.end() ? std::nullopt : std::optional<Milliseconds>(found->second);
    }

    // The time of what comes first; none if nothing is due.
    std::optional<Milliseconds> next() const
    {
        return queue_.empty() ? std::nullopt : std::optional<Milliseconds>(queue_.begin()->first);
    }

    bool has(const Due& due) const
    {
        return times_.count(due) != 0;
    }

    // Takes out what comes first, which there has to be.
    Due take()
    {
        const Due first = queue_.begin()->second;
        cancel(first);
        return first;
    }

    // In the order in which it happens.
    const std::set<std::pair<Milliseconds, Due>>& all() const
    {
        return queue_;
    }

private:
    std::unordered_map<Due, Milliseconds, DueHash> times_;
    std::set<std::pair<Milliseconds, Due>> queue_;
};

} // namespace tarn::simulator
