// What the reader refuses: each text differs from a sound one in a single place.
#include "base/json_reader.h"
#include "contract/contract.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace contract = tarn::contract;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

namespace
{

const std::string kSound = R"({
  "$schema": "./contract.schema.json",
  "contract": 1,
  "service": "LAMP",
  "trace_tag": "lamp_api",
  "result": { "type": "u32", "rejected": 3, "failed": 1, "timed_out": 2 },
  "invalid_caller": "invalid id is %s",
  "records": { "LampCfg": 8 },
  "events": [ { "event": 1, "name": "EVT_ON" }, { "event": 2, "name": "EVT_OFF" } ],
  "commands": [
    { "command": 0, "function": "LampGet", "group": "Lamps", "effect": "reads", "description": "Reads a lamp.",
      "wait": 3, "length": 40,
      "arguments": [
        { "name": "lampId", "type": "u32", "direction": "in", "encoding": "id", "offset": 0 },
        { "name": "place", "type": "text", "direction": "out", "encoding": "text", "offset": 4, "size_argument": "placeSize" },
        { "name": "placeSize", "type": "u32", "direction": "in", "encoding": "size" } ],
      "checks": [ { "argument": "place", "when": "null", "message": "place is NULL" } ] },
    { "command": 1, "function": "LampSet", "group": "Lamps", "effect": "changes", "description": "Sets a lamp.",
      "effect_reason": "It may be dark afterwards.",
      "wait": 4, "length": 40,
      "arguments": [
        { "name": "lampId", "type": "u32", "direction": "in", "encoding": "id", "offset": 0 },
        { "name": "cfg", "type": "record", "record": "LampCfg", "direction": "in", "encoding": "record",
          "offset": 4 },
        { "name": "colour", "type": "text", "direction": "in", "encoding": "text", "offset": 12, "size": 9 } ],
      "checks": [ { "argument": "colour", "when": "null or empty", "message": "colour is invalid" } ],
      "note": "Nothing odd." }
  ]
})";

// The sound text with one piece of it put in another way.
std::string with(const std::string& piece, const std::string& other)
{
    std::string text = kSound;
    const std::size_t place = text.find(piece);
    EXPECT_NE(place, std::string::npos) << piece;
    return place == std::string::npos ? text : text.replace(place, piece.size(), other);
}

std::string errorOf(const std::string& text)
{
    try
    {
        contract::parse(text, "lamp.json");
    }
    catch (const tarn::base::JsonError& error)
    {
        return error.what();
    }
    return "no error";
}

TEST(Parse, TakesASoundText)
{
    const contract::Contract lamp = contract::parse(kSound, "lamp.json");
    EXPECT_EQ(lamp.service, "LAMP");
    EXPECT_EQ(lamp.invalidCaller, "invalid id is %s");
    ASSERT_NE(lamp.record("LampCfg"), nullptr);
    EXPECT_EQ(lamp.record("LampCfg")->size, 8u);
    EXPECT_EQ(lamp.record("Lamp"), nullptr);
    ASSERT_THAT(lamp.commands, SizeIs(2));
    EXPECT_EQ(lamp.commands[0].note, "");
    EXPECT_EQ(lamp.commands[0].effect, contract::Effect::kReads);
    EXPECT_EQ(lamp.commands[0].effectReason, "");
    EXPECT_EQ(lamp.commands[0].arguments[1].sizeArgument, "placeSize");
    EXPECT_EQ(lamp.commands[0].arguments[1].size, 0u);
    EXPECT_EQ(lamp.commands[1].arguments[1].record, "LampCfg");
    EXPECT_EQ(lamp.commands[1].checks[0].when, contract::When::kNullOrEmpty);
    EXPECT_EQ(lamp.commands[1].note, "Nothing odd.");
    EXPECT_EQ(lamp.commands[1].effect, contract::Effect::kChanges);
    EXPECT_EQ(lamp.commands[1].effectReason, "It may be dark afterwards.");
}

