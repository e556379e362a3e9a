// `tarnctl filter`: which stations an access point admits.
#include "tarnctl/change.h"
#include "tarnctl/fields.h"
#include "tarnctl/layout_in_use.h"
#include "tarnctl/listing.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/verbs/verbs.h"

namespace tarn::ctl
{

namespace
{

struct FilterOptions
{
    std::string action;
    std::vector<std::string> words;
};

std::vector<std::string> filterActions()
{
    return {"list", "add", "remove", "mode"};
}

void declareFilter(Syntax& syntax, FilterOptions& options)
{
    syntax.text("ACTION", options.action, "list, add, remove or mode");
    syntax.texts("WORD", options.words, "Interfaces, addresses or a mode, as the action needs them");
    syntax.footer("  filter list [TARGET...]            the filters' modes and addresses\n"
                  "  filter add INTERFACE ADDRESS...     adds stations to a filter\n"
                  "  filter remove INTERFACE ADDRESS...  removes them\n"
                  "  filter mode INTERFACE [MODE]        shows or sets the mode by its name");
}

Fields filterOf(Survey& survey, const Interface& interface)
{
    Fields filter = survey.ask("TarnGetAccessPointMacFilterMode", interface.asAccessPoint());
    Datum::List addresses;
    for (const Fields& entry :
         survey.list("TarnGetAccessPointMacFilterNum", "TarnGetAccessPointMacFilterAt", interface.asAccessPoint()))
        addresses.push_back(entry["macAddress"].value);
    filter.set("interface", textCell(interface.name));
    filter.set("ssid", interface.data["ssid"]);
    filter.set("addresses", listCell(std::move(addresses)));
    return filter;
}

ExitCode listFilters(const Console& console, const std::vector<std::string>& targets)
{
    Survey survey("filter");
    Page page("filter");
    Listing& filters = page.list("filters", {{"interface", "interface", &strong},
                                             {"ssid", "ssid"},
                                             {"mode", "mode", &switchTone, true},
                                             {"addresses", "addresses"}});
    for (const Interface& interface : survey.interfaces(targets))
        filters.rows.push_back(filterOf(survey, interface));
    return page.write(console, survey);
}

ExitCode edit(const Console& console, const FilterOptions& options)
{
    if (options.words.size() < 2)
        throw UsageError("filter " + options.action + ": expected an interface and one address or more");
    std::vector<std::string> addresses;
    for (auto word = options.words.begin() + 1; word != options.words.end(); ++word)
        addresses.push_back(macArgument(*word));

    Survey survey("filter");
    const Interface interface = survey.interface(options.words.front());
    const bool adds = options.action == "add";
    std::vector<Change> changes;
    for (const std::string& address : addresses)
    {
        const char* const function = adds ? "TarnAddAccessPointMacFilter" : "TarnDelAccessPointMacFilter";
        const Report report = tryToChange(
            console, "filter " + options.action, interface.name,
            [&] { return performOrFail(function, interface.with({"macAddress=" + address})); },
            [&] { return adds ? Cell() : filterOf(survey, interface)["addresses"]; });
        const std::string filter = "the filter, mode " + filterOf(survey, interface)["mode"].text();
        changes.push_back(
            {interface.name, filter, adds ? Cell() : textCell(address), adds ? textCell(address) : Cell(), report, true});
    }
    return writeChanges(console, "filter-change", survey, changes);
}

ExitCode mode(const Console& console, const std::vector<std::string>& words)
{
    if (words.size() == 1)
        return listFilters(console, words);
    if (words.size() != 2)
        throw UsageError("filter mode: expected an interface, and the mode to set or nothing");
    Survey survey("filter");
    const Interface interface = survey.interface(words.front());
    const auto current = [&] { return survey.ask("TarnGetAccessPointMacFilterMode", interface.asAccessPoint())["mode"]; };
    const Cell before = current();
    const Report report = performOrFail("TarnSetAccessPointMacFilterMode", interface.with({"mode=" + words.back()}));
    return writeChanges(console, "filter-change", survey, {{interface.name, "filter mode", before, current(), report}});
}

ExitCode filter(const Console& console, const FilterOptions& options)
{
    requireAction("filter", options.action, filterActions());
    if (options.action == "list")
        return listFilters(console, options.words);
    return options.action == "mode" ? mode(console, options.words) : edit(console, options);
}

} // namespace

void addFilter(Verbs& verbs)
{
    verbs.add("filter", "Shows or changes which stations are admitted", &declareFilter, &filter, &filterActions);
}

} // namespace tarn::ctl
