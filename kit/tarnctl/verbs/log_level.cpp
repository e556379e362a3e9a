// `tarnctl log-level`: how much the device service writes to its log.
#include "tarnctl/listing.h"
#include "tarnctl/verbs/verbs.h"

namespace tarn::ctl
{

namespace
{

struct LogLevelOptions
{
    std::optional<std::string> level; // to set
};

void declareLogLevel(Syntax& syntax, LogLevelOptions& options)
{
    syntax.text("LEVEL", options.level, "The level to set");
}

ExitCode logLevel(const Console& console, const LogLevelOptions& options)
{
    const std::int64_t level = options.level
                                   ? performOrFail("TarnSetLogLevel", {"level=" + *options.level}).argument("level").number
                                   : performOrFail("TarnGetLogLevel").number("level");
    Page page("log-level");
    page.value("level", numberCell(level), "log level");
    page.writeUndecoded(console);
    return ExitCode::kSuccess;
}

} // namespace

void addLogLevel(Verbs& verbs)
{
    verbs.add("log-level", "Reads or sets the device service's log level", &declareLogLevel, &logLevel);
}

} // namespace tarn::ctl
