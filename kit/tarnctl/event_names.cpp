#include "event_names.h"

#include "base/join.h"
#include "base/suggestions.h"
#include "usage_error.h"
#include "values.h"

namespace tarn::ctl
{

const std::vector<contract::Event>& knownEvents()
{
    return contract::findService("TARN")->events;
}

std::vector<std::string> eventNames()
{
    std::vector<std::string> names;
    for (const contract::Event& event : knownEvents())
        names.push_back(event.name);
    return names;
}

const contract::Event& eventNamed(const std::string& text)
{
    for (const contract::Event& event : knownEvents())
        if (text == event.name || text == std::to_string(event.event))
            return event;
    const auto numberAndName = [](const contract::Event& event) { return std::to_string(event.event) + " " + event.name; };
    throw UsageError("there is no event " + inQuotes(text) + "; expected one of " +
                         base::join(knownEvents(), ", ", numberAndName),
                     base::suggestions(text, eventNames()));
}

} // namespace tarn::ctl
