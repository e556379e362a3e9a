// Layout files that are refused, each with the place and what was expected there.
#include "base/json_reader.h"
#include "layout/layout.h"

#include <nlohmann/json.hpp>

#include <string>

#include <gtest/gtest.h>

namespace
{

using Json = nlohmann::ordered_json;
using tarn::layout::FieldPlace;
using tarn::layout::Layout;
using tarn::layout::parse;

constexpr char kSound[] = R"({
  "layout": 1, "name": "attic", "version": "3", "owner": "nobody",
  "values": { "switch": { "off": 0, "on": 1 }, "far": { "away": 70000 } },
  "records": {
    "TarnAccessPointWpsCfg": { "size": 28, "fields": [
      { "name": "enabled", "offset": 0, "size": 1, "type": "number", "values": "switch" },
      { "name": "level", "offset": 2, "size": 2, "type": "signed", "unit": "dBm", "values": { "floor": -95 } },
      { "name": "pin", "offset": 4, "size": 9, "type": "text", "texts": ["none"] },
      { "name": "peers", "offset": 13, "type": "array", "count": 2, "count_field": "enabled",
        "element": { "type": "mac address" } },
      { "name": "modes", "offset": 25, "size": 1, "type": "number", "flags": { "fast": 0 } }
    ] }
  },
  "blocks": { "tarn_qcsapi_get_cca_stats.stats": { "size": 20, "fields": [
      { "name": "busy", "offset": 0, "type": "array", "count": 5, "stride": 4, "fields": [
        { "name": "share", "offset": 0, "size": 2, "type": "number" } ] } ] } },
  "events": { "EVT_RADIO_STATUS_CHANGED": { "size": 6, "fields": [
      { "name": "radio", "offset": 1, "size": 4, "type": "number" } ] } },
  "arguments": { "TarnGetRadioNeighboringStatus.status": { "values": { "idle": 3 } } },
  "selections": { "TarnSetAccessPointWpsCfg.value": { "selects": "cfg", "bits": { "enabled": 3, "pin": 0 } } },
  "statuses": [
    { "number": 5, "name": "LATE", "text": "too late", "services": ["TARN"] },
    { "number": -5, "name": "LATE", "text": "too late", "services": ["QTN_RPC_PROXY"] } ]
})";

std::string errorOf(const Json& document)
{
    try
    {
        parse(document.dump(), "attic.json");
    }
    catch (const tarn::base::JsonError& error)
    {
        return error.what();
    }
    return "accepted";
}

TEST(LayoutFile, IsReadAsItIsWritten)
{
    const Layout layout = parse(kSound, "attic.json");
    EXPECT_EQ(layout.title(), "attic 3 (nobody)");
    const tarn::layout::Structure& record = *layout.record("TarnAccessPointWpsCfg");
    EXPECT_EQ(record.size, 28u);
    ASSERT_EQ(record.fields.size(), 5u);
    EXPECT_EQ(record.fields[0].meaning.values->name, "switch");
    EXPECT_EQ(record.fields[1].meaning.values->find(-95)->name, "floor");
    EXPECT_EQ(record.fields[3].size, 12u);
    EXPECT_EQ(record.fields[3].stride, 6u);
    EXPECT_EQ(record.place("peers[1]").value_or(FieldPlace()).offset, 19u);
    const tarn::layout::Structure& block = *layout.block("tarn_qcsapi_get_cca_stats.stats");
    EXPECT_EQ(block.place("busy[4].share").value_or(FieldPlace()).offset, 16u);
    EXPECT_EQ(layout.event("EVT_RADIO_STATUS_CHANGED")->field("radio")->offset, 1u);
    EXPECT_EQ(layout.meaningOf("TarnGetRadioNeighboringStatus", "status")->values->find("idle")->value, 3);
    EXPECT_EQ(layout.selectionOf("TarnSetAccessPointWpsCfg", "cfg")->bit("enabled"), 3u);
    EXPECT_EQ(layout.status("TARN", 5)->name, "LATE");
    EXPECT_EQ(layout.status("QTN_RPC_PROXY", 0xFFFFFFFBu)->text, "too late");
    EXPECT_EQ(layout.status("QTN_MIRROR", 5), nullptr);
}

