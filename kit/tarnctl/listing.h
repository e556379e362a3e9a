// What a verb shows: lists of objects, and single values, as tables for people, CSV, or a JSON document.
//
//     Page page("stations");
//     Listing& stations = page.list("stations", {{"address", "macAddress"}, {"signal", "rssi", &signalTone}});
//     stations.rows.push_back(fields);
//     return page.write(console, survey);
//
// The keys of columns and lists are the tool's own and stay as they are, whatever the layout calls its fields. A number that
// the layout names comes twice in JSON and CSV: KEY is the number, KEY_name its name.
#pragma once

#include "cell.h"
#include "console.h"
#include "survey.h"
#include "terminal_text.h"

#include <deque>
#include <string>
#include <vector>

namespace tarn::ctl
{

struct LayoutInUse;

using ToneOf = Tone (*)(const Cell& cell);

struct Column
{
    const char* key;             // in JSON and CSV
    const char* field;           // of the rows
    ToneOf tone = nullptr;       // plain if there is none
    bool isNamed = false;        // has KEY_name beside it, which is null where the layout has no name
    const char* title = nullptr; // in a table; if there is none the key, with spaces for underscores
};

struct Listing
{
    std::string key;
    std::string heading; // above the table, if the page has more than one
    std::vector<Column> columns;
    std::vector<Fields> rows;
    bool isAside = false;      // left out of CSV, which has but one list
    bool isOnlyInJson = false; // left out of tables, too

    // By a column's key, numbers with the largest first; rows that do not have it come last. Throws UsageError.
    void sort(const std::string& columnKey);
};

class Page
{
public:
    explicit Page(const char* kind) : kind_(kind)
    {
    }

    // References stay valid.
    Listing& list(const char* key, std::vector<Column> columns, const char* heading = "");

    // One value beside the lists: "firmware: 5.3" in front of the tables, a key of the document, a column of the CSV if there
    // is no list at all. If it has no title, that is made of the key.
    void value(const char* key, Cell cell, const char* title = nullptr);

    // Returns the survey's exit code. Throws UsageError if CSV is asked for and the page has more than one list for it.
    ExitCode write(const Console& console, const Survey& survey) const;
    // The same for what was not decoded, so that no layout is named.
    void writeUndecoded(const Console& console, const std::vector<std::string>& notes = {}) const;

private:
    void write(const Console& console, const std::vector<std::string>& notes, const LayoutInUse* inUse) const;
    void writeDocument(const Console& console, const std::vector<std::string>& notes, const LayoutInUse* inUse) const;
    void writeTables(const Console& console) const;
    void writeCsv(const Console& console) const;

    struct Value
    {
        std::string key;
        std::string title;
        Cell cell;
    };

    const char* kind_;
    std::vector<Value> values_;
    std::deque<Listing> lists_;
};

// --- Tones that several verbs use ---

Tone faint(const Cell& cell);
Tone strong(const Cell& cell);
// By the value's name: "off", "no" and "down" are faint.
Tone switchTone(const Cell& cell);
// Good, sufficient, or poor reception; plain unless it is in dBm.
Tone signalTone(const Cell& cell);
// Cool, warm, hot; plain unless it is in degrees Celsius.
Tone temperatureTone(const Cell& cell);

} // namespace tarn::ctl
