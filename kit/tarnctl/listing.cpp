#include "listing.h"

#include "base/join.h"
#include "base/suggestions.h"
#include "base/timestamp.h"
#include "fields.h"
#include "layout_in_use.h"
#include "usage_error.h"
#include "values.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

std::string titleFromKey(std::string key)
{
    std::replace(key.begin(), key.end(), '_', ' ');
    return key;
}

std::string nameKey(const std::string& key)
{
    return key + "_name";
}

Json nameOf(const Cell& cell)
{
    return cell.name.empty() ? Json(nullptr) : Json(cell.name);
}

const Column* columnOf(const Listing& list, const std::string& key)
{
    for (const Column& column : list.columns)
        if (key == column.key)
            return &column;
    return nullptr;
}

// Whether one comes before the other: numbers from the largest, texts in their order, what is not known last.
bool comesBefore(const Cell& one, const Cell& other)
{
    if (one.isKnown() != other.isKnown())
        return one.isKnown();
    if (one.isNumber() && other.isNumber())
        return one.number() > other.number();
    return one.text() < other.text();
}

// --- JSON -------------------------------------------------------------------------------------------------------------------

Json rowDocument(const Listing& list, const Fields& row)
{
    Json document = Json::object();
    for (const Column& column : list.columns)
    {
        const Cell& cell = row[column.field];
        document[column.key] = cell.value.json();
        if (column.isNamed)
            document[nameKey(column.key)] = nameOf(cell);
    }
    return document;
}

void addUnits(Json& units, const Listing& list)
{
    for (const Column& column : list.columns)
        for (const Fields& row : list.rows)
            if (const std::string& unit = row[column.field].unit; !unit.empty())
                units[column.key] = unit;
}

// --- Tables -----------------------------------------------------------------------------------------------------------------

bool isRight(const Cell& cell)
{
    return cell.isNumber() && cell.name.empty();
}

// Nothing is left blank, so that the columns can be told apart.
TableCell tableCell(const Cell& cell, ToneOf tone)
{
    const std::string text = cell.text();
    if (!cell.isKnown() || text.empty())
        return {text.empty() ? "-" : text, Tone::kFaint};
    return {text, tone == nullptr ? Tone::kPlain : tone(cell), isRight(cell)};
}

void writeTable(const Console& console, const Listing& list)
{
    Table table;
    std::vector<TableCell> titles;
    for (const Column& column : list.columns)
    {
        const auto isNumeric = [&](const Fields& row) { return isRight(row[column.field]); };
        titles.emplace_back(column.title == nullptr ? titleFromKey(column.key) : column.title, Tone::kStrong,
                            std::any_of(list.rows.begin(), list.rows.end(), isNumeric));
    }
    table.add(std::move(titles));
    for (const Fields& row : list.rows)
    {
        std::vector<TableCell> cells;
        for (const Column& column : list.columns)
        {
            const Cell& cell = row[column.field];
            cells.push_back(tableCell(cell, column.tone));
        }
        table.add(std::move(cells));
    }
    if (console.terminal.showsResults)
        if (const std::vector<std::string> left = table.fit(console.terminal.width); !left.empty())
            console.remark("no room for: " + base::join(left));
    table.write(console.out, console.colours);
}

// --- CSV --------------------------------------------------------------------------------------------------------------------

// As RFC 4180 has it.
std::string csvText(const Json& value)
{
    std::string text;
    if (value.is_string())
        text = value.get<std::string>();
    else if (value.is_array())
        text =
            base::join(value, " ", [](const Json& item) { return item.is_string() ? item.get<std::string>() : item.dump(); });
    else if (!value.is_null())
        text = value.dump();
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string quoted = "\"";
    for (const char character : text)
        quoted += character == '"' ? std::string("\"\"") : std::string(1, character);
    return quoted + '"';
}

void writeCsvRow(const Console& console, const Json& row, bool isTitle)
{
    std::vector<std::string> cells;
    for (const auto& [key, value] : row.items())
        cells.push_back(isTitle ? key : csvText(value));
    console.out << base::join(cells, ",") << '\n';
}

bool isInCsv(const Listing& list)
{
    return !list.isAside && !list.isOnlyInJson;
}

bool hasName(const Cell& cell, std::initializer_list<const char*> names)
{
    return std::find(names.begin(), names.end(), cell.name) != names.end();
}

} // namespace

void Listing::sort(const std::string& columnKey)
{
    const Column* const column = columnOf(*this, columnKey);
    if (column == nullptr)
    {
        std::vector<std::string> keys(columns.size());
        std::transform(columns.begin(), columns.end(), keys.begin(), [](const Column& each) { return each.key; });
        throw UsageError("--sort: there is no column " + inQuotes(columnKey) + "; expected one of " + base::join(keys),
                         base::suggestions(columnKey, keys));
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [column](const Fields& one, const Fields& other)
                     { return comesBefore(one[column->field], other[column->field]); });
}

