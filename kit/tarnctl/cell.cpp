#include "cell.h"

#include "base/hexadecimal.h"
#include "base/join.h"
#include "terminal_text.h"

#include <algorithm>
#include <array>

namespace tarn::ctl
{

namespace
{

constexpr char kUnknown[] = "-";

// Units that are longer in words than as a sign.
constexpr std::array<std::pair<std::string_view, std::string_view>, 3> kSigns = {{
    {"percent", "%"},
    {"degrees Celsius", "C"},
    {"seconds", "s"},
}};

std::string withUnit(const std::string& number, std::string_view unit)
{
    for (const auto& [words, sign] : kSigns)
        if (unit == words)
            unit = sign;
    return unit.empty() ? number : number + " " + std::string(unit);
}

std::string plainText(const Datum& value)
{
    return printable(value.plain());
}

Cell decodedCell(const layout::Decoded& decoded);

// Of an array of structures, none.
Datum::List plainElements(const layout::Decoded& array)
{
    Datum::List list;
    for (const std::vector<layout::Decoded>& element : array.elements)
        if (array.field->hasPlainElements() && !element.empty())
            list.push_back(decodedCell(element.front()).value);
    return list;
}

Cell decodedCell(const layout::Decoded& decoded)
{
    const layout::Field& field = *decoded.field;
    Cell cell;
    switch (field.type)
    {
    case layout::FieldType::kNumber:
    case layout::FieldType::kSigned:
        cell = cellOf(decoded.number, &field.meaning);
        cell.size = field.size;
        break;
    case layout::FieldType::kText:
    case layout::FieldType::kMacAddress:
        cell.value = decoded.text;
        break;
    case layout::FieldType::kBytes:
        cell.value = base::hexText(decoded.bytes);
        break;
    case layout::FieldType::kArray:
        cell.value = plainElements(decoded);
        break;
    }
    return cell;
}

} // namespace

std::string Cell::text() const
{
    if (!shown.empty())
        return shown;
    if (!isKnown())
        return kUnknown;
    if (!name.empty())
        return name;
    if (const Datum::List* list = value.list())
        return list->empty() ? kUnknown : base::join(*list, " ", plainText);
    return withUnit(plainText(value), unit);
}

Cell numberCell(std::int64_t number, std::string unit)
{
    Cell cell;
    cell.value = number;
    cell.unit = std::move(unit);
    return cell;
}

Cell textCell(std::string text)
{
    Cell cell;
    cell.value = std::move(text);
    return cell;
}

Cell listCell(Datum::List list)
{
    Cell cell;
    cell.value = std::move(list);
    return cell;
}

Cell withDuration(Cell cell)
{
    constexpr std::int64_t kMinute = 60;
    constexpr std::int64_t kHour = 60 * kMinute;
    constexpr std::int64_t kDay = 24 * kHour;
    const std::int64_t seconds = cell.number();
    if (!cell.isNumber() || cell.unit != "seconds" || seconds < kMinute)
        return cell;
    const auto both = [seconds](std::int64_t large, const char* largeName, std::int64_t small, const char* smallName)
    { return std::to_string(seconds / large) + largeName + std::to_string(seconds % large / small) + smallName; };
    if (seconds < kHour)
        cell.shown = both(kMinute, " min ", 1, " s");
    else
        cell.shown = seconds < kDay ? both(kHour, " h ", kMinute, " min") : both(kDay, " d ", kHour, " h");
    return cell;
}

Cell cellOf(std::int64_t number, const layout::Meaning* meaning)
{
    Cell cell = numberCell(number);
    if (meaning == nullptr)
        return cell;
    const layout::NumberMeaning explained = layout::explain(*meaning, number);
    cell.unit = meaning->unit;
    cell.hasNames = meaning->values != nullptr || !meaning->flags.empty();
    cell.name = explained.flags.empty() ? explained.valueName : base::join(explained.flags);
    return cell;
}

Fields::Fields(const std::vector<layout::Decoded>& decoded)
{
    for (const layout::Decoded& field : decoded)
    {
        cells_.emplace_back(field.field->name, decodedCell(field));
        if (field.field->type != layout::FieldType::kArray || field.field->hasPlainElements())
            continue;
        std::vector<Fields>& elements = arrays_.emplace_back(field.field->name, std::vector<Fields>()).second;
        for (const std::vector<layout::Decoded>& element : field.elements)
            elements.emplace_back(element);
    }
}

const Cell& Fields::operator[](std::string_view name) const
{
    static const Cell kNone;
    const auto found = std::find_if(cells_.begin(), cells_.end(), [&](const auto& cell) { return cell.first == name; });
    return found == cells_.end() ? kNone : found->second;
}

const std::vector<Fields>& Fields::elements(std::string_view name) const&
{
    static const std::vector<Fields> kNone;
    const auto found = std::find_if(arrays_.begin(), arrays_.end(), [&](const auto& array) { return array.first == name; });
    return found == arrays_.end() ? kNone : found->second;
}

void Fields::set(const std::string& name, Cell cell)
{
    const auto found = std::find_if(cells_.begin(), cells_.end(), [&](const auto& other) { return other.first == name; });
    if (found == cells_.end())
        cells_.emplace_back(name, std::move(cell));
    else
        found->second = std::move(cell);
}

void Fields::add(const Fields& other)
{
    for (const auto& [name, cell] : other.cells_)
        set(name, cell);
    arrays_.insert(arrays_.end(), other.arrays_.begin(), other.arrays_.end());
}

} // namespace tarn::ctl