struct Refusal
{
    const char* name;
    const char* piece;
    const char* other;
    const char* error;
};

class ParseRefuses : public testing::TestWithParam<Refusal>
{
};

TEST_P(ParseRefuses, WithFileAndPlace)
{
    const std::string error = errorOf(with(GetParam().piece, GetParam().other));
    EXPECT_THAT(error, HasSubstr("lamp.json: "));
    EXPECT_THAT(error, HasSubstr(GetParam().error));
}

const Refusal kRefusals[] = {
    {"NoJson", "\"contract\": 1,", "\"contract\": 1", "line 4, byte 68: not JSON: "},
    {"KeyTwice", "\"contract\": 1,", "\"contract\": 1, \"contract\": 1,", "/contract: given twice; expected once"},
    {"OtherVersion", "\"contract\": 1,", "\"contract\": 2,", "/contract: 2; expected 1"},
    {"MissingKey", "\"service\": \"LAMP\",", "", "/service: missing; expected a text that is not empty"},
    {"UnknownKey", "\"wait\": 3,", "\"wait\": 3, \"weight\": 3,",
     "LampGet: /commands/0/weight: unknown key; expected one of function, command"},
    {"WrongKind", "\"wait\": 3", "\"wait\": \"3\"",
     "LampGet: /commands/0/wait: \"3\"; expected an integer from 1 to 4294967295"},
    {"Fraction", "\"wait\": 3", "\"wait\": 3.5", "LampGet: /commands/0/wait: 3.5; expected an integer"},
    {"ZeroWait", "\"wait\": 3", "\"wait\": 0", "LampGet: /commands/0/wait: 0; expected an integer from 1"},
    {"Negative", "\"offset\": 12", "\"offset\": -12",
     "LampSet: /commands/1/arguments/2/offset: -12; expected an integer from 0"},
    {"TooLarge", "\"offset\": 12", "\"offset\": 18446744073709551615",
     "LampSet: /commands/1/arguments/2/offset: 18446744073709551615; expected an integer from 0"},
    {"EmptyText", "\"Sets a lamp.\"", "\"\"", "LampSet: /commands/1/description: \"\"; expected a text that is not empty"},
    {"NoIdentifier", "\"cfg\"", "\"c fg\"",
     "LampSet: /commands/1/arguments/1/name: \"c fg\"; expected a name of letters, digits and underscores"},
    {"UnknownType", "\"type\": \"record\"", "\"type\": \"struct\"",
     "/commands/1/arguments/1/type: \"struct\"; expected one of u32, u16, u8, text, bytes, record"},
    {"UnknownEncoding", "\"encoding\": \"id\"", "\"encoding\": \"index\"",
     "LampGet: /commands/0/arguments/0/encoding: \"index\"; expected one of id, word"},
    {"UnknownWhen", "\"when\": \"null\"", "\"when\": \"missing\"",
     "/commands/0/checks/0/when: \"missing\"; expected one of null, null or empty, zero"},
    {"ResultOutOfRange", "\"rejected\": 3", "\"rejected\": -1",
     "lamp.json: /result/rejected: -1; expected an integer from 0 to 4294967295"},
    {"RecordKeyOnText", "\"type\": \"text\", \"direction\": \"in\"",
     "\"type\": \"text\", \"record\": \"LampCfg\", \"direction\": \"in\"",
     "/record: \"LampCfg\"; expected no such key, as the type is no record"},
    {"SignedFalse", "\"offset\": 12,", "\"offset\": 12, \"signed\": false,", "/signed: false; expected true, or no such key"},
    {"SignedInput", "\"encoding\": \"id\", \"offset\": 0", "\"encoding\": \"id\", \"offset\": 0, \"signed\": true",
     "lampId: only an output of words can be signed"},
    {"OptionalFalse", "\"offset\": 12,", "\"offset\": 12, \"optional\": false,",
     "/optional: false; expected true, or no such key"},
    {"OffsetOfASize", "\"encoding\": \"size\"", "\"encoding\": \"size\", \"offset\": 4", "/offset: 4; expected no such key"},
    {"NoSize", "\"offset\": 12, \"size\": 9", "\"offset\": 12",
     "LampSet: /commands/1/arguments/2/size: missing; expected an integer from 1"},
    {"TwoSizes", "\"size_argument\": \"placeSize\"", "\"size_argument\": \"placeSize\", \"size\": 9",
     "/arguments/1/size: 9; expected no such key, as \"size_argument\" says it"},
    {"SizeOfAWord", "\"encoding\": \"id\", \"offset\": 0", "\"encoding\": \"id\", \"offset\": 0, \"size\": 4",
     "/arguments/0/size: 4; expected no such key, as the encoding id has one size"},
    {"SizeOfARecord", "\"offset\": 4 }", "\"offset\": 4, \"size\": 8 }",
     "/arguments/1/size: 8; expected no such key, as \"records\" has its size"},
    {"OddLength", "\"length\": 40", "\"length\": 42", "LampGet: length: expected a multiple of 4, 8 or more, not 42"},
    {"OutsideTheMessage", "\"offset\": 12", "\"offset\": 36", "LampSet: colour: 9 bytes at 36 run out of the message of 40"},
    {"OffsetThatWraps", "\"offset\": 12", "\"offset\": 4294967292",
     "LampSet: colour: 9 bytes at 4294967292 run out of the message"},
    {"IntoTheStatus", "\"offset\": 12", "\"offset\": 28", "LampSet: colour: 9 bytes at 28 run into the reply status at 36"},
    {"OddWord", "\"encoding\": \"id\", \"offset\": 0", "\"encoding\": \"id\", \"offset\": 2",
     "lampId: 4 bytes at 2 are no words"},
    {"Overlap", "\"offset\": 12", "\"offset\": 8", "LampSet: colour: 9 bytes at 8 overlap cfg, 8 bytes at 4"},
    {"UnknownRecord", "\"record\": \"LampCfg\"", "\"record\": \"LampData\"",
     "LampSet: /commands/1/arguments/1/record: \"LampData\"; expected one of \"records\": LampCfg"},
    {"UnknownSizeArgument", "\"size_argument\": \"placeSize\"", "\"size_argument\": \"size\"",
     "LampGet: place: size_argument: expected the name of an argument with the encoding size, not size"},
    {"SizeOfNothing", "\"size_argument\": \"placeSize\"", "\"size\": 9",
     "LampGet: placeSize: no argument names it as its size_argument"},
    {"CheckOfNoArgument", "{ \"argument\": \"place\"", "{ \"argument\": \"plaice\"",
     "LampGet: checks: there is no argument plaice"},
    {"NullNumber", "{ \"argument\": \"place\"", "{ \"argument\": \"lampId\"", "lampId is no pointer, so it cannot be null"},
    {"EmptyOutput", "\"when\": \"null\"", "\"when\": \"null or empty\"",
     "place is no text that is sent, so it cannot be empty"},
    {"ZeroPointer", "\"when\": \"null\"", "\"when\": \"zero\"", "place is no number, so it cannot be zero"},
    {"CheckedTwice", "\"message\": \"place is NULL\" }",
     "\"message\": \"place is NULL\" }, { \"argument\": \"place\", \"when\": \"null\", \"message\": \"no\" }",
     "LampGet: checks: place is checked twice"},
    {"CheckedOptional", "\"offset\": 12,", "\"offset\": 12, \"optional\": true,", "LampSet: checks: colour is optional"},
    {"OptionalNumber", "\"encoding\": \"id\", \"offset\": 0", "\"encoding\": \"id\", \"offset\": 0, \"optional\": true",
     "lampId: only a pointer can be optional"},
    {"FormatInAMessage", "place is NULL", "place is %s", "the message \"place is %s\" holds a %"},
    {"Misfit", "\"encoding\": \"id\"", "\"encoding\": \"text\", \"size\": 4",
     "the encoding text does not go with u32 in; expected one of id, word"},
    {"FunctionTwice", "\"LampSet\"", "\"LampGet\"", "LampGet: an earlier command has this function already"},
    {"ArgumentTwice", "\"colour\", \"type\"", "\"cfg\", \"type\"", "LampSet: cfg: an earlier argument has this name already"},
    {"CommandsOutOfOrder", "\"command\": 0", "\"command\": 2", "LampSet: command 1 comes after command 2"},
    {"EventNumberTwice", "\"event\": 2", "\"event\": 1", "events: the number 1 is given twice"},
    {"EventNameTwice", "EVT_OFF", "EVT_ON", "events: the name EVT_ON is given twice"},
    {"NoEffect", "\"effect\": \"reads\", ", "", "LampGet: /commands/0/effect: missing; expected one of reads, changes"},
    {"UnknownEffect", "\"reads\"", "\"writes\"", "LampGet: /commands/0/effect: \"writes\"; expected one of reads, changes"},
    {"EmptyReason", "It may be dark afterwards.", "",
     "LampSet: /commands/1/effect_reason: \"\"; expected a text that is not empty"},
    {"EffectsOfOneCommand", "\"command\": 0", "\"command\": 1",
     "LampSet: effect: LampGet has the same command and another effect"},
    {"LongService", "\"LAMP\"", "\"LAMP_LAMP_LAMP_LAMP_LAMP_LAMP_32\"", "service: expected 1 to 31 characters"},
};

