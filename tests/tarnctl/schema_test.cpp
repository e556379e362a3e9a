// The check against the schema itself: it must see what is wrong.
#include "schema.h"

#include <fstream>

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
    return schemaComplaints(document, publishedSchema()).empty();
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
    const Json event = {{"schema", "tarnctl/1"}, {"kind", "event"}, {"time", "2026-01-02T03:04:05.678Z"},
                        {"service", "TARN"},     {"event", 1},      {"name", "EVT_RADIO_STATUS_CHANGED"},
                        {"data", "00ff"}};
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

TEST(SchemaTest, KnowsEveryKeywordOfTheSchema)
{
    EXPECT_FALSE(schemaComplaints(1, Json{{"multipleOf", 2}}).empty());
}

} // namespace

} // namespace tarnctl_test
