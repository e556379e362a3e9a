// The check against the schema itself: it must see what is wrong.
#include "schema.h"

#include <fstream>
#include <map>
#include <set>

#include <gtest/gtest.h>

namespace tarnctl_test
{

namespace
{

using Json = nlohmann::json;

Json publishedSchema()
{
    std::ifstream file(TARNCTL_SCHEMA);
    return Json::parse(file);
}

const Json kGood = {{"schema", "tarnctl/1"}, {"kind", "log-level"}, {"level", 4}};

bool isAllowed(const Json& document)
{
    return Schema(publishedSchema()).violations(document).empty();
}

Json with(const char* key, const Json& value)
{
    Json document = kGood;
    document[key] = value;
    return document;
}

TEST(SchemaTest, SeesWhatIsWrong)
{
    EXPECT_TRUE(isAllowed(kGood));
    EXPECT_FALSE(isAllowed(Json::object()));
    EXPECT_FALSE(isAllowed(Json::array()));
    EXPECT_FALSE(isAllowed(with("schema", "tarnctl/2")));
    EXPECT_FALSE(isAllowed(with("kind", "loglevel")));
    EXPECT_FALSE(isAllowed(with("kind", "mirror")));
    EXPECT_FALSE(isAllowed(with("level", "4")));
    EXPECT_FALSE(isAllowed(with("level", -1)));
    EXPECT_FALSE(isAllowed(with("level", 4294967296)));
    EXPECT_FALSE(isAllowed(with("level", 1.5)));
    EXPECT_FALSE(isAllowed(with("more", 1)));
    Json without = kGood;
    without.erase("level");
    EXPECT_FALSE(isAllowed(without));
}

TEST(SchemaTest, SeesWhatIsWrongDeepInside)
{
    const Json event = {{"schema", "tarnctl/1"}, {"kind", "event"},  {"time", "2026-01-02T03:04:05.678Z"},
                        {"service", "TARN"},     {"event", 1},       {"name", "EVT_RADIO_STATUS_CHANGED"},
                        {"data", "00ff"},        {"layout", nullptr}};
    EXPECT_TRUE(isAllowed(event));
    for (const char* wrong : {"0", "0g", "FF"})
    {
        Json document = event;
        document["data"] = wrong;
        EXPECT_FALSE(isAllowed(document)) << wrong;
    }
    Json document = event;
    document["time"] = "today";
    EXPECT_FALSE(isAllowed(document));
}

// A keyword of draft 7, and a document that violates it.
struct Violated
{
    Json schema;
    Json document;
};

const std::map<std::string, Violated> kViolated = {
    {"additionalProperties", {{{"additionalProperties", false}}, {{"a", 1}}}},
    {"const", {{{"const", "a"}}, "b"}},
    {"enum", {{{"enum", {1, 2}}}, 3}},
    {"items", {{{"items", {{"type", "string"}}}}, Json::array({"a", 1})}},
    {"maximum", {{{"maximum", 4294967295}}, 4294967296}},
    {"minimum", {{{"minimum", 0}}, -1}},
    {"oneOf", {{{"oneOf", Json::array({Json{{"type", "integer"}}, Json{{"minimum", 0}}})}}, 1}},
    {"pattern", {{{"pattern", "^[a-z]$"}}, "A"}},
    {"properties", {{{"properties", {{"a", {{"type", "string"}}}}}}, {{"a", 1}}}},
    {"required", {{{"required", {"a"}}}, {{"b", 1}}}},
    {"type", {{{"type", {"string", "null"}}}, 1}},
    {"$ref", {{{"$ref", "#/definitions/a"}, {"definitions", {{"a", {{"type", "string"}}}}}}, 1}},
};

TEST(SchemaTest, EveryKeywordIsChecked)
{
    for (const auto& [keyword, violated] : kViolated)
        EXPECT_FALSE(Schema(violated.schema).violations(violated.document).empty()) << keyword;
}

void collectKeywords(const Json& schema, std::set<std::string>& keywords)
{
    for (const auto& [keyword, value] : schema.items())
    {
        keywords.insert(keyword);
        if (keyword == "properties" || keyword == "definitions" || keyword == "oneOf")
            for (const Json& part : value)
                collectKeywords(part, keywords);
        else if (value.is_object())
            collectKeywords(value, keywords);
    }
}

// A keyword that the library does not know, a misspelt one for instance, it passes over in silence.
TEST(SchemaTest, KnowsEveryKeywordOfTheSchema)
{
    std::set<std::string> keywords;
    collectKeywords(publishedSchema(), keywords);
    for (const char* annotation : {"$schema", "title", "description", "definitions"})
        keywords.erase(annotation);
    for (const std::string& keyword : keywords)
        EXPECT_EQ(kViolated.count(keyword), 1u) << keyword;
    EXPECT_EQ(keywords.size(), kViolated.size());
}

} // namespace

} // namespace tarnctl_test
