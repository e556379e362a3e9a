// One object of a JSON file, read key by key: what is missing, of the wrong kind or out of range, and what nobody has asked
// for, is an error that says where it stands and what was expected.
#pragma once

#include "base/mac_address.h"
#include "settings.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace tarn::simulator
{

using base::MacAddress;

using Json = nlohmann::ordered_json;

// Parses a text, in which no object may have a key twice. Throws ScenarioError.
Json parseJson(std::string_view text, const std::string& fileName);

class JsonSection
{
public:
    // `place` is the file's name and the path in it. Throws ScenarioError if the value is not an object.
    JsonSection(const Json& value, std::string place);

    bool has(const std::string& key) const;

    // Each leaves `target` as it is if the key is not there.
    void read(const std::string& key, std::uint32_t& target, std::uint32_t minimum, std::uint32_t maximum);
    void readSigned(const std::string& key, std::int32_t& target, std::int32_t minimum, std::int32_t maximum);
    void read(const std::string& key, bool& target);
    void read(const std::string& key, std::string& target, std::size_t longest);
    void read(const std::string& key, MacAddress& target);
    void read(const std::string& key, std::vector<MacAddress>& target, std::size_t most);
    void read(const std::string& key, std::vector<std::string>& target, std::size_t longest);
    void readSeconds(const std::string& key, std::uint64_t& milliseconds);

    // The sections of a list, and one section; none if the key is not there.
    std::vector<JsonSection> sections(const std::string& key);
    std::optional<JsonSection> section(const std::string& key);

    // The texts of an object, by their keys.
    void readTexts(const std::string& key, std::map<std::string, std::string>& target, std::size_t longest);

    void require(const std::string& key) const;

    // Takes the keys that have not been read yet as settings. To be called last: a key that is no setting is unknown.
    void readSettings(Settings& settings);
    // To be called last where there are no settings.
    void finish() const;

    [[noreturn]] void reject(const std::string& key, const std::string& expected) const;

private:
    // Notes that the key is known. Null if it is not there.
    const Json* take(const std::string& key);
    [[noreturn]] void rejectUnknown(const std::string& key, const Settings* settings) const;

    const Json* object_;
    std::string place_;
    std::vector<std::string> known_;
};

} // namespace tarn::simulator
