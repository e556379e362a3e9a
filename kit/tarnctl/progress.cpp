#include "progress.h"

#include <algorithm>
#include <utility>

namespace tarn::ctl
{

namespace
{

constexpr std::size_t kBarWidth = 24;

// Full up to what is done; in the rest one mark moves, to show that there is life.
std::string bar(std::size_t done, std::size_t total, std::size_t time)
{
    const std::size_t full = total == 0 ? kBarWidth : std::min(done, total) * kBarWidth / total;
    std::string text = std::string(full, '#') + std::string(kBarWidth - full, '.');
    if (full < kBarWidth)
        text[full + time % (kBarWidth - full)] = '>';
    return text;
}

} // namespace

Progress::Progress(const Console& console, std::string what) : console_(console), what_(std::move(what))
{
}

Progress::~Progress()
{
    if (shown_ != 0)
        console_.err << "\r\x1b[K" << std::flush;
}

void Progress::show(std::size_t done, std::size_t total, const std::string& unit)
{
    if (!console_.terminal.showsRemarks)
        return;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start_).count();
    console_.err << '\r' << what_ << "  [" << bar(done, total, shown_++) << "] " << done << " of " << total << ' ' << unit
                 << "  " << seconds << " s\x1b[K" << std::flush;
}

} // namespace tarn::ctl
