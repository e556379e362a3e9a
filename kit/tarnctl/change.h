// What a verb has changed, and what the gateway answered.
#pragma once

#include "call.h"
#include "cell.h"
#include "survey.h"

#include <functional>
#include <string>
#include <vector>

namespace tarn::ctl
{

struct Change
{
    std::string object;   // "radio 1 (radio0)", "wifi0"
    std::string setting;  // "channel", "filter"
    Cell before;          // not known if nobody can say, and of a new entry of a list
    Cell after;           // not known of an entry that was removed
    Report report;        // of the call that did it
    bool isEntry = false; // `setting` is a list
};

// For people "radio 1 (radio0): channel 36 -> 44 (DONE)" each; CSV and JSON as a page has them.
ExitCode writeChanges(const Console& console, const char* kind, const Survey& survey, const std::vector<Change>& changes);

// Calls `change`. If the gateway refuses it, tells first what can be set, as the answered status alone does not tell that:
// "channel: possible for radio 1 (radio0): 36 40 44". `possible` asks for it; a cell that is not known if nobody can say.
Report tryToChange(const Console& console, const std::string& setting, const std::string& object,
                   const std::function<Report()>& change, const std::function<Cell()>& possible);

// Changes one field of a record, the others staying as they are; `cfg.channel=44`, say. Throws UsageError if the layout does
// not say how one selects the field, or CallFailure.
Report setField(const std::string& function, const Assignments& object, const std::string& field, const std::string& value);

// A MAC address as the calls want it. Throws UsageError.
std::string macArgument(const std::string& text);

} // namespace tarn::ctl
