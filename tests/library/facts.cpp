#include "facts.h"

#include <fstream>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace facts
{
namespace
{

std::set<std::string> matches(const std::string& text, const std::string& pattern)
{
    std::set<std::string> found;
    const std::regex regex(pattern);
    for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match)
        found.insert((*match)[1]);
    return found;
}

// The names that nm printed with one of these type letters.
std::set<std::string> namesOfTypes(const std::string& file, const std::string& types)
{
    std::set<std::string> names;
    for (const std::string& line : linesOf(std::string(FACTS_DIRECTORY) + "/" + file))
    {
        std::istringstream words(line);
        std::vector<std::string> columns;
        for (std::string word; words >> word;)
            columns.push_back(word);
        if (columns.size() < 2)
            continue;
        const std::string& type = columns[columns.size() - 2];
        if (type.size() == 1 && types.find(type) != std::string::npos)
            names.insert(columns.back().substr(0, columns.back().find('@')));
    }
    return names;
}

} // namespace

std::string readFile(const std::string& path)
{
    std::ifstream file(path);
    if (!file)
        throw std::runtime_error("cannot read " + path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::vector<std::string> linesOf(const std::string& path)
{
    std::istringstream text(readFile(path));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

std::set<std::string> declaredNames()
{
    std::set<std::string> names;
    for (const char* header : {"/frame/tarn_frame.h", "/tarn_api/tarn_api.h", "/tarn_qtn_monitor_api/tarn_qtn_monitor_api.h"})
        names.merge(matches(readFile(std::string(SOURCE_DIRECTORY) + header), "\nTARN_EXPORT [\\w *]*?(\\w+)\\("));
    return names;
}

std::set<std::string> scriptedNames()
{
    return matches(readFile(std::string(SOURCE_DIRECTORY) + "/libtarn.map"), "(?:^|\n) +(\\w+);");
}

std::set<std::string> exportedNames()
{
    return namesOfTypes("exported.txt", "TDBRVW");
}

std::set<std::string> undefinedNames()
{
    return namesOfTypes("undefined.txt", "U");
}

std::set<std::string> neededLibraries()
{
    return matches(readFile(std::string(FACTS_DIRECTORY) + "/needed.txt"), "NEEDED +(\\S+)");
}

std::uint64_t sizeOfSections(const std::string& prefix)
{
    std::uint64_t total = 0;
    for (const std::string& line : linesOf(std::string(FACTS_DIRECTORY) + "/sections.txt"))
    {
        std::istringstream words(line);
        std::string index;
        std::string name;
        std::string size;
        if (words >> index >> name >> size && name.compare(0, prefix.size(), prefix) == 0)
            total += std::stoull(size, nullptr, 16);
    }
    return total;
}

} // namespace facts
