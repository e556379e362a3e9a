#include "page.h"

#include "base/embedded_files.h"
#include "base/join.h"
#include "document.h"
#include "markup.h"
#include "pictures.h"
#include "tarnctl/catalogue.h"
#include "tarnctl/listing.h"
#include "tarnctl/rate.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

// Of this directory.
const std::vector<base::EmbeddedFile>& embeddedFiles();

namespace
{

// A page from a file may not fetch anything; the policy makes sure of it whatever is in it.
constexpr char kHead[] = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="color-scheme" content="light dark">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'">
)";

const char* kindOf(Tone tone)
{
    switch (tone)
    {
    case Tone::kStrong:
        return "strong";
    case Tone::kFaint:
        return "faint";
    case Tone::kGood:
        return "good";
    case Tone::kWarning:
        return "warning";
    case Tone::kBad:
        return "bad";
    case Tone::kPlain:
        break;
    }
    return "";
}

// --- Tables -----------------------------------------------------------------------------------------------------------------

Markup cellMarkup(const Cell& cell, ToneOf toneOf)
{
    constexpr std::size_t kLongest = 48; // that is not broken within words
    std::string kind;
    if (!cell.isKnown())
        kind = kindOf(Tone::kFaint);
    else if (toneOf != nullptr)
        kind = kindOf(toneOf(cell));
    const std::string words = cell.text();
    if (words.size() > kLongest)
        kind += " long";
    return element("td", {{"class", kind}}, words);
}

Markup table(const Markup& head, const Markup& rows)
{
    Markup content = element("thead", element("tr", head));
    content += element("tbody", rows);
    return element("div", {{"class", "wide"}}, element("table", content));
}

Markup titles(const std::vector<std::string>& words)
{
    Markup row;
    for (const std::string& word : words)
        row += element("th", word);
    return row;
}

Markup table(const std::vector<Column>& columns, const std::vector<Fields>& list)
{
    Markup head;
    for (const Column& column : columns)
        head += element("th", column.key);
    Markup rows;
    for (const Fields& fields : list)
    {
        Markup row;
        for (const Column& column : columns)
            row += cellMarkup(fields[column.field], column.tone);
        rows += element("tr", row);
    }
    return table(head, rows);
}

Markup section(const char* id, const char* title, const Markup& content)
{
    Markup all = element("h2", title);
    all += content;
    return element("section", {{"id", id}}, all);
}

Markup paragraph(std::string_view words)
{
    return element("p", {{"class", "remark"}}, words);
}

// "Radio temperature" and its value, as long as it is known.
void addTerm(Markup& list, const char* title, const Cell& cell, ToneOf toneOf = nullptr)
{
    if (!cell.isKnown())
        return;
    Markup both = element("dt", title);
    both += element("dd", {{"class", kindOf(toneOf == nullptr ? Tone::kPlain : toneOf(cell))}}, cell.text());
    list += element("div", both);
}

// --- The page ---------------------------------------------------------------------------------------------------------------

class PageWriter
{
public:
    explicit PageWriter(const Json& report) : report_(report)
    {
        for (const Json& answer : report["answers"])
            answers_[answer["function"].get<std::string>()].push_back(&answer);
    }

    std::string write() const
    {
        const std::string title = "Wi-Fi gateway, " + report_["time"].get<std::string>();
        Markup body = header();
        body += notes();
        body += section("radios", "Radios", radios());
        body += section("networks", "Networks", networks());
        body += section("bands", "Occupancy of the bands", bands());
        body += section("stations", "Stations", stations());
        body += section("counters", "Counters", counters());
        body += section("answers", "Everything it told", answers());
        body += section("rest", "What it did not tell", rest());
        body += element("footer", "tarnctl report, " + report_["schema"].get<std::string>());
        return kHead + element("title", title).source() + "\n<style>\n" +
               std::string(base::embeddedText(embeddedFiles(), "page.css")) + "</style>\n</head>\n" +
               element("body", element("main", body)).source() + "\n</html>\n";
    }

private:
    // All answers of a function, or the first as fields.
    const std::vector<const Json*>& answersOf(const std::string& function) const;
    Fields toldBy(const std::string& function) const;
    // Of that function, what is about the same radio, and interface if there is one.
    Fields toldBy(const std::string& function, const Json& subject) const;

    Markup header() const;
    Markup notes() const;
    Markup radios() const;
    Markup networks() const;
    Markup bands() const;
    Markup stations() const;
    Markup counters() const;
    Markup answers() const;
    Markup rest() const;

    void addOwn(std::map<Band, std::vector<Network>>& networks) const;
    void addNeighbours(std::map<Band, std::vector<Network>>& networks) const;

    const Json& report_;
    std::map<std::string, std::vector<const Json*>> answers_;
};

