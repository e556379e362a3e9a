#include "json_reader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include <nlohmann/json.hpp>

namespace tarn::base
{

namespace
{

using Json = nlohmann::ordered_json;
using Members = std::vector<Json::object_t::value_type>; // what an ordered_map is made of

// Nothing is nested as deep as this, and what handles a value by recursion needs a limit.
constexpr std::size_t kDeepest = 100;

constexpr std::size_t kUsualMembers = 8;

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

// Makes a document of what the parser finds, and refuses what the parser lets pass: a key that is given twice, and any depth.
class Builder : public nlohmann::json_sax<Json>
{
public:
    Builder(std::string_view text, const std::string& fileName) : text_(text), fileName_(fileName)
    {
    }

    Json take()
    {
        return std::move(root_);
    }

    bool null() override
    {
        return put(nullptr);
    }

    bool boolean(bool value) override
    {
        return put(value);
    }

    bool number_integer(std::int64_t value) override
    {
        return put(value);
    }

    bool number_unsigned(std::uint64_t value) override
    {
        return put(value);
    }

    bool number_float(double value, const std::string&) override
    {
        return put(value);
    }

    bool string(std::string& value) override
    {
        return put(std::move(value));
    }

    bool binary(Json::binary_t& value) override
    {
        return put(std::move(value));
    }

    bool start_object(std::size_t) override
    {
        return open(Json::object());
    }

    bool start_array(std::size_t) override
    {
        return open(Json::array());
    }

    bool key(std::string& value) override
    {
        levels_.back().key = std::move(value);
        if (levels_.back().container->contains(levels_.back().key))
            here().fail("given twice", "once");
        return true;
    }

    bool end_object() override
    {
        return close();
    }

    bool end_array() override
    {
        return close();
    }

    bool parse_error(std::size_t, const std::string&, const Json::exception& error) override
    {
        throw JsonError(fileName_ + ":" + placeOf(error, text_) + " not JSON: " + reasonOf(error));
    }

private:
    struct Level
    {
        Json* container;
        std::string key; // of an object, the latest one
    };

    Json* add(Json value)
    {
        if (levels_.empty())
            return &(root_ = std::move(value));
        Level& level = levels_.back();
        if (level.container->is_array())
            return &level.container->emplace_back(std::move(value));
        // Not as an ordered_map, which would look for the key once more.
        Members& members = level.container->get_ref<Json::object_t&>();
        makeRoom(members);
        return &members.emplace_back(std::move(level.key), std::move(value)).second;
    }

    // For one more. A vector that has no room left would copy its members with all that is in them, as keys are constant.
    static void makeRoom(Members& members)
    {
        if (members.size() < members.capacity())
            return;
        Members larger;
        larger.reserve(std::max(kUsualMembers, 2 * members.size()));
        for (auto& [key, value] : members)
            larger.emplace_back(key, std::move(value));
        members = std::move(larger);
    }

    bool put(Json value)
    {
        add(std::move(value));
        return true;
    }

    bool open(Json container)
    {
        if (levels_.size() == kDeepest)
            here().fail("a value in " + std::to_string(kDeepest) + " others", "less");
        levels_.push_back({add(std::move(container)), {}});
        return true;
    }

    bool close()
    {
        levels_.pop_back();
        return true;
    }

    // Of what comes next in the innermost container.
    JsonPlace here() const
    {
        const JsonPlace document(root_, fileName_);
        const auto& [container, key] = levels_.back();
        return container->is_array() ? document.element(*container, container->size()) : document.member(*container, key);
    }

    const std::string_view text_;
    const std::string& fileName_;
    Json root_;
    std::vector<Level> levels_;
};

} // namespace

struct JsonDocument::Contents
{
    Json json;
    std::string fileName;
};

JsonDocument::JsonDocument(Json json, std::string fileName)
    : contents_(std::make_unique<const Contents>(Contents{std::move(json), std::move(fileName)}))
{
}

JsonDocument::~JsonDocument() = default;
JsonDocument::JsonDocument(JsonDocument&&) noexcept = default;
JsonDocument& JsonDocument::operator=(JsonDocument&&) noexcept = default;

JsonValue JsonDocument::root() const
{
    return JsonValue(&contents_->json, JsonPlace(contents_->json, contents_->fileName));
}

JsonDocument parseJson(std::string_view text, const std::string& fileName)
{
    Builder builder(text, fileName);
    Json::sax_parse(text, &builder);
    return JsonDocument(builder.take(), fileName);
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