TEST(LayoutFile, LeadsToNoPlaceWhereThereIsNone)
{
    const Layout layout = parse(kSound, "attic.json");
    const tarn::layout::Structure& record = *layout.record("TarnAccessPointWpsCfg");
    const tarn::layout::Structure& block = *layout.block("tarn_qcsapi_get_cca_stats.stats");
    for (const char* path :
         {"", "peer", "peers[2]", "peers[-1]", "peers[", "peers[]", "peers[0", "peers[0].x", "pin[0]", "peers]"})
        EXPECT_FALSE(record.place(path)) << path;
    for (const char* path : {"busy[0]", "busy[0].", "busy[0].shares", "busy[0]share"})
        EXPECT_FALSE(block.place(path)) << path;
}

struct Broken
{
    const char* pointer;  // what is replaced; removed if there is no value, added if it is not there
    const char* value;    // JSON, or null
    const char* expected; // the error behind the file's name
};

const Broken kBroken[] = {
    {"/layout", "2", "/layout: 2; expected 1"},
    {"/name", R"("")", "/name: \"\"; expected a text of 1 to 64 characters"},
    {"/version", nullptr, "/version: missing; expected a text of 1 to 64 characters"},
    {"/owner", "7", "/owner: 7; expected a text of 1 to 256 characters"},
    {"/record", "{}",
     "/record: unknown key (did you mean records?); expected one of $schema, layout, name, version, "
     "owner, description, values, records, blocks, events, arguments, selections, statuses"},
    {"/values/switch/off", "1", "/values/switch/on: 1; expected a number that is not already named off"},
    {"/values/switch/ON", "2",
     "/values/switch/ON: the name ON; expected one that differs from the earlier ones in more than letter "
     "case and underscores"},
    {"/values/switch", "{}", "/values/switch: {}; expected at least one name with its number"},
    {"/records/TarnAccessPointWpsConfig", "{}",
     "/records/TarnAccessPointWpsConfig: unknown record (did you mean TarnAccessPointWpsCfg?); expected "
     "one of the contract's"},
    {"/records/TarnAccessPointWpsCfg/size", "32",
     "/records/TarnAccessPointWpsCfg/size: 32; expected 28, the contract's size of TarnAccessPointWpsCfg"},
    {"/records/TarnAccessPointWpsCfg/fields", "[]",
     "/records/TarnAccessPointWpsCfg/fields: []; expected a list of at least 1 objects"},
    {"/records/TarnAccessPointWpsCfg/fields/1/offset", "0",
     "/records/TarnAccessPointWpsCfg/fields/1/offset: 0; expected a field of 2 bytes that begins at 1 or "
     "later, behind the one before it, and ends within the 28 bytes"},
    {"/records/TarnAccessPointWpsCfg/fields/4/offset", "28",
     "/records/TarnAccessPointWpsCfg/fields/4/offset: 28; expected a field of 1 bytes that begins at 25 "
     "or later, behind the one before it, and ends within the 28 bytes"},
    {"/records/TarnAccessPointWpsCfg/fields/2/offset", "5",
     "/records/TarnAccessPointWpsCfg/fields/3/offset: 13; expected a field of 12 bytes that begins at 14 "
     "or later, behind the one before it, and ends within the 28 bytes"},
    {"/records/TarnAccessPointWpsCfg/fields/0/name", R"("on-off")",
     "/records/TarnAccessPointWpsCfg/fields/0/name: \"on-off\"; expected a name of letters, digits and "
     "underscores"},
    {"/records/TarnAccessPointWpsCfg/fields/1/name", R"("Enabled")",
     "/records/TarnAccessPointWpsCfg/fields/1/name: \"Enabled\"; expected a name that differs from those of "
     "the earlier fields in more than letter case and underscores"},
    {"/records/TarnAccessPointWpsCfg/fields/0/type", R"("word")",
     "/records/TarnAccessPointWpsCfg/fields/0/type: \"word\"; expected one of number, signed, text, mac "
     "address, bytes, array"},
    {"/records/TarnAccessPointWpsCfg/fields/0/size", "3",
     "/records/TarnAccessPointWpsCfg/fields/0/size: 3; expected a number of 1, 2, 4 or 8 bytes"},
    {"/records/TarnAccessPointWpsCfg/fields/0/units", R"("MHz")",
     "/records/TarnAccessPointWpsCfg/fields/0/units: unknown key (did you mean unit?); expected one of "
     "name, type, offset, size, description, texts, unit, values, flags"},
    {"/records/TarnAccessPointWpsCfg/fields/0/values", R"("swich")",
     "/records/TarnAccessPointWpsCfg/fields/0/values: \"swich\"; expected an object of names and numbers, "
     "or one of \"values\": far, switch"},
    {"/records/TarnAccessPointWpsCfg/fields/0/values", R"("far")",
     "/records/TarnAccessPointWpsCfg/fields/0/values: \"far\"; expected values from 0 to 255, and away is "
     "70000"},
    {"/records/TarnAccessPointWpsCfg/fields/1/values/floor", "-32769",
     "/records/TarnAccessPointWpsCfg/fields/1/values/floor: -32769; expected an integer from -32768 to "
     "32767"},
    {"/records/TarnAccessPointWpsCfg/fields/2/unit", R"("characters")",
     "/records/TarnAccessPointWpsCfg/fields/2/unit: \"characters\"; expected no such key, as this is no "
     "number"},
    {"/records/TarnAccessPointWpsCfg/fields/1/texts", R"(["x"])",
     "/records/TarnAccessPointWpsCfg/fields/1/texts: [\"x\"]; expected no such key, as this is no text"},
    {"/records/TarnAccessPointWpsCfg/fields/2/texts", R"(["none", "none"])",
     "/records/TarnAccessPointWpsCfg/fields/2/texts/1: \"none\"; expected a text that is not already in the "
     "list"},
    {"/records/TarnAccessPointWpsCfg/fields/3/count_field", R"("level")",
     "/records/TarnAccessPointWpsCfg/fields/3/count_field: \"level\"; expected the name of an earlier field "
     "that is a number"},
    {"/records/TarnAccessPointWpsCfg/fields/3/ends_with_zero", "true",
     "/records/TarnAccessPointWpsCfg/fields/3/count_field: \"enabled\"; expected no such key, as "
     "\"ends_with_zero\" says how many elements are in use"},
    {"/records/TarnAccessPointWpsCfg/fields/3/size", "12",
     "/records/TarnAccessPointWpsCfg/fields/3/size: 12; expected no such key, as \"count\" and the size of "
     "the elements say it"},
    {"/records/TarnAccessPointWpsCfg/fields/3/element/size", "6",
     "/records/TarnAccessPointWpsCfg/fields/3/element/size: 6; expected no such key, as a MAC address "
     "always has 6 bytes"},
    {"/records/TarnAccessPointWpsCfg/fields/3/element/type", R"("array")",
     "/records/TarnAccessPointWpsCfg/fields/3/element/type: \"array\"; expected a type other than array "
     "within an array"},
    {"/records/TarnAccessPointWpsCfg/fields/3/stride", "5",
     "/records/TarnAccessPointWpsCfg/fields/3/stride: 5; expected an integer from 6 to 65536"},
    {"/records/TarnAccessPointWpsCfg/fields/3/count", "20000",
     "/records/TarnAccessPointWpsCfg/fields/3/count: 20000; expected elements of 6 bytes that take at "
     "most 65536"},
    {"/records/TarnAccessPointWpsCfg/fields/4/flags/fast", "8",
     "/records/TarnAccessPointWpsCfg/fields/4/flags/fast: 8; expected an integer from 0 to 7"},
    {"/records/TarnAccessPointWpsCfg/fields/4/flags/slow", "0",
     "/records/TarnAccessPointWpsCfg/fields/4/flags/slow: 0; expected a bit that is not already named fast"},
    {"/records/TarnAccessPointWpsCfg/fields/4/values", R"("switch")",
     "/records/TarnAccessPointWpsCfg/fields/4/flags: {\"fast\":0}; expected no such key, as \"values\" names "
     "the numbers"},
    {"/blocks/tarn_qcsapi_get_cca_stats", "{}",
     "/blocks/tarn_qcsapi_get_cca_stats: the name tarn_qcsapi_get_cca_stats; expected FUNCTION.ARGUMENT"},
    {"/blocks/tarn_qcsapi_get_cca_stat.stats", "{}",
     "/blocks/tarn_qcsapi_get_cca_stat.stats: unknown function (did you mean "
     "tarn_qcsapi_get_cca_stats.stats?); expected one of the contract's"},
    {"/blocks/tarn_qcsapi_get_cca_stats.statistics", "{}",
     "/blocks/tarn_qcsapi_get_cca_stats.statistics: unknown argument (did you mean "
     "tarn_qcsapi_get_cca_stats.stats?); expected one of the contract's"},
    {"/blocks/tarn_qcsapi_get_cca_stats.ifname", "{}",
     "/blocks/tarn_qcsapi_get_cca_stats.ifname: {}; expected an argument of bytes, or of several words, "
     "whose size the contract says"},
    {"/blocks/tarn_qcsapi_wifi_get_rates.rates", "{}",
     "/blocks/tarn_qcsapi_wifi_get_rates.rates: {}; expected an argument of bytes, or of several words, "
     "whose size the contract says"},
    {"/blocks/tarn_qcsapi_get_cca_stats.stats/fields/0/fields/0/size", "8",
     "/blocks/tarn_qcsapi_get_cca_stats.stats/fields/0/fields/0/offset: 0; expected a field of 8 bytes "
     "that begins at 0 or later, behind the one before it, and ends within the 4 bytes"},
    {"/events/EVT_RADIO_STATUS", "{}",
     "/events/EVT_RADIO_STATUS: unknown event (did you mean EVT_RADIO_STATUS_CHANGED?); expected one of "
     "the contract's"},
    {"/events/EVT_RADIO_STATUS_CHANGED/fields/0/offset", "3",
     "/events/EVT_RADIO_STATUS_CHANGED/fields/0/offset: 3; expected a field of 4 bytes that begins at 0 "
     "or later, behind the one before it, and ends within the 6 bytes"},
    {"/arguments/TarnGetRadio.data", "{}", "/arguments/TarnGetRadio.data: {}; expected an argument that is a number or a text"},
    {"/arguments/TarnGetRadioNeighboringStatus.status", R"({ "texts": ["idle"] })",
     "/arguments/TarnGetRadioNeighboringStatus.status/texts: [\"idle\"]; expected no such key, as this is "
     "no text"},
    {"/selections/TarnGetRadioNum.number", "{}", "/selections/TarnGetRadioNum.number: {}; expected an input that is a number"},
    {"/selections/TarnSetAccessPointWpsCfg.value/selects", R"("apId")",
     "/selections/TarnSetAccessPointWpsCfg.value/selects: \"apId\"; expected an input of "
     "TarnSetAccessPointWpsCfg whose fields this layout describes"},
    {"/selections/TarnSetAccessPointWpsCfg.radioId", R"({ "selects": "cfg", "bits": { "pin": 1 } })",
     "/selections/TarnSetAccessPointWpsCfg.radioId/selects: \"cfg\"; expected an argument whose fields no "
     "other one selects"},
    {"/selections/TarnSetAccessPointWpsCfg.value/bits/pin", "3",
     "/selections/TarnSetAccessPointWpsCfg.value/bits/pin: 3; expected a bit that is not already named "
     "enabled"},
    {"/selections/TarnSetAccessPointWpsCfg.value/bits/ssid", "4",
     "/selections/TarnSetAccessPointWpsCfg.value/bits/ssid: no field ssid; expected one of enabled, "
     "level, pin, peers, modes"},
    {"/selections/TarnSetAccessPointWpsCfg.value/bits/pin", "32",
     "/selections/TarnSetAccessPointWpsCfg.value/bits/pin: 32; expected an integer from 0 to 31"},
    {"/selections/TarnSetAccessPointWpsCfg.value/zero_is_all", "false",
     "/selections/TarnSetAccessPointWpsCfg.value/zero_is_all: false; expected true, or no such key"},
    {"/statuses/1", R"({ "number": 5, "name": "EARLY", "text": "too early" })",
     "/statuses/1/number: 5; expected a number that TARN does not already have, for LATE"},
    {"/statuses/1", R"({ "number": 6, "name": "LATE", "text": "too late" })",
     "/statuses/1/name: \"LATE\"; expected a name that TARN does not already have"},
    {"/statuses/0/services", R"(["ATTIC"])",
     "/statuses/0/services/0: \"ATTIC\"; expected one of TARN, QTN_RPC_PROXY, QTN_MIRROR, and each once"},
    {"/statuses/0/services", "[]",
     "/statuses/0/services: []; expected at least one of TARN, QTN_RPC_PROXY, QTN_MIRROR, or no such key "
     "for all of them"},
    {"/statuses/0/text", nullptr, "/statuses/0/text: missing; expected a text that is not empty"},
};

TEST(BrokenLayoutFile, IsRefusedWithPlaceAndReason)
{
    for (const Broken& broken : kBroken)
    {
        Json document = Json::parse(kSound);
        const Json::json_pointer pointer(broken.pointer);
        if (broken.value != nullptr)
            document[pointer] = Json::parse(broken.value);
        else
            document[pointer.parent_pointer()].erase(pointer.back());
        EXPECT_EQ(errorOf(document), std::string("attic.json: ") + broken.expected) << broken.pointer;
    }
}

} // namespace
