#include "survey.h"

#include "base/join.h"
#include "base/suggestions.h"
#include "fields.h"
#include "layout_in_use.h"
#include "usage_error.h"
#include "values.h"

#include <algorithm>

namespace tarn::ctl
{

namespace
{

// A gateway has a handful; a larger number is a fault of the service, and not to be asked about one by one.
constexpr std::int64_t kMostRadios = 64;
constexpr std::int64_t kMostListed = 4096;

constexpr char kDeviceService[] = "TARN";

Assignments radioAssignment(std::uint32_t radioId)
{
    return {"radioId=" + std::to_string(radioId)};
}

void addOutput(Fields& fields, const Report& report, const PreparedArgument& output)
{
    const FunctionParameter& parameter = *output.parameter;
    if (structureOf(*report.function, parameter) != nullptr)
    {
        fields.add(Fields(fieldsOf(report, parameter.name)));
        return;
    }
    if (parameter.form == Form::kNumber && output.numbers().size() == 1)
    {
        Cell cell = cellOf(output.numbers().front(), meaningOf(*report.function, parameter));
        cell.size = parameter.width;
        fields.set(parameter.name, std::move(cell));
    }
    else if (parameter.form == Form::kText)
        fields.set(parameter.name, textCell(textOf(output.content())));
    else if (parameter.form == Form::kBytes && output.length == kMacAddressSize)
        fields.set(parameter.name, textCell(hexText(output.content(), ":")));
}

bool isNamed(const Radio& radio, const std::string& target)
{
    return target == std::to_string(radio.id) || (!radio.name.empty() && target == radio.name);
}

bool isNamed(const Interface& interface, const std::string& target)
{
    return target == interface.name || target == std::to_string(interface.radioId) + "." + std::to_string(interface.id);
}

bool isOnIt(const Radio& radio, const std::string& target)
{
    return std::any_of(radio.interfaces.begin(), radio.interfaces.end(),
                       [&](const Interface& interface) { return isNamed(interface, target); });
}

// The names of all targets there are.
std::vector<std::string> targetsOf(const std::vector<Radio>& radios)
{
    std::vector<std::string> targets;
    for (const Radio& radio : radios)
    {
        targets.push_back(std::to_string(radio.id));
        if (!radio.name.empty())
            targets.push_back(radio.name);
        for (const Interface& interface : radio.interfaces)
            targets.push_back(interface.name);
    }
    return targets;
}

UsageError noSuch(const char* what, const std::string& target, const std::vector<Radio>& radios)
{
    const std::vector<std::string> targets = targetsOf(radios);
    return UsageError("the gateway has no " + std::string(what) + " " + inQuotes(target) + "; expected one of " +
                          base::join(targets),
                      base::suggestions(target, targets));
}

} // namespace

Fields outputsOf(const Report& report)
{
    Fields fields;
    for (const PreparedArgument& argument : report.arguments.all)
        if (argument.parameter->isOutput && !argument.isNull)
            addOutput(fields, report, argument);
    return fields;
}

Assignments Interface::asSsid() const
{
    Assignments assignments = radioAssignment(radioId);
    assignments.push_back("ssidId=" + std::to_string(id));
    return assignments;
}

Assignments Interface::asAccessPoint() const
{
    Assignments assignments = radioAssignment(radioId);
    assignments.push_back("apId=" + std::to_string(id));
    return assignments;
}

Assignments Interface::with(Assignments more) const
{
    for (std::string& assignment : asAccessPoint())
        more.push_back(std::move(assignment));
    return more;
}

Assignments Radio::asRadio() const
{
    return radioAssignment(id);
}

std::string Radio::title() const
{
    return "radio " + std::to_string(id) + (name.empty() ? "" : " (" + name + ")");
}

Survey::Survey(const std::string& verb)
{
    if (layoutInUse() != nullptr)
        return;
    performOrFail("TarnGetRadioNum"); // if no gateway answers, that has to be known first
    throw UsageError(verb + " needs to know what is inside the gateway's records; " + kHowToGiveALayout);
}

// --- Objects ----------------------------------------------------------------------------------------------------------------

std::vector<Radio> Survey::radios(const std::vector<std::string>& targets)
{
    if (targets.empty())
        return all();
    for (const std::string& target : targets)
        if (std::none_of(all().begin(), all().end(),
                         [&](const Radio& radio) { return isNamed(radio, target) || isOnIt(radio, target); }))
            throw noSuch("radio", target, all());
    std::vector<Radio> chosen;
    for (const Radio& radio : all())
        if (std::any_of(targets.begin(), targets.end(),
                        [&](const std::string& target) { return isNamed(radio, target) || isOnIt(radio, target); }))
            chosen.push_back(radio);
    return chosen;
}

std::vector<Interface> Survey::interfaces(const std::vector<std::string>& targets)
{
    std::vector<Interface> chosen;
    for (const Radio& radio : radios(targets))
        for (const Interface& interface : radio.interfaces)
            if (targets.empty() ||
                std::any_of(targets.begin(), targets.end(),
                            [&](const std::string& target) { return isNamed(radio, target) || isNamed(interface, target); }))
                chosen.push_back(interface);
    return chosen;
}

Radio Survey::radio(const std::string& target)
{
    return radios({target}).front();
}

Interface Survey::interface(const std::string& target)
{
    const std::vector<Interface> chosen = interfaces({target});
    if (chosen.size() == 1)
        return chosen.front();
    if (chosen.empty())
        throw UsageError(radio(target).title() + " has no interface");
    throw UsageError(radio(target).title() + " has more than one interface; expected one of " +
                     base::join(chosen, ", ", [](const Interface& interface) { return interface.name; }));
}

std::vector<Fields> Survey::stations(const Interface& interface)
{
    return list("TarnGetAccessPointAssociatedNum", "TarnGetAccessPointAssociatedAt", interface.asAccessPoint());
}

std::vector<Fields> Survey::neighbours(const Radio& radio)
{
    return list("TarnGetRadioNeighboringResultNum", "TarnGetRadioNeighboringResultAt", radio.asRadio());
}

const std::vector<Radio>& Survey::all()
{
    if (radios_)
        return *radios_;
    const std::int64_t number = performOrFail("TarnGetRadioNum").number("number");
    if (number > kMostRadios)
        throw std::runtime_error("the service claims " + std::to_string(number) + " radios; expected at most " +
                                 std::to_string(kMostRadios));
    std::vector<Radio> radios;
    for (std::int64_t id = 1; id <= number; ++id)
        radios.push_back(readRadio(static_cast<std::uint32_t>(id)));
    radios_ = std::move(radios);
    return *radios_;
}

Radio Survey::readRadio(std::uint32_t id)
{
    Radio radio;
    radio.id = id;
    if (layoutInUse() == nullptr)
        return radio;
    radio.data = ask("TarnGetRadio", radio.asRadio());
    if (radio.data["name"].isKnown())
        radio.name = radio.data["name"].text();
    radio.onModule = radio.data["onModule"].name != "no";
    radio.interfaces = readInterfaces(radio);
    return radio;
}

std::vector<Interface> Survey::readInterfaces(const Radio& radio)
{
    std::vector<Interface> interfaces;
    const std::int64_t number = std::min(numberOf("TarnGetSsidIntfNum", radio.asRadio()), kMostListed);
    for (std::int64_t id = 1; id <= number; ++id)
    {
        Interface interface;
        interface.radioId = radio.id;
        interface.id = static_cast<std::uint32_t>(id);
        interface.data = ask("TarnGetSsidIntf", interface.asSsid());
        interface.name = interface.data["name"].isKnown() ? interface.data["name"].text()
                                                          : std::to_string(radio.id) + "." + std::to_string(id);
        interface.onModule = radio.onModule && interface.data["name"].isKnown();
        interfaces.push_back(std::move(interface));
    }
    return interfaces;
}

// --- What one call tells ----------------------------------------------------------------------------------------------------

Fields Survey::ask(const std::string& function, const Assignments& assignments, bool expected)
{
    const std::string& service = functionNamed(function).service;
    if (lostServices_.count(service) != 0)
        return {};
    const Report report = perform(function, assignments);
    if (report.outcome == CallOutcome::kDone)
        return outputsOf(report);
    if (!report.hasReply() && service == kDeviceService)
        throw CallFailure(report);
    if (!report.hasReply())
        lostServices_.insert(service);
    if (!report.hasReply() || !expected)
        note(report, assignments);
    return {};
}

std::vector<Fields> Survey::list(const std::string& numberFunction, const std::string& atFunction,
                                 const Assignments& assignments)
{
    std::vector<Fields> entries;
    const std::int64_t number = std::min(numberOf(numberFunction, assignments), kMostListed);
    for (std::int64_t index = 0; index < number; ++index)
    {
        Assignments at = assignments;
        at.push_back("index=" + std::to_string(index));
        const Report report = perform(atFunction, at);
        if (!report.hasReply())
            throw CallFailure(report);
        if (report.outcome == CallOutcome::kDone)
            entries.push_back(outputsOf(report));
        else if (numberOf(numberFunction, assignments) > index) // else it went away meanwhile
            note(report, at);
    }
    return entries;
}

std::int64_t Survey::numberOf(const std::string& function, const Assignments& assignments)
{
    return ask(function, assignments)["number"].number();
}

void Survey::note(const Report& report, const Assignments& assignments)
{
    notes_.push_back(base::join(assignments, " ") + (assignments.empty() ? "" : ": ") + failureText(report));
    if (exitCode_ == ExitCode::kSuccess)
        exitCode_ = exitCodeOf(report.outcome);
}

} // namespace tarn::ctl
