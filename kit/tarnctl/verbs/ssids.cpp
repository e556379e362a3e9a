// `tarnctl ssids`: the gateway's networks, one a line.
#include "tarnctl/listing.h"
#include "tarnctl/verbs/verbs.h"

namespace tarn::ctl
{

namespace
{

struct SsidsOptions
{
    std::vector<std::string> targets;
    WatchOptions watch;
};

void declareSsids(Syntax& syntax, SsidsOptions& options)
{
    declareTargets(syntax, options.targets);
    declareWatch(syntax, options.watch);
}

Fields rowOf(Survey& survey, const Interface& interface)
{
    Fields row = interface.data;
    row.set("interface", textCell(interface.name));
    row.set("radio", numberCell(interface.radioId));
    row.set("id", numberCell(interface.id));
    row.set("stations", survey.ask("TarnGetAccessPointAssociatedNum", interface.asAccessPoint())["number"]);
    row.set("security", survey.ask("TarnGetAccessPointSecurity", interface.asAccessPoint())["beaconType"]);
    return row;
}

ExitCode ssids(const Console& console, const SsidsOptions& options)
{
    Survey survey("ssids");
    Page page("ssids");
    Listing& list = page.list("ssids", {{"interface", "interface", &strong},
                                        {"radio", "radio"},
                                        {"id", "id"},
                                        {"ssid", "ssid"},
                                        {"bssid", "bssid"},
                                        {"enabled", "enabled", &switchTone, true},
                                        {"hidden", "hidden", &switchTone, true},
                                        {"security", "security"},
                                        {"stations", "stations"},
                                        {"primary", "primary", &switchTone, true},
                                        {"priority", "priority"},
                                        {"group", "ssidGroupId"},
                                        {"vlan", "vlanId"}});
    for (const Interface& interface : survey.interfaces(options.targets))
        list.rows.push_back(rowOf(survey, interface));
    return page.write(console, survey);
}

} // namespace

void addSsids(Verbs& verbs)
{
    const auto act = [](const Console& console, const SsidsOptions& options)
    { return watch(console, options.watch, [&](const Console& frame) { return ssids(frame, options); }); };
    verbs.add("ssids", "Shows the gateway's networks", &declareSsids, act);
}

} // namespace tarn::ctl
