#include "base/json_reader.h"

#include "support/temporary_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <functional>

namespace
{

using tarn::base::JsonDocument;
using tarn::base::JsonError;
using tarn::base::JsonObject;
using tarn::base::JsonValue;
using tarn::base::parseJson;
using tarn::base::readJson;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

std::string errorOf(const std::function<void()>& action)
{
    try
    {
        action();
    }
    catch (const JsonError& error)
    {
        return error.what();
    }
    return "no error";
}

std::string parseError(const std::string& text)
{
    return errorOf([&] { parseJson(text, "f"); });
}

// What reading the member "x" of an object says; `x` is its text, or empty for none.
std::string readError(const std::string& x, const std::function<void(const JsonValue&)>& read)
{
    const JsonDocument document = parseJson(x.empty() ? "{}" : "{\"x\": " + x + "}", "f");
    return errorOf([&] { read(document.root().object()["x"]); });
}

enum class Colour
{
    kRed,
    kGreen,
    kBlue
};

const char* const kColours[] = {"red", "green", "blue"};

// --- Values ------------------------------------------------------------------------------------------------------------------

TEST(JsonValue, IsReadAsWhatItIs)
{
    const JsonDocument document = parseJson(
        R"({"b": true, "n": 7, "i": -3, "r": 0.5, "t": "text", "c": "blue", "l": [1, "a"], "o": {"k": 1}, "s": [{}, {}]})",
        "f");
    JsonObject object = document.root().object();
    EXPECT_TRUE(object["b"].boolean());
    EXPECT_EQ(object["n"].number<std::uint8_t>(), 7u);
    EXPECT_EQ(object["i"].number(-3, 0), -3);
    EXPECT_EQ(object["r"].real(0, 1, "seconds"), 0.5);
    EXPECT_EQ(object["n"].real(0, 10, "seconds"), 7.0);
    EXPECT_EQ(object["t"].text(), "text");
    EXPECT_EQ(object["t"].text(4, 4), "text");
    EXPECT_EQ(object["t"].identifier(), "text");
    EXPECT_EQ(object["c"].oneOf<Colour>(kColours), Colour::kBlue);
    ASSERT_THAT(object["l"].elements(2), SizeIs(2));
    EXPECT_EQ(object["l"].elements()[0].number<int>(), 1);
    EXPECT_EQ(object["o"].object()["k"].number<int>(), 1);
    ASSERT_THAT(object["o"].members(), SizeIs(1));
    EXPECT_EQ(object["o"].members()[0].first, "k");
    EXPECT_THAT(object["s"].objects(2, 2), SizeIs(2));
    EXPECT_EQ(errorOf([&] { object.finish(); }), "no error");
}

TEST(JsonValue, HasTheWholeRangeOfItsType)
{
    const JsonDocument document = parseJson("[4294967295, -2147483648, 9223372036854775807, -9223372036854775808]", "f");
    const std::vector<JsonValue> numbers = document.root().elements();
    EXPECT_EQ(numbers[0].number<std::uint32_t>(), 4294967295u);
    EXPECT_EQ(numbers[1].number<std::int32_t>(), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(numbers[2].integer(0, std::numeric_limits<std::int64_t>::max()), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(numbers[3].integer(std::numeric_limits<std::int64_t>::min(), 0), std::numeric_limits<std::int64_t>::min());
}

TEST(JsonValue, KeepsTheOrderOfAnObject)
{
    const JsonDocument document = parseJson(R"({"z": 1, "a": 2, "m": 3})", "f");
    std::vector<std::string> keys;
    for (const auto& [key, value] : document.root().members())
        keys.push_back(key);
    EXPECT_THAT(keys, ElementsAre("z", "a", "m"));
}

TEST(JsonValue, MayBeMissing)
{
    const JsonDocument document = parseJson(R"({"null": null})", "f");
    JsonObject object = document.root().object();
    EXPECT_FALSE(object["x"]);
    EXPECT_TRUE(object["null"]);
    EXPECT_EQ(object["x"].textOrNull(), nullptr);
    EXPECT_EQ(object["null"].textOrNull(), nullptr);
}

struct Misfit
{
    const char* name;
    const char* value;
    std::function<void(const JsonValue&)> read;
    const char* error;
};

class JsonValueRefuses : public testing::TestWithParam<Misfit>
{
};

TEST_P(JsonValueRefuses, AndSaysWhatWasExpected)
{
    EXPECT_EQ(readError(GetParam().value, GetParam().read), std::string("f: /x: ") + GetParam().error);
}

TEST_P(JsonValueRefuses, AndSaysThatItIsMissing)
{
    const std::string error = GetParam().error;
    EXPECT_EQ(readError("", GetParam().read), "f: /x: missing" + error.substr(error.find("; expected ")));
}

const auto readBoolean = [](const JsonValue& value) { value.boolean(); };
const auto readByte = [](const JsonValue& value) { value.number<std::uint8_t>(); };
const auto readLevel = [](const JsonValue& value) { value.number(-5, 10); };
const auto readSeconds = [](const JsonValue& value) { value.real(0, 86400, "seconds"); };
const auto readText = [](const JsonValue& value) { value.text(3); };
const auto readLongText = [](const JsonValue& value) { value.text(3, JsonValue::kNoLimit); };
const auto readName = [](const JsonValue& value) { value.identifier(); };
const auto readPair = [](const JsonValue& value) { value.elements(2); };
const auto readThings = [](const JsonValue& value) { value.objects(1, 2); };

const Misfit kMisfits[] = {
    {"NumberForABoolean", "1", readBoolean, "1; expected true or false"},
    {"TextForANumber", "\"1\"", readByte, "\"1\"; expected an integer from 0 to 255"},
    {"NullForANumber", "null", readByte, "null; expected an integer from 0 to 255"},
    {"Fraction", "1.5", readByte, "1.5; expected an integer from 0 to 255"},
    {"WholeFraction", "1.0", readByte, "1.0; expected an integer from 0 to 255"},
    {"NumberTooLarge", "256", readByte, "256; expected an integer from 0 to 255"},
    {"NumberTooSmall", "-1", readByte, "-1; expected an integer from 0 to 255"},
    {"NumberPastTheSignedRange", "18446744073709551615", readLevel, "18446744073709551615; expected an integer from -5 to 10"},
    {"NegativeNumberTooSmall", "-6", readLevel, "-6; expected an integer from -5 to 10"},
    {"OtherNumber", "2", [](const JsonValue& value) { value.number(1, 1); }, "2; expected 1"},
    {"RealTooLarge", "86400.5", readSeconds, "86400.5; expected a number of seconds from 0 to 86400"},
    {"RealTooSmall", "-0.5", readSeconds, "-0.5; expected a number of seconds from 0 to 86400"},
    {"TextForAReal", "\"1\"", readSeconds, "\"1\"; expected a number of seconds from 0 to 86400"},
    {"NumberForAText", "1", readText, "1; expected a text of at most 3 characters"},
    {"TextTooLong", "\"abcd\"", readText, "\"abcd\"; expected a text of at most 3 characters"},
    {"TextTooShort", "\"ab\"", readLongText, "\"ab\"; expected a text of at least 3 characters"},
    {"EmptyText", "\"\"", [](const JsonValue& value) { value.text(1, JsonValue::kNoLimit); },
     "\"\"; expected a text that is not empty"},
    {"TextOutOfARange", "\"\"", [](const JsonValue& value) { value.text(1, 3); }, "\"\"; expected a text of 1 to 3 characters"},
    {"AnythingForAText", "[]", [](const JsonValue& value) { value.text(); }, "[]; expected a text"},
    {"EmptyName", "\"\"", readName, "\"\"; expected a name of letters, digits and underscores"},
    {"NameWithADigitInFront", "\"1a\"", readName, "\"1a\"; expected a name of letters, digits and underscores"},
    {"NameWithASpace", "\"a b\"", readName, "\"a b\"; expected a name of letters, digits and underscores"},
    {"OtherWord", "\"Red\"", [](const JsonValue& value) { value.oneOf<Colour>(kColours); },
     "\"Red\"; expected one of red, green, blue"},
    {"NumberForAWord", "0", [](const JsonValue& value) { value.oneOf<Colour>(kColours); },
     "0; expected one of red, green, blue"},
    {"ObjectForAList", "{}", readPair, "{}; expected a list of at most 2 elements"},
    {"ListTooLong", "[1,2,3]", readPair, "[1,2,3]; expected a list of at most 2 elements"},
    {"AnythingForAList", "1", [](const JsonValue& value) { value.elements(); }, "1; expected a list"},
    {"ListForAnObject", "[1]", [](const JsonValue& value) { value.object(); }, "[1]; expected an object"},
    {"ListForMembers", "[1]", [](const JsonValue& value) { value.members(); }, "[1]; expected an object"},
    {"TooFewObjects", "[]", readThings, "[]; expected a list of 1 to 2 objects"},
    {"TooManyObjects", "[{},{},{}]", readThings, "[{},{},{}]; expected a list of 1 to 2 objects"},
    {"ObjectForObjects", "{}", [](const JsonValue& value) { value.objects(); }, "{}; expected a list of objects"},
    {"TextThatIsNotParsed", "\"a\"",
     [](const JsonValue& value) { value.parsed([](const std::string&) { return std::optional<int>(); }, "a lamp"); },
     "\"a\"; expected a lamp"},
    {"NumberThatIsNotParsed", "1",
     [](const JsonValue& value) { value.parsed([](const std::string&) { return std::optional<int>(5); }, "a lamp"); },
     "1; expected a lamp"},
};

INSTANTIATE_TEST_SUITE_P(Json, JsonValueRefuses, testing::ValuesIn(kMisfits),
                         [](const auto& misfit) { return misfit.param.name; });

TEST(JsonValue, IsParsedByAFunction)
{
    const JsonDocument document = parseJson(R"("four")", "f");
    const auto length = [](const std::string& text) { return std::optional<std::size_t>(text.size()); };
    EXPECT_EQ(document.root().parsed(length, "a text"), 4u);
}

TEST(JsonValue, IsShownShort)
{
    const auto fail = [](const JsonValue& value) { value.fail("less"); };
    EXPECT_EQ(readError('"' + std::string(100, 'a') + '"', fail), "f: /x: \"" + std::string(59, 'a') + "...; expected less");
    EXPECT_EQ(readError("\"\xc3\xa4\"", fail), "f: /x: \"\\u00e4\"; expected less");
}

// --- Places ------------------------------------------------------------------------------------------------------------------

TEST(JsonPlace, IsAPointer)
{
    const JsonDocument document = parseJson(R"({"rooms": [{}, {"lamps": {"a/b~c": [5]}}]})", "dir/f.json");
    const auto read = [&]
    {
        JsonObject room = document.root().object()["rooms"].objects()[1];
        room["lamps"].members()[0].second.elements()[0].text();
    };
    EXPECT_EQ(errorOf(read), "dir/f.json: /rooms/1/lamps/a~1b~0c/0: 5; expected a text");
}

TEST(JsonPlace, OfTheWholeDocumentIsItsName)
{
    const JsonDocument document = parseJson("[]", "f");
    EXPECT_EQ(errorOf([&] { document.root().object(); }), "f: []; expected an object");
}

TEST(JsonPlace, MayNameWhatItBelongsTo)
{
    const JsonDocument document = parseJson(R"({"rooms": [{"name": "kitchen", "lamps": [1]}]})", "f");
    JsonObject room = document.root().object()["rooms"].objects()[0];
    room.setSubject(room["name"]);
    EXPECT_EQ(errorOf([&] { room["lamps"].objects(); }), "f: kitchen: /rooms/0/lamps/0: 1; expected an object");
    EXPECT_EQ(errorOf([&] { room["level"].boolean(); }), "f: kitchen: /rooms/0/level: missing; expected true or false");
    EXPECT_EQ(errorOf([&] { room.fail("a bathroom"); }),
              "f: kitchen: /rooms/0: {\"name\":\"kitchen\",\"lamps\":[1]}; expected a bathroom");
}

TEST(JsonPlace, IsFoundWhereverTheDocumentHasBeenMoved)
{
    JsonDocument document = parseJson(R"({"rooms": [1]})", "f");
    JsonObject house = document.root().object();
    const JsonDocument moved = std::move(document);
    EXPECT_EQ(errorOf([&] { house["rooms"].objects(); }), "f: /rooms/0: 1; expected an object");
}

// --- Objects -----------------------------------------------------------------------------------------------------------------

TEST(JsonObject, LeavesWhatIsMissingAsItIs)
{
    const JsonDocument document = parseJson(R"({"on": true, "level": -7, "count": 8, "name": "a"})", "f");
    JsonObject object = document.root().object();
    bool on = false;
    bool dark = true;
    std::int32_t level = 1;
    std::uint32_t count = 1;
    std::string name;
    object.read("on", on);
    object.read("dark", dark);
    object.read("level", level, -10, 10);
    object.read("count", count);
    object.read("name", name, 5);
    EXPECT_TRUE(on);
    EXPECT_TRUE(dark);
    EXPECT_EQ(level, -7);
    EXPECT_EQ(count, 8u);
    EXPECT_EQ(name, "a");
    object.read("nothing", name, 5);
    object.read("nothing", count, 0u, 5u);
    EXPECT_EQ(name, "a");
    EXPECT_EQ(count, 8u);
}

TEST(JsonObject, RefusesWhatIsThereButDoesNotFit)
{
    const JsonDocument document = parseJson(R"({"level": 11})", "f");
    std::int32_t level = 1;
    EXPECT_EQ(errorOf([&] { document.root().object().read("level", level, -10, 10); }),
              "f: /level: 11; expected an integer from -10 to 10");
    EXPECT_EQ(level, 1);
}

TEST(JsonObject, HasNoKeyThatIsNotAskedFor)
{
    const JsonDocument document = parseJson(R"({"name": "a", "levle": 3, "comment": ["b"]})", "f");
    JsonObject object = document.root().object();
    object["name"].text();
    EXPECT_EQ(errorOf([&] { object.finish(); }), "f: /levle: unknown key; expected one of name");
    object["level"];
    EXPECT_EQ(errorOf([&] { object.finish(); }), "f: /levle: unknown key (did you mean level?); expected one of name, level");
    object["levle"];
    EXPECT_EQ(errorOf([&] { object.finish(); }), "f: /comment: unknown key; expected one of name, level, levle");
    object.ignore("comment");
    EXPECT_EQ(errorOf([&] { object.finish(); }), "no error");
}

// --- Documents ---------------------------------------------------------------------------------------------------------------

TEST(JsonDocument, TellsWhereATextIsNotJson)
{
    EXPECT_EQ(parseError("{\n  \"a\": }"), "f: line 2, byte 10: not JSON: syntax error while parsing value - unexpected '}'; "
                                           "expected '[', '{', or a literal");
    EXPECT_THAT(parseError("{"),
                StartsWith("f: line 1, byte 2: not JSON: syntax error while parsing object key - unexpected end"));
    EXPECT_THAT(parseError(""), StartsWith("f: line 1, byte 1: not JSON: "));
    EXPECT_THAT(parseError("{} {}"), StartsWith("f: line 1, byte 4: not JSON: "));
    EXPECT_THAT(parseError("\"\xe4\""),
                HasSubstr("not JSON: syntax error while parsing value - invalid string: ill-formed UTF-8"));
}

TEST(JsonDocument, RefusesANumberThatIsTooLarge)
{
    EXPECT_EQ(parseError("[1e999]"), "f: not JSON: number overflow parsing '1e999'");
}

TEST(JsonDocument, HasEachKeyOnceInAnObject)
{
    EXPECT_EQ(parseError(R"({"a": 1, "a": 1})"), "f: /a: given twice; expected once");
    EXPECT_EQ(parseError(R"({"rooms": [1, [], {}, {"a": {"b": 1}, "c": 1, "a": 2}]})"),
              "f: /rooms/3/a: given twice; expected once");
    EXPECT_EQ(parseError(R"([{"a": 1}, {"a": {"a": 1}}])"), "no error");
}

TEST(JsonDocument, IsNotNestedWithoutEnd)
{
    const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
    EXPECT_EQ(parseError(nested(100)), "no error");
    EXPECT_THAT(parseError(nested(101)), HasSubstr("/0/0: a value in 100 others; expected less"));
    EXPECT_THAT(parseError(std::string(1000000, '[')), HasSubstr("/0/0: a value in 100 others; expected less"));
}

TEST(JsonDocument, IsReadFromAFile)
{
    const tarn::test::TemporaryDirectory directory;
    const std::string path = directory.path("lamps.json");
    std::ofstream(path) << "{\"a\": [1]}";
    EXPECT_EQ(readJson(path, "lamps").root().object()["a"].elements()[0].number<int>(), 1);
    std::ofstream(path) << "";
    EXPECT_THAT(errorOf([&] { readJson(path, "lamps"); }), StartsWith(path + ": line 1, byte 1: not JSON: "));
}

TEST(JsonDocument, ThatCannotBeReadSaysWhy)
{
    EXPECT_EQ(errorOf([] { readJson("/no/such/file", "a list of lamps"); }),
              "/no/such/file: cannot be read: No such file or directory; expected a list of lamps");
    EXPECT_EQ(errorOf([] { readJson("/", "a list of lamps"); }), "/: cannot be read: Is a directory; expected a list of lamps");
}

TEST(JsonDocument, MayBeMoved)
{
    JsonDocument document = parseJson("[1]", "f");
    const JsonDocument moved = std::move(document);
    EXPECT_EQ(errorOf([&] { moved.root().text(); }), "f: [1]; expected a text");
}

} // namespace
