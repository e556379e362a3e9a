#include "collect.h"

#include "answer_reader.h"
#include "base/timestamp.h"
#include "questions.h"
#include "tarnctl/fields.h"
#include "tarnctl/layout_in_use.h"
#include "tarnctl/progress.h"
#include "tarnctl/survey.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <set>
#include <stdexcept>
#include <thread>

namespace tarn::ctl
{

namespace
{

using Clock = std::chrono::steady_clock;

constexpr std::size_t kReadings = 10; // of the counters, besides the first

// An index counts up to the number that the gateway says, or to the first refusal; a gateway that refuses none is stopped here.
constexpr std::int64_t kMostEntries = 4096;
constexpr std::int64_t kMostWithoutNumber = 256;

// A service is given up after so many calls one after another that it did not answer.
constexpr std::size_t kMostFailures = 3;

// What a question is about. Pointers are null, and numbers negative, for what it does not concern.
struct Subject
{
    const Radio* radio = nullptr;
    const Interface* interface = nullptr;
    std::string station;
    std::int64_t index = -1;
};

struct Station
{
    const Interface* interface = nullptr;
    std::string address;
    std::int64_t index = 0; // among those of the interface
};

Json subjectDocument(const Subject& subject)
{
    Json document = Json::object();
    if (subject.interface != nullptr)
        document = {
            {"radio", subject.interface->radioId}, {"interface", subject.interface->id}, {"name", subject.interface->name}};
    else if (subject.radio != nullptr)
        document = {{"radio", subject.radio->id}, {"name", subject.radio->name}};
    if (!subject.station.empty())
        document["station"] = subject.station;
    if (subject.index >= 0)
        document["index"] = subject.index;
    return document;
}

Assignments assignmentsFor(const Question& question, const Subject& subject)
{
    Assignments all;
    const auto add = [&all](const FunctionParameter* parameter, const std::string& value)
    {
        if (parameter != nullptr)
            all.push_back(parameter->name + "=" + value);
    };
    const bool isOnInterface = subject.interface != nullptr;
    if (isOnInterface || subject.radio != nullptr)
        add(question.radio, std::to_string(isOnInterface ? subject.interface->radioId : subject.radio->id));
    if (isOnInterface)
    {
        add(question.object, std::to_string(subject.interface->id));
        add(question.interface, subject.interface->name);
    }
    add(question.station, subject.station);
    add(question.index, std::to_string(std::max<std::int64_t>(subject.index, 0)));
    return all;
}

// --- Collecting -------------------------------------------------------------------------------------------------------------

class Collector
{
public:
    Collector(const Console& console, const CollectOptions& options)
        : console_(console), options_(options), all_(allQuestions()), reader_(options.hasSecrets)
    {
    }

    Collected collect()
    {
        const base::Timestamp start;
        findObjects();
        askEverything();
        watchCounters(Clock::now());
        return {document(start.text), firstFailure_};
    }

private:
    // What a counter said at several times.
    struct Series
    {
        const Question* question = nullptr;
        Subject subject;
        std::vector<double> seconds; // of each reading
        Json fields;                 // by path: unit, size and values
    };

    void findObjects();
    void findNamelessInterfaces(Survey& survey);
    void askEverything();
    void findCounters();
    void readCounters(Clock::time_point from);
    void watchCounters(Clock::time_point from);
    Json currentFields(const Series& series);

    std::vector<Subject> subjectsOf(const Question& question) const;
    std::vector<std::pair<const Question*, Subject>> plan() const;
    void ask(const Question& question, const Subject& subject);
    void askEach(const Question& question, Subject subject);
    std::optional<std::int64_t> numberFor(const Question& question, const Subject& subject);

    // None if the service has been given up.
    std::optional<Report> perform(const LibraryFunction& function, const Assignments& assignments);
    void fail(const Report& report);
    void refuse(const Report& report, const Subject& subject);

    Json document(const std::string& start) const;
    Json servicesDocument() const;
    Json objectsDocument() const;
    Json countersDocument() const;
    Json unaskedDocument() const;