const std::vector<const Json*>& PageWriter::answersOf(const std::string& function) const
{
    static const std::vector<const Json*> kNone;
    const auto found = answers_.find(function);
    return found == answers_.end() ? kNone : found->second;
}

Fields PageWriter::toldBy(const std::string& function) const
{
    const std::vector<const Json*>& all = answersOf(function);
    return all.empty() ? Fields() : fieldsOf(*all.front());
}

Fields PageWriter::toldBy(const std::string& function, const Json& subject) const
{
    for (const Json* const answer : answersOf(function))
        if ((*answer)["subject"] == subject)
            return fieldsOf(*answer);
    return {};
}

Markup PageWriter::header() const
{
    Markup list;
    addTerm(list, "taken", textCell(report_["time"].get<std::string>()));
    addTerm(list, "until", textCell(report_["end"].get<std::string>()));
    addTerm(list, "firmware", toldBy("tarn_qcsapi_firmware_get_version")["firmware_version"]);
    addTerm(list, "up for", withDuration(toldBy("tarn_qcsapi_system_get_time_since_start")["p_elapsed_time"]));
    const Json& layout = report_["layout"];
    const auto told = [&layout](const char* key) { return layout.value(key, ""); };
    addTerm(list, "layout",
            textCell(layout.is_null() ? "none" : told("name") + " " + told("version") + " (" + told("owner") + ")"));
    addTerm(list, "secrets", textCell(report_["secrets"] == true ? "INCLUDED: hand on with care" : "left out"));
    Markup chips;
    for (const Json& service : report_["services"])
        chips +=
            element("li", {{"class", service["answered"] == true ? "good" : "bad"}},
                    service["service"].get<std::string>() + (service["answered"] == true ? " answers" : " does not answer"));
    Markup links;
    for (const auto& [target, words] : {std::pair{"#radios", "Radios"},
                                        {"#networks", "Networks"},
                                        {"#bands", "Bands"},
                                        {"#stations", "Stations"},
                                        {"#counters", "Counters"},
                                        {"#answers", "Everything"},
                                        {"#rest", "Not told"}})
        links += element("a", {{"href", target}}, words);
    Markup content = element("h1", "Wi-Fi gateway");
    content += element("dl", list);
    content += element("ul", {{"class", "chips"}}, chips);
    content += element("nav", links);
    return element("header", content);
}

Markup PageWriter::notes() const
{
    Markup list;
    for (const Json& note : report_["notes"])
        list += element("li", note.get<std::string>());
    for (const Json& service : report_["services"])
        if (const std::string message = service["message"].get<std::string>(); !message.empty())
            list += element("li", message);
    if (report_["layout"].is_null())
        list += element("li", "There was no layout, so what is inside of records is left out.");
    if (const std::size_t refused = report_["refused"].size(); refused > 0)
        list +=
            element("li", std::to_string(refused) + " of its answers were refusals or failures; they are listed at the end.");
    return list.isEmpty() ? list : element("ul", {{"class", "notes"}}, list);
}

Markup PageWriter::radios() const
{
    Markup cards;
    for (const Json& radio : report_["radios"])
    {
        const Json subject = {{"radio", radio["id"]}, {"name", radio["name"]}};
        const Fields data = toldBy("TarnGetRadio", subject);
        const Fields stats = toldBy("TarnGetRadioStats", subject);
        Markup terms;
        addTerm(terms, "channel", data["channel"], &strong);
        addTerm(terms, "width", data["bandwidth"]);
        addTerm(terms, "ready", data["ready"], &switchTone);
        addTerm(terms, "power", data["transmitPower"]);
        addTerm(terms, "temperature", data["temperature"], &temperatureTone);
        addTerm(terms, "stations", stats["stations"]);
        addTerm(terms, "channel load", stats["channelLoad"]);
        addTerm(terms, "noise", stats["noise"]);
        addTerm(terms, "mode", data["phyMode"]);
        addTerm(terms, "country", data["country"]);
        addTerm(terms, "driver", data["driverVersion"]);
        Markup card = element("h3", subjectTitle(subject) + (data["band"].isKnown() ? ", " + data["band"].text() : ""));
        card += element("dl", terms);
        cards += element("article", card);
    }
    return cards.isEmpty() ? paragraph("It told of no radio.") : element("div", {{"class", "cards"}}, cards);
}

Markup PageWriter::networks() const
{
    std::vector<Fields> rows;
    for (const Json* const answer : answersOf("TarnGetSsidIntf"))
    {
        const Json& subject = (*answer)["subject"];
        Fields row = fieldsOf(*answer);
        row.set("interface", textCell(subjectTitle(subject)));
        const Fields security = toldBy("TarnGetAccessPointSecurity", subject);
        row.set("security", security["beaconType"]);
        row.set("pmf", security["pmf"]);
        row.set("stations", toldBy("TarnGetAccessPoint", subject)["stations"]);
        rows.push_back(std::move(row));
    }
    if (rows.empty())
        return paragraph("It told of no network.");
    return table({{"interface", "interface", &strong},
                  {"radio", "radioId"},
                  {"SSID", "ssid", &strong},
                  {"BSSID", "bssid"},
                  {"enabled", "enabled", &switchTone},
                  {"hidden", "hidden", &switchTone},
                  {"security", "security"},
                  {"PMF", "pmf"},
                  {"stations", "stations"}},
                 rows);
}

