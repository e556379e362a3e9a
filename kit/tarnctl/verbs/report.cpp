// `tarnctl report`: everything that the gateway tells, for a support case, as a page and as a document.
#include "base/replace_file.h"
#include "tarnctl/report/collect.h"
#include "tarnctl/report/page.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/verbs/verbs.h"

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

struct ReportOptions
{
    std::optional<std::string> page;
    std::optional<std::string> document;
    bool isDocumentWanted = false; // --json, with a file or without
    CollectOptions collect;
};

void declareReport(Syntax& syntax, ReportOptions& options)
{
    constexpr double kLongest = 3600;
    syntax.text("--html", options.page, "Write a page that needs nothing else", "FILE");
    syntax.text("--json", options.isDocumentWanted, options.document,
                "Write a JSON document, to standard output without a file", "[FILE]");
    syntax.flag("--secrets", options.collect.hasSecrets,
                "Include passphrases, PINs and keys, and bytes that no layout describes, in which there may be some");
    syntax.seconds("--seconds", options.collect.seconds, 0, kLongest, "How long the counters are watched; 0 for not at all");
    syntax.footer(
        "Reads only: nothing of the gateway is set, and no scan is begun; tarnctl scan --wait before it fills in the "
        "neighbours.\nFiles are replaced in one step; with --secrets they are for their owner alone.\n"
        "A gateway that does not answer in full gets a report too; the exit code is then that of the first call without "
        "an answer.\n"
        "Example:\n  tarnctl report --html gateway.html --json gateway.json --seconds 30");
}

// "2 radios, 5 interfaces, 240 answers, 3 refusals"
std::string summary(const Json& report)
{
    std::size_t interfaces = 0;
    for (const Json& radio : report["radios"])
        interfaces += radio["interfaces"].size();
    const auto counted = [](std::size_t number, const char* what)
    { return std::to_string(number) + ' ' + what + (number == 1 ? "" : "s"); };
    return counted(report["radios"].size(), "radio") + ", " + counted(interfaces, "interface") + ", " +
           counted(report["answers"].size(), "answer") + ", " + counted(report["refused"].size(), "refusal");
}

void say(const Console& console, const std::string& file, const Json& report)
{
    if (!console.json)
        console.out << file << ": " << summary(report) << '\n';
}

// What is missing altogether would be easy to miss among the rest.
void remarkMissing(const Console& console, const Json& report)
{
    for (const Json& note : report["notes"])
        console.remark(note.get<std::string>());
    for (const Json& service : report["services"])
        if (const std::string message = service["message"].get<std::string>(); !message.empty())
            console.remark(message);
    if (report["layout"].is_null())
        console.remark("without a layout, what is inside of records is left out");
}

ExitCode report(const Console& given, const ReportOptions& options)
{
    Console console = given;
    console.json = console.json || (options.isDocumentWanted && !options.document); // on standard output
    if (!options.page && !options.document && !console.json)
        throw UsageError("report: expected --html FILE, --json FILE, or --json for standard output");
    if (options.page && options.page == options.document)
        throw UsageError("report: expected two files, one for --html and one for --json");
    for (const std::optional<std::string>& file : {options.page, options.document})
        if (file)
            base::checkReplaceable(*file); // before the time is spent
    const Collected collected = collect(console, options.collect);
    const Json& document = collected.document;
    const base::Readers readers = options.collect.hasSecrets ? base::Readers::kOwnerOnly : base::Readers::kAsUsual;
    if (options.page)
    {
        base::replaceFile(*options.page, reportPage(document), readers);
        say(console, *options.page, document);
    }
    if (options.document)
    {
        base::replaceFile(*options.document, document.dump(2) + '\n', readers);
        say(console, *options.document, document);
    }
    if (console.json)
        console.write(document);
    remarkMissing(console, document);
    return collected.failure ? exitCodeOf(collected.failure->outcome) : ExitCode::kSuccess;
}

} // namespace

void addReport(Verbs& verbs)
{
    verbs.add("report", "Writes down everything that the gateway tells, for a support case", &declareReport, &report);
}

} // namespace tarn::ctl
