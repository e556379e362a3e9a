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
        open(Json::object());
        // Members are moved one by one when there is no room for the next one, their keys copied.
        std::vector<Json::object_t::value_type>& members = levels_.back().container->get_ref<Json::object_t&>();
        members.reserve(kUsualMembers);
        return true;
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
        // Not emplace, which would look for the key once more.
        std::vector<Json::object_t::value_type>& members = level.container->get_ref<Json::object_t&>();
        return &members.emplace_back(level.key, std::move(value)).second;
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

    JsonPlace here() const
    {
        JsonPlace place(fileName_);
        for (const Level& level : levels_)
        {
            const bool isOpenElement = level.container->is_array() && &level != &levels_.back();
            place = level.container->is_array() ? place.element(level.container->size() - (isOpenElement ? 1 : 0))
                                                : place.member(level.key);
        }
        return place;
    }

    const std::string_view text_;
    const std::string& fileName_;
    Json root_;
    std::vector<Level> levels_;
};

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
    Builder builder(text, fileName);
    Json::sax_parse(text, &builder);
    return JsonDocument(std::make_unique<const Json>(builder.take()), fileName);
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