// --- Pictures ---------------------------------------------------------------------------------------------------------------

Network networkOf(const Fields& fields, std::string name)
{
    return {std::move(name), fields["channel"].number(), fields["bandwidth"].number(), fields["rssi"].number(), false};
}

void PageWriter::addOwn(std::map<Band, std::vector<Network>>& networks) const
{
    for (const Json* const answer : answersOf("TarnGetRadio"))
    {
        const Fields radio = fieldsOf(*answer);
        if (!radio["channel"].isNumber())
            continue;
        Network own = networkOf(radio, subjectTitle((*answer)["subject"]));
        own.isOwn = true;
        networks[bandOf(radio["band"].text(), own.channel)].push_back(own);
    }
}

void PageWriter::addNeighbours(std::map<Band, std::vector<Network>>& networks) const
{
    for (const Json* const answer : answersOf("TarnGetRadioNeighboringResultAt"))
    {
        const Fields neighbour = fieldsOf(*answer);
        if (!neighbour["channel"].isNumber() || !neighbour["rssi"].isNumber())
            continue;
        const std::string ssid = neighbour["ssid"].text();
        const Network network = networkOf(neighbour, ssid.empty() ? "(hidden)" : ssid);
        networks[bandOf(neighbour["band"].text(), network.channel)].push_back(network);
    }
}

Markup PageWriter::bands() const
{
    std::map<Band, std::vector<Network>> networks;
    addOwn(networks);
    addNeighbours(networks);
    Markup content;
    if (answersOf("TarnGetRadioNeighboringResultAt").empty())
        content += paragraph("The gateway held no scan results, so only its own channels are shown; "
                             "tarnctl scan --wait before a report fills in the neighbours.");
    for (const auto& [band, members] : networks)
    {
        Markup figure = bandPicture(band, members);
        const auto own = std::count_if(members.begin(), members.end(), [](const Network& each) { return each.isOwn; });
        figure += element("figcaption", std::string(toString(band)) + ": " + std::to_string(own) + " own, " +
                                            std::to_string(members.size() - static_cast<std::size_t>(own)) +
                                            " neighbours; dashed: this gateway");
        content += element("figure", figure);
    }
    return content;
}

Markup PageWriter::stations() const
{
    std::vector<StationSignal> signals;
    for (const Json* const answer : answersOf("TarnGetAccessPointAssociatedAt"))
    {
        const Fields station = fieldsOf(*answer);
        if (!station["rssi"].isNumber())
            continue;
        std::vector<std::string> remarks;
        for (const char* const field : {"txRate", "rxRate", "phyMode"})
            if (station[field].isKnown())
                remarks.push_back(station[field].text());
        const std::string interface = (*answer)["subject"].value("name", "");
        signals.push_back(
            {station["macAddress"].text() + "  " + interface, station["rssi"].number(), base::join(remarks, " / ")});
    }
    if (signals.empty())
        return paragraph("It told of no station's signal.");
    return element("figure", signalPicture(std::move(signals)));
}

// What a counter's readings make a second; a reading that was not answered is left out.
Curve curveOf(const std::string& path, const Json& counter, const Json& seconds, double scale)
{
    Curve curve;
    curve.name = path.substr(path.rfind('.') + 1);
    std::optional<std::size_t> before;
    for (std::size_t i = 0; i < counter["values"].size(); ++i)
    {
        if (!counter["values"][i].is_number())
            continue;
        const double time = seconds[i].get<double>();
        if (before && time > seconds[*before].get<double>())
        {
            const double grown = growth(counter["values"][*before].get<std::int64_t>(),
                                        counter["values"][i].get<std::int64_t>(), counter["size"].get<std::uint32_t>());
            curve.seconds.push_back(time);
            curve.rates.push_back(grown * scale / (time - seconds[*before].get<double>()));
        }
        before = i;
    }
    return curve;
}

Markup curvesWithLegend(const std::vector<Curve>& curves, const std::string& unit)
{
    Markup figure = curvePicture(curves, unit);
    Markup legend;
    for (std::size_t i = 0; i < curves.size(); ++i)
    {
        Markup entry = curveMark(i);
        entry += element("span", curves[i].name + " " + shortened(curves[i].mean(), unit));
        legend += element("li", entry);
    }
    figure += element("ul", {{"class", "legend"}}, legend);
    return element("figure", figure);
}

