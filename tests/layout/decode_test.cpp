#include "layout/decode.h"

#include <cstring>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace tarn::layout;
using tarn::base::Bytes;
using testing::ElementsAre;

// One block with a field of each type, at places that suit no processor.
constexpr char kOdd[] = R"({
  "layout": 1, "name": "attic", "version": "3", "owner": "nobody",
  "blocks": { "tarn_qcsapi_get_interface_stats.stats": { "size": 84, "fields": [
    { "name": "byte", "offset": 0, "size": 1, "type": "signed", "unit": "dBm", "values": { "floor": -95 } },
    { "name": "half", "offset": 1, "size": 2, "type": "signed" },
    { "name": "word", "offset": 3, "size": 4, "type": "signed", "description": "below zero or not" },
    { "name": "twin", "offset": 7, "size": 8, "type": "number" },
    { "name": "flags", "offset": 15, "size": 2, "type": "number", "flags": { "busy": 0, "full": 9 } },
    { "name": "text", "offset": 17, "size": 4, "type": "text" },
    { "name": "address", "offset": 21, "type": "mac address" },
    { "name": "raw", "offset": 27, "size": 3, "type": "bytes" },
    { "name": "number", "offset": 30, "size": 1, "type": "number" },
    { "name": "pairs", "offset": 31, "type": "array", "count": 3, "stride": 5, "count_field": "number", "fields": [
      { "name": "channel", "offset": 0, "size": 1, "type": "number" },
      { "name": "share", "offset": 1, "size": 4, "type": "number", "unit": "percent" } ] },
    { "name": "list", "offset": 46, "type": "array", "count": 4, "ends_with_zero": true,
      "element": { "type": "number", "size": 2, "unit": "MHz" } } ] } }
})";

class Decoding : public testing::Test
{
protected:
    const Structure& block() const
    {
        return layout_.blocks.front();
    }

    template <typename Number>
    void put(std::size_t offset, Number number)
    {
        std::memcpy(bytes_.data() + offset, &number, sizeof number);
    }

    std::vector<std::string> lines() const
    {
        std::vector<std::string> lines;
        for (const FieldLine& line : linesOf(decode(block(), bytes_)))
            lines.push_back(line.name + "=" + line.value + (line.unit.empty() ? "" : " " + line.unit));
        return lines;
    }

    Layout layout_ = parse(kOdd, "attic.json");
    Bytes bytes_ = Bytes(84);
};

TEST_F(Decoding, ReadsEachTypeWhereverItIs)
{
    put<std::int8_t>(0, -61);
    put<std::int16_t>(1, -1000);
    put<std::int32_t>(3, -100000);
    put<std::uint64_t>(7, 0xFFFFFFFFFFFFFFFFu);
    put<std::uint16_t>(15, 0x0201);
    std::memcpy(bytes_.data() + 17, "full", 4);
    std::memcpy(bytes_.data() + 21, "\x02\x00\x00\x00\x01\xff", 6);
    std::memcpy(bytes_.data() + 27, "\x01\x02\xa3", 3);
    put<std::uint8_t>(30, 2);
    put<std::uint8_t>(31, 36);
    put<std::uint32_t>(32, 70);
    put<std::uint8_t>(36, 40);
    put<std::uint16_t>(46, 20);
    put<std::uint16_t>(48, 160);
    put<std::uint16_t>(52, 80);
    EXPECT_THAT(lines(), ElementsAre("byte=-61 dBm", "half=-1000", "word=-100000", "twin=18446744073709551615",
                                     "flags=busy+full (513)", "text=\"full\"", "address=02:00:00:00:01:ff", "raw=0102a3",
                                     "number=2", "pairs[0].channel=36", "pairs[0].share=70 percent", "pairs[1].channel=40",
                                     "pairs[1].share=0 percent", "list=20, 160 MHz"));
}

TEST_F(Decoding, NamesValuesAndFlags)
{
    put<std::int8_t>(0, -95);
    put<std::uint16_t>(15, 0x8204);
    const std::vector<Decoded> fields = decode(block(), bytes_);
    EXPECT_EQ(fields[0].number, -95);
    EXPECT_EQ(fields[0].meaning.valueName, "floor");
    EXPECT_THAT(fields[4].meaning.flags, ElementsAre("full"));
    EXPECT_EQ(fields[4].meaning.unnamedFlags, 0x8004u);
    EXPECT_EQ(lines()[0], "byte=floor (-95) dBm");
    EXPECT_EQ(lines()[4], "flags=full+0x8004 (33284)");
}

TEST_F(Decoding, ShowsArraysWithoutElementsAsSuch)
{
    EXPECT_THAT(lines(), testing::IsSupersetOf({"pairs=none", "list=none MHz"}));
}

TEST_F(Decoding, BelievesNoCountThatIsOverTheArray)
{
    put<std::uint8_t>(30, 200);
    EXPECT_EQ(decode(block(), bytes_)[9].elements.size(), 3u);
}

TEST_F(Decoding, LeavesOutWhatIsNotThere)
{
    bytes_.resize(20);
    EXPECT_EQ(decode(block(), bytes_).size(), 5u); // the text needs one byte more
    EXPECT_TRUE(decode(block(), Bytes()).empty());
}

TEST_F(Decoding, GivesTheDescription)
{
    EXPECT_EQ(linesOf(decode(block(), bytes_))[2].meaning, "below zero or not");
}

} // namespace