INSTANTIATE_TEST_SUITE_P(Contract, ParseRefuses, testing::ValuesIn(kRefusals),
                         [](const auto& refusal) { return refusal.param.name; });

TEST(Parse, NamesEveryProblemOfAText)
{
    std::string text = with("\"length\": 40", "\"length\": 42");
    text.replace(text.find("\"offset\": 12"), 12, "\"offset\": 36");
    const std::string error = errorOf(text);
    EXPECT_THAT(error, HasSubstr("lamp.json: LampGet: length"));
    EXPECT_THAT(error, HasSubstr("\nlamp.json: LampSet: colour"));
}

TEST(Parse, TellsWhereTheTextIsNoJson)
{
    EXPECT_THAT(errorOf("{\n  \"contract\": }"), HasSubstr("line 2"));
}

TEST(Parse, RefusesAnythingButAnObject)
{
    EXPECT_THAT(errorOf("[]"), HasSubstr("lamp.json: []; expected an object"));
    EXPECT_THAT(errorOf(""), HasSubstr("lamp.json: line 1, byte 1: not JSON"));
}

// A contract need not come from a file: what the reader would have refused or filled in itself is looked at all the same.
TEST(Problems, AreFoundInWhatTheReaderTakesCareOf)
{
    contract::Contract lamp = contract::parse(kSound, "lamp.json");
    lamp.commands[0].arguments[0].size = 2;
    lamp.commands[1].arguments[1].size = 4;
    lamp.commands[1].arguments[2].size = 0;
    EXPECT_THAT(contract::problems(lamp), ElementsAre("LampGet: lampId: expected a size of 4 for the encoding id",
                                                      "LampGet: lampId: 2 bytes at 0 are no words; expected multiples of 4",
                                                      "LampSet: cfg: the record LampCfg has 8 bytes, not 4",
                                                      "LampSet: colour: expected either a size or a size_argument"));
    lamp = contract::parse(kSound, "lamp.json");
    lamp.commands[1].arguments[1].record = "LampData";
    EXPECT_THAT(contract::problems(lamp), ElementsAre("LampSet: cfg: the record LampData is not in \"records\""));
}

} // namespace
