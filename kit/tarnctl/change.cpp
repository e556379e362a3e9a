#include "change.h"

#include "base/mac_address.h"
#include "fields.h"
#include "layout_in_use.h"
#include "listing.h"
#include "usage_error.h"
#include "values.h"

namespace tarn::ctl
{

namespace
{

Cell answerOf(const Change& change)
{
    Cell cell = numberCell(change.report.result.number);
    if (const LayoutInUse* const inUse = layoutInUse())
        if (const layout::Status* const status =
                inUse->layout.status(change.report.function->service, static_cast<std::uint32_t>(change.report.result.number)))
            cell.name = status->name;
    return cell;
}

std::string sentence(const Change& change)
{
    std::string text = change.object + ": ";
    if (change.isEntry)
        text += change.after.isKnown() ? change.after.text() + " added to " + change.setting
                                       : change.before.text() + " removed from " + change.setting;
    else if (!change.before.isKnown())
        text += change.setting + " set to " + change.after.text();
    else if (change.before.text() == change.after.text())
        text += change.setting + " " + change.after.text() + ", as before";
    else
        text += change.setting + " " + change.before.text() + " -> " + change.after.text();
    const Cell answer = answerOf(change);
    return text + " (the gateway answered " + answer.text() + ")";
}

void tellPossible(const Console& console, const std::string& what, const std::function<Cell()>& possible)
try
{
    if (const Cell choices = possible(); choices.isKnown())
        console.remark(what + ": " + choices.text());
}
catch (const CallFailure& failure) // beside the refusal, which is told in any case
{
    console.remark(what + ": " + failure.what());
}

} // namespace

ExitCode writeChanges(const Console& console, const char* kind, const Survey& survey, const std::vector<Change>& changes)
{
    if (!console.json && !console.csv)
    {
        for (const Change& change : changes)
            console.out << printable(sentence(change)) << '\n';
        for (const std::string& note : survey.notes())
            console.remark(note);
        return survey.exitCode();
    }
    Page page(kind);
    Listing& list = page.list("changes", {{"object", "object"},
                                          {"setting", "setting"},
                                          {"before", "before", nullptr, true},
                                          {"after", "after", nullptr, true},
                                          {"status", "status", nullptr, true}});
    for (const Change& change : changes)
    {
        Fields& row = list.rows.emplace_back();
        row.set("object", textCell(change.object));
        row.set("setting", textCell(change.setting));
        row.set("before", change.before);
        row.set("after", change.after);
        row.set("status", answerOf(change));
    }
    return page.write(console, survey);
}

Report tryToChange(const Console& console, const std::string& setting, const std::string& object,
                   const std::function<Report()>& change, const std::function<Cell()>& possible)
try
{
    return change();
}
catch (const CallFailure& refusal)
{
    if (refusal.report.outcome == CallOutcome::kServiceStatus)
        tellPossible(console, setting + ": possible for " + object, possible);
    throw;
}

Report setField(const std::string& function, const Assignments& object, const std::string& field, const std::string& value)
{
    const std::size_t dot = field.find('.');
    const LayoutInUse* const inUse = layoutInUse();
    const layout::Selection* const selection =
        inUse == nullptr ? nullptr : inUse->layout.selectionOf(function, field.substr(0, dot));
    if (selection == nullptr || !selection->bit(field.substr(dot + 1)))
        throw UsageError("the layout does not say how " + function + " takes " + inQuotes(field.substr(dot + 1)) +
                         " alone; expected a selection for it, so that nothing else is changed");
    Assignments assignments = object;
    assignments.push_back(field + "=" + value);
    return performOrFail(function, assignments);
}

std::string macArgument(const std::string& text)
{
    for (const char separator : {':', '-'})
        if (const auto address = base::parseMacAddress(text, separator))
            return base::macText(*address);
    throw UsageError("expected a MAC address, such as 02:00:00:00:01:05; got " + inQuotes(text));
}

} // namespace tarn::ctl
