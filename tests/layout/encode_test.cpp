#include "layout/encode.h"

#include "base/hexadecimal.h"
#include "layout/decode.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace tarn::layout;
using tarn::base::Bytes;
using tarn::base::hexText;
using testing::ElementsAre;

constexpr char kOddRecord[] = R"({
  "layout": 1, "name": "attic", "version": "3", "owner": "nobody",
  "records": { "TarnAccessPointCfg": { "size": 28, "fields": [
    { "name": "state", "offset": 0, "size": 1, "type": "number", "values": { "off": 0, "on": 7 } },
    { "name": "rssi", "offset": 1, "size": 1, "type": "signed" },
    { "name": "flags", "offset": 2, "size": 1, "type": "number", "flags": { "busy": 0, "full": 3 } },
    { "name": "text", "offset": 3, "size": 5, "type": "text" },
    { "name": "address", "offset": 8, "type": "mac address" },
    { "name": "raw", "offset": 14, "size": 2, "type": "bytes" },
    { "name": "list", "offset": 16, "type": "array", "count": 2, "element": { "type": "number", "size": 1 } },
    { "name": "pairs", "offset": 18, "type": "array", "count": 2, "stride": 3, "fields": [
      { "name": "name", "offset": 1, "size": 2, "type": "text" } ] } ] } }
})";

class Encoding : public testing::Test
{
protected:
    std::string encoded(const std::string& path, const std::string& value)
    {
        Bytes bytes(28, 0xEE);
        encode(layout_.records.front(), path, value, bytes);
        return hexText(bytes);
    }

    // The bytes from that offset on, and that all others stayed as they were.
    std::string changed(const std::string& path, const std::string& value, std::size_t offset, std::size_t size)
    {
        std::string hex = encoded(path, value);
        const std::string part = hex.substr(2 * offset, 2 * size);
        EXPECT_EQ(hex.erase(2 * offset, 2 * size).find_first_not_of('e'), std::string::npos) << path;
        return part;
    }

    std::string errorOf(const std::string& path, const std::string& value)
    {
        try
        {
            encoded(path, value);
        }
        catch (const EncodeError& error)
        {
            suggestions_ = error.suggestions;
            return error.what();
        }
        return "accepted";
    }

    const Layout layout_ = parse(kOddRecord, "attic.json");
    std::vector<std::string> suggestions_;
};

TEST_F(Encoding, ChangesTheFieldAndNothingElse)
{
    EXPECT_EQ(changed("state", "on", 0, 1), "07");
    EXPECT_EQ(changed("state", "0xff", 0, 1), "ff");
    EXPECT_EQ(changed("rssi", "-128", 1, 1), "80");
    EXPECT_EQ(changed("flags", "full+busy", 2, 1), "09");
    EXPECT_EQ(changed("flags", "busy+0x40", 2, 1), "41");
    EXPECT_EQ(changed("flags", "5", 2, 1), "05");
    EXPECT_EQ(changed("text", "abc", 3, 5), "6162630000");
    EXPECT_EQ(changed("text", "", 3, 5), "0000000000");
    EXPECT_EQ(changed("address", "02:00:00:00:01:ff", 8, 6), "0200000001ff");
    EXPECT_EQ(changed("raw", "a1b2", 14, 2), "a1b2");
    EXPECT_EQ(changed("list[1]", "17", 17, 1), "11");
    EXPECT_EQ(changed("pairs[1].name", "x", 22, 2), "7800");
}

TEST_F(Encoding, SaysWhatItExpected)
{
    EXPECT_EQ(errorOf("state", "256"), "state: expected a number from 0 to 255, or one of off, on; got \"256\"");
    EXPECT_EQ(errorOf("state", "-1"), "state: expected a number from 0 to 255, or one of off, on; got \"-1\"");
    EXPECT_EQ(errorOf("rssi", "-129"), "rssi: expected a number from -128 to 127; got \"-129\"");
    EXPECT_EQ(errorOf("rssi", "12dBm"), "rssi: expected a number from -128 to 127; got \"12dBm\"");
    EXPECT_EQ(errorOf("rssi", ""), "rssi: expected a number from -128 to 127; got \"\"");
    EXPECT_EQ(errorOf("flags", "busy+"),
              "flags: expected a number from 0 to 255, or some of busy, full with + between them; got \"busy+\"");
    EXPECT_EQ(errorOf("text", "abcde"), "text: expected a text of at most 4 bytes; got 5");
    EXPECT_EQ(errorOf("address", "020000000001"),
              "address: expected a MAC address such as 02:00:00:00:00:01; got \"020000000001\"");
    EXPECT_EQ(errorOf("raw", "a1"), "raw: expected 2 bytes, as 4 hexadecimal digits; got \"a1\"");
    EXPECT_EQ(errorOf("list", "1"), "list: expected an element, such as list[0]; got \"1\"");
    EXPECT_EQ(errorOf("pairs", "1"), "pairs: expected an element, such as pairs[0].name; got \"1\"");
    EXPECT_EQ(errorOf("list[2]", "1"), "list[2]: expected list[INDEX], with an index from 0 to 1");
    EXPECT_EQ(errorOf("pairs[0]", "1"), "pairs[0]: expected pairs[INDEX].name, with an index from 0 to 1");
    EXPECT_EQ(errorOf("state[0]", "1"), "state[0]: expected state without an index, as it is no array");
    EXPECT_EQ(errorOf("pairs[0].nam", "1"), "pairs has no field \"nam\"; it has name");
}

TEST_F(Encoding, SuggestsTheNameThatWasMeant)
{
    EXPECT_EQ(errorOf("adress", "1"),
              "TarnAccessPointCfg has no field \"adress\"; it has state, rssi, flags, text, address, raw, list, pairs");
    EXPECT_THAT(suggestions_, ElementsAre("address"));
    errorOf("flags", "bussy");
    EXPECT_THAT(suggestions_, ElementsAre("busy"));
}

} // namespace
