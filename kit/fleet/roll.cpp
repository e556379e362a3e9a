#include "roll.h"

#include "base/format.h"
#include "base/json_reader.h"
#include "tarnctl/usage_error.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <sstream>
#include <thread>

#include <fnmatch.h>

namespace tarn::fleet
{

namespace
{

constexpr std::chrono::milliseconds kQuiet{500}; // after which a broker has no more to tell
constexpr std::chrono::milliseconds kLongestListening{10000};

std::vector<std::string> readNames(const std::string& path)
{
    std::istringstream lines(base::readText(path, "a file of gateways"));
    std::vector<std::string> names;
    for (std::string line; std::getline(lines, line);)
    {
        if (line.empty() || line.front() == '#')
            continue;
        if (!isId(line.c_str()))
            throw ctl::UsageError(base::format("%s: expected a gateway's name a line, not %s", path.c_str(), line.c_str()));
        names.push_back(line);
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

} // namespace

GatewayFilter::GatewayFilter(const std::string& text)
{
    if (!text.empty() && text.front() == '@')
        names_ = readNames(text.substr(1));
    else if (!isId(text.c_str()))
        throw ctl::UsageError("expected a gateway's name, a pattern with * and ?, or @FILE; got " + text);
    else if (text.find_first_of("*?[") != std::string::npos)
        pattern_ = text;
    else
        names_ = {text};
}

bool GatewayFilter::accepts(const std::string& gateway) const
{
    if (isNamed())
        return std::binary_search(names_.begin(), names_.end(), gateway);
    return fnmatch(pattern_.c_str(), gateway.c_str(), 0) == 0;
}

bool Roll::hear(const std::string& gateway, const Envelope& envelope)
{
    const bool isBirth = envelope.kind == Kind::kBirth;
    const std::lock_guard guard(mutex_);
    State& state = states_[gateway];
    const bool isSameRun = state.run == envelope.run;
    if (isSameRun && (envelope.sequence < state.connection || (envelope.sequence == state.connection && isBirth)))
        return false;
    if (isSameRun && !state.isConnected && !isBirth)
        return false;
    state.run = envelope.run;
    state.connection = envelope.sequence;
    state.isConnected = isBirth;
    if (isBirth)
        state.clock = envelope.clock;
    ++news_;
    changed_.notify_all();
    return true;
}

void Roll::settle(std::chrono::milliseconds quiet, std::chrono::milliseconds limit) const
{
    const auto end = std::chrono::steady_clock::now() + limit;
    std::unique_lock guard(mutex_);
    for (std::uint64_t before = news_; std::chrono::steady_clock::now() < end; before = news_)
        if (!changed_.wait_for(guard, quiet, [&] { return news_ != before; }))
            return;
}

std::map<std::string, State> Roll::states() const
{
    const std::lock_guard guard(mutex_);
    return states_;
}

State Roll::state(const std::string& gateway) const
{
    const std::lock_guard guard(mutex_);
    const auto found = states_.find(gateway);
    return found == states_.end() ? State() : found->second;
}

std::vector<std::string> gatewaysOf(const GatewayFilter& filter, const Roll& roll)
{
    if (filter.isNamed())
        return filter.names();
    roll.settle(kQuiet, kLongestListening);
    std::vector<std::string> names;
    for (const auto& [name, state] : roll.states())
        if (filter.accepts(name))
            names.push_back(name);
    return names;
}

void forEach(const std::vector<std::string>& names, std::size_t window, const std::function<bool(std::size_t index)>& act)
{
    std::atomic<std::size_t> next{0};
    std::atomic<bool> goesOn{true};
    std::mutex mutex;
    std::exception_ptr failure;
    const auto work = [&]
    {
        try
        {
            for (std::size_t index = next++; goesOn && index < names.size(); index = next++)
                if (!act(index))
                    goesOn = false;
        }
        catch (...)
        {
            goesOn = false;
            const std::lock_guard guard(mutex);
            failure = std::current_exception();
        }
    };
    std::vector<std::thread> others;
    for (std::size_t count = 1; count < std::min(window, names.size()); ++count)
        others.emplace_back(work);
    work();
    for (std::thread& other : others)
        other.join();
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace tarn::fleet
