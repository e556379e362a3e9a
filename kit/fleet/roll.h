// Which gateways there are: what their births and wills say, and which of them a command means.
#pragma once

#include "envelope.h"
#include "exchange.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace tarn::fleet
{

// A name; a pattern, in which * is any characters and ? is one; or @FILE, which has a name a line.
class GatewayFilter
{
public:
    // Throws ctl::UsageError.
    explicit GatewayFilter(const std::string& text);

    // It says the names by itself: gateways that nobody has heard of are meant too.
    bool isNamed() const
    {
        return pattern_.empty();
    }
    const std::vector<std::string>& names() const
    {
        return names_;
    }
    bool accepts(const std::string& gateway) const;

private:
    std::string pattern_;
    std::vector<std::string> names_;
};

// The latest birth or will of a gateway.
struct State
{
    std::uint64_t run = 0;
    std::uint32_t connection = 0; // its number in the run
    std::uint64_t clock = 0;      // of the gateway, when it connected
    bool isConnected = false;     // as far as that says
};

// Kept by the broker's thread, read by others.
class Roll
{
public:
    // Returns whether it is news: not a will that is older than the latest birth of its run, nor one of these again.
    bool hear(const std::string& gateway, const Envelope& envelope);
    // Returns when nothing new was heard for a while, at the latest at the limit.
    void settle(std::chrono::milliseconds quiet, std::chrono::milliseconds limit) const;
    std::map<std::string, State> states() const;
    // Of a gateway that has not been heard of, nothing.
    State state(const std::string& gateway) const;

private:
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::map<std::string, State> states_;
    std::uint64_t news_ = 0;
};

// The names that a filter means: its own, or those of the roll, once all that is retained has been heard.
std::vector<std::string> gatewaysOf(const GatewayFilter& filter, const Roll& roll);

// Does it for each of the names, for so many at the same time, until it returns false. Each of them is done once and on one
// thread; returns when all that were begun have ended.
void forEach(const std::vector<std::string>& names, std::size_t window, const std::function<bool(std::size_t index)>& act);

} // namespace tarn::fleet
