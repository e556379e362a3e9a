// `tarnctl diff`: two reports, or two gateways, field by field.
#include "tarnctl/layout_in_use.h"
#include "tarnctl/listing.h"
#include "tarnctl/report/collect.h"
#include "tarnctl/report/compare.h"
#include "tarnctl/report/document.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/values.h"
#include "tarnctl/verbs/verbs.h"

#include <cstdlib>
#include <filesystem>
#include <future>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

struct DiffOptions
{
    std::string a;
    std::string b;
    bool withMeasured = false;
};

void declareDiff(Syntax& syntax, DiffOptions& options)
{
    syntax.text("A", options.a, "A report that report --json FILE wrote, or the directory of a running gateway's sockets");
    syntax.text("B", options.b, "What it is compared with");
    syntax.flag("--all", options.withMeasured, "Compare what is measured, too: counters, times, signals, temperatures");
    syntax.footer("Secrets are compared where both sides have them, and never shown.\n"
                  "Exit codes: 0 if they are the same, 1 if they differ, as tarnctl's otherwise.");
}

// In a thread of its own, since the platform's connections belong to a thread and these are to other services.
Json reportOfGateway(const Console& console, const std::string& directory)
{
    setenv("KORIIL_DIR", std::filesystem::canonical(directory).c_str(), 1);
    loadLayoutAnew();
    CollectOptions options;
    options.seconds = 0;
    options.hasSecrets = true; // to be compared
    Collected collected = std::async(std::launch::async, [&] { return collect(console, options); }).get();
    if (collected.failure && collected.document["answers"].empty())
        throw CallFailure(*collected.failure);
    return std::move(collected.document);
}

Json reportFrom(const Console& console, const std::string& source)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(source, error);
    if (!std::filesystem::exists(status))
        throw UsageError(inQuotes(source) + " is not there; expected a report's file, or the directory of a gateway's sockets");
    return std::filesystem::is_directory(status) ? reportOfGateway(console, source) : readReport(source);
}

std::string layoutTitle(const Json& layout)
{
    if (!layout.is_object())
        return "no layout";
    return "layout " + layout.value("name", "") + ' ' + layout.value("version", "");
}

// What makes the comparison less than it seems.
std::vector<std::string> notesOn(const Json& a, const Json& b, const Comparison& comparison)
{
    std::vector<std::string> notes;
    const auto layoutOf = [](const Json& report) { return layoutTitle(report.value("layout", Json(nullptr))); };
    if (layoutOf(a) != layoutOf(b))
        notes.push_back("read by different layouts: A by " + layoutOf(a) + ", B by " + layoutOf(b));
    if (comparison.hidden > 0)
        notes.push_back("hidden, so not compared: " + std::to_string(comparison.hidden) +
                        " secrets or blocks that no layout describes");
    if (comparison.measured > 0)
        notes.push_back("measured, so not compared without --all: " + std::to_string(comparison.measured) + " fields");
    return notes;
}

// The cell with its unit in the text, since each row of the table has another one.
Cell withoutUnit(Cell cell)
{
    cell.shown = cell.text();
    cell.unit.clear();
    cell.hasNames = true;
    return cell;
}

ExitCode diff(const Console& console, const DiffOptions& options)
{
    const Json a = reportFrom(console, options.a);
    const Json b = reportFrom(console, options.b);
    const Comparison comparison = compare(a, b, options.withMeasured);
    Page page("diff");
    page.value("a", textCell(options.a));
    page.value("b", textCell(options.b));
    page.value("compared", numberCell(static_cast<std::int64_t>(comparison.compared)));
    page.value("different", numberCell(static_cast<std::int64_t>(comparison.differences.size())));
    Listing& list = page.list("differences", {{"subject", "subject", &strong},
                                              {"field", "field"},
                                              {"a", "a", nullptr, true},
                                              {"b", "b", nullptr, true},
                                              {"function", "function", &faint}});
    for (const Difference& each : comparison.differences)
    {
        Fields& row = list.rows.emplace_back();
        row.set("subject", textCell(each.subject));
        row.set("field", each.field.empty() ? Cell() : textCell(each.field));
        row.set("a", withoutUnit(each.a));
        row.set("b", withoutUnit(each.b));
        row.set("function", each.function.empty() ? Cell() : textCell(each.function));
    }
    page.writeUndecoded(console, notesOn(a, b, comparison));
    return comparison.differences.empty() ? ExitCode::kSuccess : ExitCode::kOther;
}

} // namespace

void addDiff(Verbs& verbs)
{
    verbs.add("diff", "Compares two reports, or two running gateways, field by field", &declareDiff, &diff);
}

} // namespace tarn::ctl
