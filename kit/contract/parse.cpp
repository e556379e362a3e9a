#include "base/join.h"
#include "base/json_reader.h"
#include "contract.h"
#include "words.h"

#include <initializer_list>
#include <optional>

namespace tarn::contract
{

namespace
{

using base::JsonObject;
using base::JsonValue;

std::string filledText(const JsonValue& value)
{
    return value.text(1, JsonValue::kNoLimit);
}

void refuse(JsonObject& object, std::initializer_list<const char*> keys, const std::string& reason)
{
    for (const char* key : keys)
        if (const JsonValue value = object[key])
            value.fail("no such key, as " + reason);
}

void readSize(JsonObject& object, Argument& argument, const Contract& contract)
{
    if (argument.type == Type::kRecord)
    {
        refuse(object, {"size", "size_argument"}, "\"records\" has its size");
        argument.size = contract.record(argument.record)->size;
    }
    else if (impliedSize(argument.encoding) != 0)
    {
        refuse(object, {"size", "size_argument"}, std::string("the encoding ") + toString(argument.encoding) + " has one size");
        argument.size = impliedSize(argument.encoding);
    }
    else if (const JsonValue sizeArgument = object["size_argument"])
    {
        refuse(object, {"size"}, "\"size_argument\" says it");
        argument.sizeArgument = sizeArgument.identifier();
    }
    else
    {
        argument.size = object["size"].number<std::uint32_t>(1);
    }
}

std::string readRecord(const JsonValue& name, const Contract& contract)
{
    const auto known = [&](const std::string& text)
    { return contract.record(text) == nullptr ? std::nullopt : std::optional<std::string>(text); };
    const auto nameOf = [](const RecordType& record) { return record.name; };
    return name.parsed(known, "one of \"records\": " + base::join(contract.records, ", ", nameOf));
}

// A key that is there and true, or not there.
bool readMark(const JsonValue& value)
{
    if (value && !value.boolean())
        value.fail("true, or no such key");
    return static_cast<bool>(value);
}

Argument readArgument(JsonObject& object, const Contract& contract)
{
    Argument argument;
    argument.name = object["name"].identifier();
    argument.type = object["type"].oneOf<Type>(kTypeWords);
    argument.direction = object["direction"].oneOf<Direction>(kDirectionWords);
    argument.encoding = object["encoding"].oneOf<Encoding>(kEncodingWords);
    argument.isSigned = readMark(object["signed"]);
    argument.optional = readMark(object["optional"]);
    if (argument.type == Type::kRecord)
        argument.record = readRecord(object["record"], contract);
    else
        refuse(object, {"record"}, "the type is no record");
    if (argument.encoding == Encoding::kSize || argument.encoding == Encoding::kNothing)
    {
        refuse(object, {"offset", "size", "size_argument"}, "nothing of this argument is in the message");
    }
    else
    {
        argument.offset = object["offset"].number<std::uint32_t>();
        readSize(object, argument, contract);
    }
    object.finish();
    return argument;
}

Check readCheck(JsonObject& object)
{
    Check check;
    check.argument = object["argument"].identifier();
    check.when = object["when"].oneOf<When>(kWhenWords);
    check.message = filledText(object["message"]);
    object.finish();
    return check;
}

Command readCommand(JsonObject& object, const Contract& contract)
{
    Command command;
    const JsonValue function = object["function"];
    command.function = function.identifier();
    object.setSubject(function);
    command.command = object["command"].number(0u, 127u);
    command.group = filledText(object["group"]);
    command.description = filledText(object["description"]);
    if (const JsonValue note = object["note"])
        command.note = filledText(note);
    command.effect = object["effect"].oneOf<Effect>(kEffectWords);
    if (const JsonValue reason = object["effect_reason"])
        command.effectReason = filledText(reason);
    command.wait = object["wait"].number<std::uint32_t>(1);
    command.length = object["length"].number<std::uint32_t>(8);
    for (JsonObject& argument : object["arguments"].objects())
        command.arguments.push_back(readArgument(argument, contract));
    for (JsonObject& check : object["checks"].objects())
        command.checks.push_back(readCheck(check));
    object.finish();
    return command;
}

template <typename Integer>
void readResults(JsonObject& object, Result& result)
{
    result.rejected = object["rejected"].number<Integer>();
    result.failed = object["failed"].number<Integer>();
    result.timedOut = object["timed_out"].number<Integer>();
}

Result readResult(JsonObject object)
{
    Result result;
    result.isSigned = object["type"].oneOf<bool>(kResultWords);
    if (result.isSigned)
        readResults<std::int32_t>(object, result);
    else
        readResults<std::uint32_t>(object, result);
    object.finish();
    return result;
}

Event readEvent(JsonObject& object)
{
    Event event;
    event.event = object["event"].number<std::uint32_t>(1);
    event.name = object["name"].identifier();
    object.finish();
    return event;
}

Contract readContract(JsonObject file)
{
    Contract contract;
    file.ignore("$schema");
    file["contract"].number(1, 1);
    contract.service = filledText(file["service"]);
    contract.traceTag = filledText(file["trace_tag"]);
    contract.result = readResult(file["result"].object());
    contract.invalidCaller = filledText(file["invalid_caller"]);
    if (const JsonValue records = file["records"])
        for (const auto& [name, size] : records.members())
            contract.records.push_back({name, size.number<std::uint32_t>(1)});
    if (const JsonValue events = file["events"])
        for (JsonObject& event : events.objects())
            contract.events.push_back(readEvent(event));
    for (JsonObject& command : file["commands"].objects())
        contract.commands.push_back(readCommand(command, contract));
    file.finish();
    return contract;
}

} // namespace

Contract parse(std::string_view text, const std::string& fileName)
{
    const base::JsonDocument document = base::parseJson(text, fileName);
    Contract contract = readContract(document.root().object());
    const std::vector<std::string> found = problems(contract);
    if (!found.empty())
        throw base::JsonError(base::join(found, "\n", [&](const std::string& problem) { return fileName + ": " + problem; }));
    return contract;
}

} // namespace tarn::contract
