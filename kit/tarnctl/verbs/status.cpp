// `tarnctl status`: the gateway at a glance.
#include "tarnctl/listing.h"
#include "tarnctl/verbs/verbs.h"

namespace tarn::ctl
{

namespace
{

struct StatusOptions
{
    WatchOptions watch;
};

void declareStatus(Syntax& syntax, StatusOptions& options)
{
    declareWatch(syntax, options.watch);
}

// Adds the radio's networks, and returns how many stations they have.
std::int64_t addNetworks(Survey& survey, const Radio& radio, Listing& ssids)
{
    std::int64_t stations = 0;
    for (const Interface& interface : radio.interfaces)
    {
        Fields row = interface.data;
        row.set("interface", textCell(interface.name));
        row.set("radio", numberCell(radio.id));
        row.set("stations", survey.ask("TarnGetAccessPointAssociatedNum", interface.asAccessPoint())["number"]);
        row.set("security", survey.ask("TarnGetAccessPointSecurity", interface.asAccessPoint())["beaconType"]);
        stations += row["stations"].number();
        ssids.rows.push_back(std::move(row));
    }
    return stations;
}

ExitCode status(const Console& console)
{
    Survey survey("status");
    Page page("status");
    page.value("firmware", survey.ask("tarn_qcsapi_firmware_get_version")["firmware_version"]);
    page.value("uptime", withDuration(survey.ask("tarn_qcsapi_system_get_time_since_start")["p_elapsed_time"]));
    Listing& radios = page.list("radios",
                                {{"id", "id"},
                                 {"name", "name"},
                                 {"band", "band", &strong},
                                 {"ready", "ready", &switchTone, true},
                                 {"channel", "channel", &strong},
                                 {"bandwidth", "bandwidth"},
                                 {"power_level", "transmitPower"},
                                 {"stations", "stations"},
                                 {"temperature", "temperature", &temperatureTone},
                                 {"driver", "driverVersion"}},
                                "Radios");
    Listing& ssids = page.list("ssids",
                               {{"interface", "interface"},
                                {"radio", "radio"},
                                {"ssid", "ssid", &strong},
                                {"security", "security"},
                                {"enabled", "enabled", &switchTone, true},
                                {"stations", "stations"}},
                               "Networks");
    for (const Radio& radio : survey.radios())
    {
        Fields row = radio.data;
        row.set("id", numberCell(radio.id));
        row.set("stations", numberCell(addNetworks(survey, radio, ssids)));
        radios.rows.push_back(std::move(row));
    }
    return page.write(console, survey);
}

} // namespace

void addStatus(Verbs& verbs)
{
    const auto act = [](const Console& console, const StatusOptions& options)
    { return watch(console, options.watch, &status); };
    verbs.add("status", "Shows the gateway at a glance", &declareStatus, act);
}

} // namespace tarn::ctl
