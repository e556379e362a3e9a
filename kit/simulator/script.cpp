#include "script.h"

#include "base/quote.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

namespace tarn::simulator
{

std::vector<ScriptLine> parseScript(std::string_view text, const std::string& fileName)
{
    constexpr double kLatest = 1e9; // seconds
    std::vector<ScriptLine> lines;
    std::size_t number = 0;
    while (!text.empty())
    {
        const std::size_t length = std::min(text.find('\n'), text.size());
        const std::string line(text.substr(0, length));
        text.remove_prefix(std::min(length + 1, text.size()));
        ++number;
        const std::size_t begin = line.find_first_not_of(" \t\r");
        if (begin == std::string::npos || line[begin] == '#')
            continue;
        char* end = nullptr;
        const double seconds = std::strtod(line.c_str() + begin, &end);
        ScriptLine result;
        result.place = fileName + ":" + std::to_string(number);
        result.order = end;
        result.order.erase(0, result.order.find_first_not_of(" \t\r"));
        const bool isTime = seconds >= 0 && seconds <= kLatest;
        if (end == line.c_str() + begin || (*end != ' ' && *end != '\t') || !isTime || result.order.empty())
            throw std::runtime_error(result.place + ": " + base::inQuotes(line) +
                                     "; expected a time in seconds and an order, such as 60 radar 52");
        result.at = static_cast<Milliseconds>(std::llround(seconds * 1000));
        lines.push_back(std::move(result));
    }
    std::stable_sort(lines.begin(), lines.end(),
                     [](const ScriptLine& left, const ScriptLine& right) { return left.at < right.at; });
    return lines;
}

} // namespace tarn::simulator