// One picture a unit, of what has grown.
Markup counterCard(const Json& series)
{
    constexpr double kBitsOfAByte = 8;
    std::map<std::string, std::vector<Curve>> curves; // by their unit
    std::vector<std::string> constant;
    for (const auto& [path, counter] : series["fields"].items())
    {
        const std::string counted = counter["unit"].get<std::string>();
        const bool isBytes = counted == "bytes";
        Curve curve = curveOf(path, counter, series["seconds"], isBytes ? kBitsOfAByte : 1);
        if (curve.mean() == 0)
            constant.push_back(curve.name);
        else
            curves[isBytes ? "bit/s" : counted + "/s"].push_back(std::move(curve));
    }
    Markup card = element("h3", subjectTitle(series["subject"]));
    card += element("p", {{"class", "remark"}}, element("code", series["function"].get<std::string>()));
    for (const auto& [unit, members] : curves)
        card += curvesWithLegend(members, unit);
    if (!constant.empty())
        card += paragraph("without change: " + base::join(constant));
    return element("article", card);
}

Markup PageWriter::counters() const
{
    Markup cards;
    for (const Json& series : report_["counters"])
        cards += counterCard(series);
    if (cards.isEmpty())
        return paragraph("No counter was watched.");
    return element("div", {{"class", "cards curves"}}, cards);
}

// --- Everything -------------------------------------------------------------------------------------------------------------

// The paths of all answers, in the order in which they come.
std::vector<std::string> pathsOf(const std::vector<const Json*>& answers)
{
    std::vector<std::string> paths;
    std::set<std::string> known;
    for (const Json* const answer : answers)
        for (const auto& field : (*answer)["fields"].items())
            if (known.insert(field.key()).second)
                paths.push_back(field.key());
    return paths;
}

Markup cellAt(const Json& answer, const std::string& path)
{
    const Json& fields = answer["fields"];
    return cellMarkup(fields.contains(path) ? fieldCell(fields[path]) : Cell(), nullptr);
}

// A row a field as long as there is room for the answers beside each other, else a row an answer.
Markup answerTable(const std::vector<const Json*>& answers)
{
    constexpr std::size_t kMostColumns = 4;
    const std::vector<std::string> paths = pathsOf(answers);
    const bool isByField = answers.size() <= kMostColumns && paths.size() > 1;
    Markup head = element("th", "");
    Markup rows;
    const auto addRow = [&rows](const std::string& title, const Markup& cells)
    {
        Markup row = element("th", title);
        row += cells;
        rows += element("tr", row);
    };
    if (isByField)
    {
        for (const Json* const answer : answers)
            head += element("th", subjectTitle((*answer)["subject"]));
        for (const std::string& path : paths)
        {
            Markup cells;
            for (const Json* const answer : answers)
                cells += cellAt(*answer, path);
            addRow(path, cells);
        }
        return table(head, rows);
    }
    head += titles(paths);
    for (const Json* const answer : answers)
    {
        Markup cells;
        for (const std::string& path : paths)
            cells += cellAt(*answer, path);
        addRow(subjectTitle((*answer)["subject"]), cells);
    }
    return table(head, rows);
}

Markup PageWriter::answers() const
{
    Markup content;
    std::string group;
    for (const LibraryFunction& function : catalogue())
    {
        const std::vector<const Json*>& told = answersOf(function.name);
        if (told.empty())
            continue;
        if (function.group != group)
            content += element("h3", group = function.group);
        Markup summary = element("code", function.name);
        summary += element("span", function.description);
        Markup details = element("summary", summary);
        details += answerTable(told);
        content += element("details", details);
    }
    return content.isEmpty() ? paragraph("Nothing.") : content;
}

Markup PageWriter::rest() const
{
    Markup refused;
    for (const Json& refusal : report_["refused"])
    {
        Markup row = element("td", element("code", refusal["function"].get<std::string>()));
        row += element("td", subjectTitle(refusal["subject"]));
        row += element("td", refusal["message"].get<std::string>());
        refused += element("tr", row);
    }
    Markup unasked;
    for (const Json& each : report_["unasked"])
    {
        Markup row = element("td", element("code", each["function"].get<std::string>()));
        row += element("td", base::join(each["needs"], ", ", [](const Json& need) { return need.get<std::string>(); }));
        unasked += element("tr", row);
    }
    Markup content = element("h3", "Refused or failed");
    content += refused.isEmpty() ? paragraph("Nothing.") : table(titles({"function", "about", "what it answered"}), refused);
    content += element("h3", "Not asked: more is needed than a radio, an interface, a station or an entry");
    content += table(titles({"function", "needs"}), unasked);
    return content;
}

} // namespace

std::string reportPage(const Json& report)
{
    return PageWriter(report).write();
}

} // namespace tarn::ctl
