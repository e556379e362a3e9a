#include "answer_reader.h"

#include "base/letter_case.h"
#include "tarnctl/secrets.h"
#include "tarnctl/values.h"

#include <algorithm>
#include <array>
#include <utility>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

// --- Which values are measured ----------------------------------------------------------------------------------------------

bool contains(const std::string& name, const char* word)
{
    return base::lowerCase(name).find(word) != std::string::npos;
}

// Functions that measure, by words of their names. It is all there is to go by without a layout.
bool measures(const std::string& function)
{
    static constexpr std::array<const char*, 8> kWords = {"stats", "rssi",  "temperature",          "get_time",
                                                          "mcs",   "error", "currenttransmitpower", "tx_power"};
    return std::any_of(kWords.begin(), kWords.end(), [&](const char* word) { return contains(function, word); });
}

// Names of fields that somebody can set, of all records that are inputs.
std::set<std::string> settableFields()
{
    std::set<std::string> names;
    for (const LibraryFunction& function : catalogue())
        for (const FunctionParameter& parameter : function.parameters)
            if (const layout::Structure* const structure = parameter.isInput ? structureOf(function, parameter) : nullptr)
                for (const layout::Field& field : structure->fields)
                    names.insert(field.name);
    return names;
}

bool isCounterUnit(const std::string& unit)
{
    return unit == "bytes" || unit == "packets" || unit == "errors";
}

bool isMeasuredUnit(const std::string& unit)
{
    return isCounterUnit(unit) || unit == "seconds" || unit == "dBm" || unit == "degrees Celsius" || unit == "Mbit/s" ||
           unit == "percent";
}

// --- Values -----------------------------------------------------------------------------------------------------------------

bool isWritten(const FunctionParameter& output)
{
    return output.wire == nullptr || output.wire->encoding != contract::Encoding::kNothing;
}

// Of a field that is no array.
Json plainValue(const layout::Decoded& decoded)
{
    if (decoded.field->isNumber())
        return decoded.number;
    return decoded.field->type == layout::FieldType::kBytes ? hexText(decoded.bytes) : decoded.text;
}

// A document holds UTF-8 only. Of a text that is none it holds the bytes as well.
Json textField(const std::string& text)
{
    Json field = {{"value", text}};
    if (Json::parse(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace)) != text)
        field["hex"] = hexText(Bytes(text.begin(), text.end()));
    return field;
}

// Of an array without structures in it.
Json listField(const layout::Decoded& decoded)
{
    Json list = Json::array();
    for (const std::vector<layout::Decoded>& element : decoded.elements)
        list.push_back(plainValue(element.front()));
    Json field = {{"value", std::move(list)}};
    if (const std::string& unit = decoded.field->elementFields.front().meaning.unit; !unit.empty())
        field["unit"] = unit;
    return field;
}

} // namespace

AnswerReader::AnswerReader(bool hasSecrets) : hasSecrets_(hasSecrets), settable_(settableFields())
{
}

bool AnswerReader::isCounter(const Json& field)
{
    return field.contains("size");
}

Json AnswerReader::fields(const Report& report) const
{
    Json fields = Json::object();
    for (const PreparedArgument& argument : report.arguments.all)
        if (argument.parameter->isOutput && !argument.isNull && isWritten(*argument.parameter))
            addOutput(fields, report, argument);
    return fields;
}

void AnswerReader::addOutput(Json& fields, const Report& report, const PreparedArgument& output) const
{
    const FunctionParameter& parameter = *output.parameter;
    const std::string& function = report.function->name;
    if (const layout::Structure* const structure = structureOf(*report.function, parameter))
    {
        for (const layout::Decoded& decoded : layout::decode(*structure, output.content()))
            addDecoded(fields, function, parameter.name + ".", decoded);
    }
    else if (parameter.form == Form::kNumber)
        addNumbers(fields, *report.function, output);
    else if (parameter.form == Form::kText)
        fields[parameter.name] = hiddenUnlessAsked(textField(textOf(output.content())), parameter.name, false);
    else if (output.length == kMacAddressSize)
        fields[parameter.name] = {{"value", hexText(output.content(), ":")}};
    else
        fields[parameter.name] = opaque(output.content(), function);
}

void AnswerReader::addNumbers(Json& fields, const LibraryFunction& function, const PreparedArgument& output) const
{
    const layout::Meaning* const meaning = meaningOf(function, *output.parameter);
    const std::vector<std::int64_t> numbers = output.numbers();
    for (std::size_t i = 0; i < numbers.size(); ++i)
    {
        const std::string& name = output.parameter->name;
        const std::string path = numbers.size() == 1 ? name : name + "[" + std::to_string(i) + "]";
        fields[path] = numberField({numbers[i], output.parameter->width}, meaning, function.name, name);
    }
}

void AnswerReader::addDecoded(Json& fields, const std::string& function, const std::string& prefix,
                              const layout::Decoded& decoded) const
{
    const layout::Field& field = *decoded.field;
    const std::string path = prefix + field.name;
    if (field.isNumber())
        fields[path] = numberField({decoded.number, field.size}, &field.meaning, function, field.name);
    else if (field.type == layout::FieldType::kArray && field.hasPlainElements())
        fields[path] = hiddenUnlessAsked(listField(decoded), field.name, false);
    else if (field.type == layout::FieldType::kArray)
        for (std::size_t i = 0; i < decoded.elements.size(); ++i)
            for (const layout::Decoded& inner : decoded.elements[i])
                addDecoded(fields, function, path + "[" + std::to_string(i) + "].", inner);
    else
        fields[path] = hiddenUnlessAsked(field.type == layout::FieldType::kText ? textField(decoded.text)
                                                                                : Json{{"value", plainValue(decoded)}},
                                         field.name, false);
}

Json AnswerReader::numberField(Number number, const layout::Meaning* meaning, const std::string& function,
                               const std::string& name) const
{
    Json field = {{"value", number.value}};
    if (meaning != nullptr)
        addMeaning(field, number.value, *meaning);
    const std::string unit = meaning == nullptr ? "" : meaning->unit;
    const bool isSetting = settable_.count(name) != 0 || contains(name, "interval");
    if (measures(function) || contains(name, "mcs") || (isMeasuredUnit(unit) && !isSetting))
        field["volatile"] = true;
    if (isCounterUnit(unit) && field.contains("volatile"))
        field["size"] = number.size;
    return hiddenUnlessAsked(std::move(field), name, true);
}

Json AnswerReader::hiddenUnlessAsked(Json field, const std::string& name, bool isNumber) const
{
    if (!isSecret(name, isNumber))
        return field;
    if (!hasSecrets_)
        return {{"value", nullptr}, {"hidden", true}};
    field["secret"] = true;
    return field;
}

// Nobody knows what is inside, so it may be a secret, unless it is too short for one.
Json AnswerReader::opaque(const Bytes& bytes, const std::string& function) const
{
    constexpr std::size_t kShortestSecret = 4;
    Json field = {{"value", nullptr}, {"bytes", bytes.size()}};
    const bool isSecret = bytes.size() >= kShortestSecret;
    if (hasSecrets_ || !isSecret)
        field["value"] = hexText(bytes);
    if (isSecret)
        field[hasSecrets_ ? "secret" : "hidden"] = true;
    if (measures(function))
        field["volatile"] = true;
    return field;
}

} // namespace tarn::ctl
