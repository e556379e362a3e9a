#include "function_lines.h"

#include <fstream>
#include <map>
#include <regex>
#include <stdexcept>

namespace conformance
{
namespace
{

using Definitions = std::map<std::string, FunctionLines>;

// In the library's format a definition begins at the start of a line, with the type that all its functions return, and ends
// with a brace that is alone on its line.
void addDefinitions(const std::string& unit, Definitions& definitions)
{
    const std::regex start("u?int32_t (\\w+)\\(.*");
    std::ifstream file(std::string(SOURCE_DIRECTORY) + "/" + unit);
    if (!file)
        throw std::runtime_error("cannot read " + unit);

    std::string function;
    std::uint32_t first = 0;
    std::uint32_t number = 0;
    for (std::string line; std::getline(file, line);)
    {
        ++number;
        std::smatch match;
        if (std::regex_match(line, match, start))
        {
            function = match[1];
            first = number;
        }
        else if (line == "}" && !function.empty())
        {
            definitions.insert({function, {first, number}});
            function.clear();
        }
    }
}

Definitions readDefinitions()
{
    Definitions definitions;
    for (const char* unit : {"frame/events.cpp", "tarn_api/tarn_api.cpp", "tarn_qtn_monitor_api/tarn_qtn_monitor_api.cpp"})
        addDefinitions(unit, definitions);
    return definitions;
}

} // namespace

const FunctionLines& linesOf(const std::string& function)
{
    static const Definitions definitions = readDefinitions();
    const auto found = definitions.find(function);
    if (found == definitions.end())
        throw std::runtime_error("no unit of the library defines " + function);
    return found->second;
}

} // namespace conformance
