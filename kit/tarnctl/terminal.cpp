#include "terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <string_view>

namespace tarn::ctl
{

namespace
{

std::string_view environment(const char* name)
{
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

bool localeIsUtf8()
{
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"})
        if (const std::string_view locale = environment(name); !locale.empty())
            return locale.find("UTF-8") != std::string_view::npos || locale.find("utf8") != std::string_view::npos;
    return false;
}

} // namespace

Terminal terminalOfProcess()
{
    Terminal terminal;
    terminal.showsResults = isatty(STDOUT_FILENO) == 1;
    terminal.showsRemarks = isatty(STDERR_FILENO) == 1;
    terminal.obeysColours = environment("NO_COLOR").empty() && environment("TERM") != "dumb";
    terminal.knowsUtf8 = localeIsUtf8();
    winsize size = {};
    if (ioctl(terminal.showsResults ? STDOUT_FILENO : STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0)
        terminal.width = size.ws_col;
    return terminal;
}

} // namespace tarn::ctl
