#include "json_reader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>

#include <nlohmann/json.hpp>

namespace tarn::base
{

namespace
{

using Json = nlohmann::ordered_json;

// Nothing is nested as deep as this, and what handles a value by recursion needs a limit.
constexpr std::size_t kDeepest = 100;

// Follows the parser, for what it lets pass: a key that is given twice, and any depth.
class Watch
{
public:
    explicit Watch(const std::string& fileName) : place_(fileName)
    {
    }

    bool operator()(int, Json::parse_event_t event, const Json& parsed)
    {
        switch (event)
        {
        case Json::parse_event_t::object_start:
        case Json::parse_event_t::array_start:
            open(event == Json::parse_event_t::array_start);
            break;
        case Json::parse_event_t::key:
            levels_.back().key = parsed.get<std::string>();
            if (!levels_.back().keys.insert(levels_.back().key).second)
                here().fail("given twice", "once");
            break;
        case Json::parse_event_t::object_end:
        case Json::parse_event_t::array_end:
            levels_.pop_back();
            next();
            break;
        case Json::parse_event_t::value:
            next();
            break;
        }
        return true;
    }

private:
    struct Level
    {
        bool isArray;
        std::size_t index;
        std::string key;
        std::set<std::string> keys;
    };

    void open(bool isArray)
    {
        if (levels_.size() == kDeepest)
            here().fail("a value in " + std::to_string(kDeepest) + " others", "less");
        levels_.push_back({isArray, 0, {}, {}});
    }

    void next()
    {
        if (!levels_.empty())
            ++levels_.back().index;
    }

    JsonPlace here() const
    {
        JsonPlace place = place_;
        for (const Level& level : levels_)
            place = level.isArray ? place.element(level.index) : place.member(level.key);
        return place;
    }

    JsonPlace place_;
    std::vector<Level> levels_;
};

// What the parser says, less its own name and its own way to tell the place.
std::string reasonOf(const Json::exception& error)
{
    std::string reason = error.what();
    reason.erase(0, reason.find("] ") + 2);
    if (reason.rfind("parse error", 0) == 0)
        reason.erase(0, reason.find(": ") + 2);
    return reason;
}

// " line 3, byte 57:", where the parser says so.
std::string placeOf(const Json::exception& error, std::string_view text)
{
    const auto* const parseError = dynamic_cast<const Json::parse_error*>(&error);
    if (parseError == nullptr)
        return "";
    const std::size_t end = std::min(parseError->byte, text.size());
    const auto line = 1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end), '\n');
    return " line " + std::to_string(line) + ", byte " + std::to_string(parseError->byte) + ":";
}

} // namespace

JsonDocument::JsonDocument(std::unique_ptr<const Json> json, std::string fileName)
    : json_(std::move(json)), fileName_(std::move(fileName))
{
}

JsonDocument::~JsonDocument() = default;
JsonDocument::JsonDocument(JsonDocument&&) noexcept = default;
JsonDocument& JsonDocument::operator=(JsonDocument&&) noexcept = default;

JsonValue JsonDocument::root() const
{
    return JsonValue(json_.get(), JsonPlace(fileName_));
}

JsonDocument parseJson(std::string_view text, const std::string& fileName)
{
    try
    {
        return JsonDocument(std::make_unique<const Json>(Json::parse(text, Watch(fileName))), fileName);
    }
    catch (const Json::exception& error)
    {
        throw JsonError(fileName + ":" + placeOf(error, text) + " not JSON: " + reasonOf(error));
    }
}

std::string readText(const std::string& path, const std::string& expected)
{
    errno = 0;
    const std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (!(text << file.rdbuf()) && errno != 0)
        throw JsonError(path + ": cannot be read: " + std::strerror(errno) + "; expected " + expected);
    return text.str();
}

JsonDocument readJson(const std::string& path, const std::string& expected)
{
    return parseJson(readText(path, expected), path);
}

} // namespace tarn::base