Listing& Page::list(const char* key, std::vector<Column> columns, const char* heading)
{
    lists_.push_back({key, heading, std::move(columns), {}, false, false});
    return lists_.back();
}

void Page::value(const char* key, Cell cell, const char* title)
{
    values_.push_back({key, title == nullptr ? titleFromKey(key) : title, std::move(cell)});
}

ExitCode Page::write(const Console& console, const Survey& survey) const
{
    write(console, survey.notes(), layoutInUse());
    return survey.exitCode();
}

void Page::writeUndecoded(const Console& console, const std::vector<std::string>& notes) const
{
    write(console, notes, nullptr);
}

void Page::write(const Console& console, const std::vector<std::string>& notes, const LayoutInUse* inUse) const
{
    if (console.csv && std::count_if(lists_.begin(), lists_.end(), isInCsv) > 1)
        throw UsageError("--format csv: " + std::string(kind_) + " shows more than one table; expected table or json");
    if (console.json)
        writeDocument(console, notes, inUse);
    else if (console.csv)
        writeCsv(console);
    else
        writeTables(console);
    if (inUse != nullptr && !console.json && !console.repeats)
        console.remark("by the layout " + inUse->layout.title());
    for (const std::string& note : notes)
        console.remark(note);
}

void Page::writeDocument(const Console& console, const std::vector<std::string>& notes, const LayoutInUse* inUse) const
{
    Json document = Console::document(kind_);
    document["time"] = base::Timestamp().text;
    document["layout"] = layoutDocument(inUse);
    Json units = Json::object();
    for (const auto& [key, title, cell] : values_)
    {
        document[key] = cell.value.json();
        if (cell.hasNames)
            document[nameKey(key)] = nameOf(cell);
        if (!cell.unit.empty())
            units[key] = cell.unit;
    }
    for (const Listing& list : lists_)
    {
        Json& rows = document[list.key] = Json::array();
        for (const Fields& row : list.rows)
            rows.push_back(rowDocument(list, row));
        addUnits(units, list);
    }
    document["units"] = units;
    document["notes"] = notes;
    console.write(document);
}

void Page::writeTables(const Console& console) const
{
    const char* separator = console.repeats && !console.terminal.showsResults ? "\n" : "";
    if (!values_.empty())
        console.out << separator;
    for (const Value& value : values_)
        console.out << value.title << ": " << value.cell.text() << '\n';
    if (!values_.empty())
        separator = "\n";
    for (const Listing& list : lists_)
    {
        if (list.isOnlyInJson)
            continue;
        console.out << separator;
        if (lists_.size() > 1 && !list.heading.empty())
            console.out << (console.colours ? toned(list.heading, Tone::kStrong) : list.heading) << '\n';
        writeTable(console, list);
        separator = "\n";
    }
    console.out << std::flush;
}

void Page::writeCsv(const Console& console) const
{
    Listing whole;
    if (lists_.empty())
    {
        Fields& row = whole.rows.emplace_back();
        for (const Value& value : values_)
        {
            whole.columns.push_back({value.key.c_str(), value.key.c_str(), nullptr, value.cell.hasNames});
            row.set(value.key, value.cell);
        }
    }
    const auto main = std::find_if(lists_.begin(), lists_.end(), isInCsv);
    const Listing& list = main == lists_.end() ? whole : *main;
    if (!console.repeats)
        writeCsvRow(console, rowDocument(list, Fields()), true);
    for (const Fields& row : list.rows)
        writeCsvRow(console, rowDocument(list, row), false);
    console.out << std::flush;
}

// --- Tones ------------------------------------------------------------------------------------------------------------------

Tone faint(const Cell&)
{
    return Tone::kFaint;
}

Tone strong(const Cell&)
{
    return Tone::kStrong;
}

Tone switchTone(const Cell& cell)
{
    return hasName(cell, {"off", "no", "down", "none"}) ? Tone::kFaint : Tone::kPlain;
}

Tone signalTone(const Cell& cell)
{
    constexpr std::int64_t kGoodFrom = -60;
    constexpr std::int64_t kSufficientFrom = -75;
    if (cell.unit != "dBm" || !cell.isNumber())
        return Tone::kPlain;
    if (cell.number() >= kGoodFrom)
        return Tone::kGood;
    return cell.number() >= kSufficientFrom ? Tone::kWarning : Tone::kBad;
}

Tone temperatureTone(const Cell& cell)
{
    constexpr std::int64_t kWarmFrom = 75;
    constexpr std::int64_t kHotFrom = 90;
    if (cell.unit != "degrees Celsius" || !cell.isNumber() || cell.number() < kWarmFrom)
        return Tone::kPlain;
    return cell.number() < kHotFrom ? Tone::kWarning : Tone::kBad;
}

} // namespace tarn::ctl