    const Console& console_;
    const CollectOptions options_;
    const Questions all_;
    const AnswerReader reader_;
    std::vector<Radio> radios_;
    std::vector<Station> stations_;
    std::map<std::string, std::size_t> failures_; // of each service, one after another
    std::map<std::string, Report> lost_;          // services that have been given up, with the last call
    std::set<std::string> answered_;              // services
    std::optional<Report> firstFailure_;
    std::vector<std::string> notes_;
    Json answers_ = Json::array();
    Json refused_ = Json::array();
    std::vector<Series> counters_;
};

void Collector::findObjects()
try
{
    Survey survey;
    radios_ = survey.radios();
    if (layoutInUse() == nullptr)
        findNamelessInterfaces(survey);
    for (const Radio& radio : radios_)
        for (const Interface& interface : radio.interfaces)
        {
            std::int64_t index = 0;
            for (const Fields& station : survey.stations(interface))
                if (const std::string* address = station["macAddress"].value.text())
                    stations_.push_back({&interface, *address, index++});
        }
}
catch (const CallFailure& failure)
{
    refuse(failure.report, {});
    if (!failure.report.hasReply())
        fail(failure.report);
}
catch (const std::runtime_error& error)
{
    notes_.emplace_back(error.what()); // about a number that cannot be
}

// Without a layout an interface has its ids, which are enough for the device service; the module goes by names.
void Collector::findNamelessInterfaces(Survey& survey)
{
    for (Radio& radio : radios_)
    {
        const std::int64_t number = survey.ask("TarnGetSsidIntfNum", radio.asRadio())["number"].number();
        for (std::int64_t id = 1; id <= std::min(number, kMostEntries); ++id)
        {
            Interface interface;
            interface.radioId = radio.id;
            interface.id = static_cast<std::uint32_t>(id);
            interface.name = std::to_string(radio.id) + "." + std::to_string(id);
            radio.interfaces.push_back(std::move(interface));
        }
    }
}

std::vector<Subject> Collector::subjectsOf(const Question& question) const
{
    std::vector<Subject> subjects;
    if (question.scope == Scope::kGateway)
        subjects.emplace_back();
    for (const Radio& radio : radios_)
    {
        if (question.scope == Scope::kRadio)
            subjects.push_back({&radio, nullptr, "", -1});
        for (const Interface& interface : radio.interfaces)
            if (question.scope == Scope::kInterface && (!question.isOfModule || interface.onModule))
                subjects.push_back({nullptr, &interface, "", -1});
    }
    for (const Station& station : stations_)
        if (question.scope == Scope::kStation && (!question.isOfModule || station.interface->onModule))
            subjects.push_back({nullptr, station.interface, station.address, question.index == nullptr ? -1 : station.index});
    return subjects;
}

std::vector<std::pair<const Question*, Subject>> Collector::plan() const
{
    std::vector<std::pair<const Question*, Subject>> steps;
    for (const Question& question : all_.questions)
        for (const Subject& subject : subjectsOf(question))
            steps.emplace_back(&question, subject);
    return steps;
}

void Collector::askEverything()
{
    const auto steps = plan();
    Progress progress(console_, "asking the gateway");
    std::size_t asked = 0;
    for (const auto& [question, subject] : steps)
    {
        progress.show(asked++, steps.size(), "questions");
        if (question->index != nullptr && question->scope != Scope::kStation)
            askEach(*question, subject);
        else
            ask(*question, subject);
    }
}

void Collector::ask(const Question& question, const Subject& subject)
{
    const std::optional<Report> report = perform(*question.function, assignmentsFor(question, subject));
    if (report && report->outcome == CallOutcome::kDone)
        answers_.push_back({{"function", question.function->name},
                            {"subject", subjectDocument(subject)},
                            {"fields", reader_.fields(*report)}});
    else if (report)
        refuse(*report, subject);
}

void Collector::askEach(const Question& question, Subject subject)
{
    const std::optional<std::int64_t> number = numberFor(question, subject);
    const std::int64_t most = number ? std::min(*number, kMostEntries) : kMostWithoutNumber;
    for (subject.index = 0; subject.index < most; ++subject.index)
    {
        const std::size_t refusedBefore = refused_.size();
        ask(question, subject);
        if (lost_.count(question.function->service) != 0)
            return;
        if (number || refused_.size() == refusedBefore)
            continue;
        if (subject.index > 0 && refused_.back()["status"] != nullptr) // the end
            refused_.erase(refusedBefore);
        return;
    }
}

// Stations have their own numbers; for the rest a function says how many there are.
std::optional<std::int64_t> Collector::numberFor(const Question& question, const Subject& subject)
{
    if (question.index->name == "association_index")
        return std::count_if(stations_.begin(), stations_.end(),
                             [&](const Station& station) { return station.interface == subject.interface; });
    if (question.number == nullptr)
        return std::nullopt;
    Assignments assignments = assignmentsFor(question, subject);
    assignments.pop_back(); // the index
    const std::optional<Report> report = perform(*question.number, assignments);
    return report && report->outcome == CallOutcome::kDone ? report->number("number") : std::optional<std::int64_t>();
}

std::optional<Report> Collector::perform(const LibraryFunction& function, const Assignments& assignments)
{
    if (lost_.count(function.service) != 0)
        return std::nullopt;
    Report report = ctl::perform(function.name, assignments);
    if (report.hasReply())
    {
        answered_.insert(function.service);
        failures_.erase(function.service);
    }
    else if (report.seen.ipcStatus)
        fail(report);
    return report;
}

void Collector::fail(const Report& report)
{
    const std::string& service = report.function->service;
    if (!firstFailure_)
        firstFailure_ = report;
    if (++failures_[service] == kMostFailures || report.outcome == CallOutcome::kNoService)
        lost_.emplace(service, report);
}

void Collector::refuse(const Report& report, const Subject& subject)
{
    const layout::Status* const status = report.hasReply() ? statusOf(*report.function, report.result.number) : nullptr;
    refused_.push_back({{"function", report.function->name},
                        {"subject", subjectDocument(subject)},
                        {"outcome", toString(report.outcome)},
                        {"status", report.hasReply() ? Json(report.result.number) : Json(nullptr)},
                        {"status_name", status == nullptr ? Json(nullptr) : Json(status->name)},
                        {"message", failureText(report)}});
}

// --- Counters ---------------------------------------------------------------------------------------------------------------

// The counters of radios and interfaces; a station's are among the answers only.
void Collector::findCounters()
{
    for (const auto& [question, subject] : plan())
    {
        if (question->index != nullptr || (question->scope != Scope::kRadio && question->scope != Scope::kInterface))
            continue;
        Series series{question, subject, {}, {}};
        const Json fields = currentFields(series);
        for (const auto& [path, field] : fields.items())
            if (AnswerReader::isCounter(field))
                series.fields[path] = {{"unit", field["unit"]}, {"size", field["size"]}, {"values", Json::array()}};
        if (!series.fields.empty())
            counters_.push_back(std::move(series));
    }
}

void Collector::readCounters(Clock::time_point from)
{
    for (Series& series : counters_)
    {
        const Json fields = currentFields(series);
        series.seconds.push_back(std::chrono::duration<double>(Clock::now() - from).count());
        for (const auto& [path, counter] : series.fields.items())
            counter["values"].push_back(fields.contains(path) ? fields[path]["value"] : Json(nullptr));
    }
}

void Collector::watchCounters(Clock::time_point from)
{
    if (options_.seconds <= 0)
        return;
    findCounters();
    if (counters_.empty())
        return;
    readCounters(from);
    Progress progress(console_, "watching its counters");
    const std::chrono::duration<double> step(options_.seconds / kReadings);
    auto next = Clock::now();
    for (std::size_t i = 0; i < kReadings; ++i)
    {
        progress.show(i, kReadings, "readings");
        next += std::chrono::duration_cast<Clock::duration>(step);
        std::this_thread::sleep_until(next);
        readCounters(from);
    }
}

Json Collector::currentFields(const Series& series)
{
    const std::optional<Report> report = perform(*series.question->function, assignmentsFor(*series.question, series.subject));
    return report && report->outcome == CallOutcome::kDone ? reader_.fields(*report) : Json::object();
}

// --- The document -----------------------------------------------------------------------------------------------------------

Json Collector::document(const std::string& start) const
{
    Json document = Console::document("report");
    document["time"] = start;
    document["end"] = base::Timestamp().text;
    document["layout"] = layoutDocument(layoutInUse());
    document["secrets"] = options_.hasSecrets;
    document["services"] = servicesDocument();
    document["radios"] = objectsDocument();
    document["answers"] = answers_;
    document["counters"] = countersDocument();
    document["refused"] = refused_;
    document["unasked"] = unaskedDocument();
    document["notes"] = notes_;
    return document;
}

Json Collector::servicesDocument() const
{
    Json services = Json::array();
    for (const contract::Contract& contract : contract::all())
    {
        const auto lost = lost_.find(contract.service);
        services.push_back({{"service", contract.service},
                            {"answered", answered_.count(contract.service) != 0},
                            {"message", lost == lost_.end() ? "" : failureText(lost->second)}});
    }
    return services;
}

Json Collector::objectsDocument() const
{
    Json radios = Json::array();
    for (const Radio& radio : radios_)
    {
        Json interfaces = Json::array();
        for (const Interface& interface : radio.interfaces)
            interfaces.push_back({{"id", interface.id}, {"name", interface.name}});
        radios.push_back({{"id", radio.id}, {"name", radio.name}, {"interfaces", interfaces}});
    }
    return radios;
}

Json Collector::countersDocument() const
{
    Json counters = Json::array();
    for (const Series& series : counters_)
        counters.push_back({{"function", series.question->function->name},
                            {"subject", subjectDocument(series.subject)},
                            {"seconds", series.seconds},
                            {"fields", series.fields}});
    return counters;
}

Json Collector::unaskedDocument() const
{
    Json unasked = Json::array();
    for (const Unasked& each : all_.unasked)
        unasked.push_back({{"function", each.function->name}, {"needs", each.needs}});
    return unasked;
}

} // namespace

Collected collect(const Console& console, const CollectOptions& options)
{
    Collected collected = Collector(console, options).collect();
    // Names that services tell need not be UTF-8. What is not is replaced, as wherever documents are written.
    collected.document = Json::parse(collected.document.dump(-1, ' ', false, Json::error_handler_t::replace));
    return collected;
}

} // namespace tarn::ctl
