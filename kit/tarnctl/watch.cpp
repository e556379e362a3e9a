#include "watch.h"

#include "usage_error.h"
#include "wakeup.h"

#include <chrono>
#include <cmath>
#include <sstream>

namespace tarn::ctl
{

namespace
{

constexpr char kHome[] = "\x1b[H";
constexpr char kClearRestOfLine[] = "\x1b[K";
constexpr char kClearBelow[] = "\x1b[J";
constexpr char kClearAll[] = "\x1b[2J";

// Line by line over what is there, so that nothing flickers.
void showInPlace(const Console& console, const std::string& text, bool isFirst)
{
    console.out << (isFirst ? kClearAll : "") << kHome;
    for (const char character : text)
    {
        if (character == '\n')
            console.out << kClearRestOfLine;
        console.out << character;
    }
    console.out << kClearBelow << std::flush;
}

ExitCode showOnce(const Console& console, const std::function<ExitCode(const Console&)>& show)
{
    if (!console.terminal.showsResults || console.json || console.csv)
        return show(console);
    std::ostringstream text;
    Console frame(text, text); // remarks too, else they would stay between the lines
    frame.colours = console.colours;
    frame.terminal = console.terminal;
    const ExitCode exit = show(frame);
    showInPlace(console, text.str(), !console.repeats);
    return exit;
}

} // namespace

ExitCode watch(const Console& console, const WatchOptions& options, const std::function<ExitCode(const Console&)>& show)
{
    if (!options.seconds)
    {
        if (options.count)
            throw UsageError("--count: expected --watch SECONDS beside it");
        return show(console);
    }
    Console frame = console;
    frame.oneLine = true;
    const Wakeup wakeup;
    const StopSignals stop(wakeup);
    const auto period = std::chrono::milliseconds(std::llround(*options.seconds * 1000));
    auto next = std::chrono::steady_clock::now();
    const auto waitForNext = [&]
    {
        next += period;
        while (!stop.haveCome() && std::chrono::steady_clock::now() < next)
            wakeup.wait(next);
        return !stop.haveCome();
    };
    if (options.waitsFirst && !waitForNext())
        return ExitCode::kSuccess;
    for (std::uint32_t shown = 1;; ++shown)
    {
        const ExitCode exit = showOnce(frame, show);
        frame.repeats = true;
        if (exit != ExitCode::kSuccess && exit != ExitCode::kServiceStatus)
            return exit;
        if ((options.count && shown == *options.count) || !console.out)
            return exit;
        if (!waitForNext())
            return ExitCode::kSuccess;
    }
}

} // namespace tarn::ctl
