// What is due, in order of time: the one queue of everything that happens by itself.
#pragma once

#include "base/mac_address.h"
#include "clock.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <tuple>
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

    bool operator<(const Due& other) const
    {
        return std::tie(what, radioId, interfaceId, address, channel) <
               std::tie(other.what, other.radioId, other.interfaceId, other.address, other.channel);
    }
};

class Agenda
{
public:
    // In place of an earlier time for the same, if there is one.
    void set(const Due& due, Milliseconds time)
    {
        cancel(due);
        times_[due] = time;
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
    std::map<Due, Milliseconds> times_;
    std::set<std::pair<Milliseconds, Due>> queue_;
};

} // namespace tarn::simulator
