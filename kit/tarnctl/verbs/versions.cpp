// `tarnctl versions`: what runs where.
#include "tarnctl/listing.h"
#include "tarnctl/verbs/verbs.h"

#include <array>

namespace tarn::ctl
{

namespace
{

struct Component
{
    const char* name;
    const char* function;
    const char* output;
};

constexpr std::array<Component, 4> kComponents = {{
    {"module firmware", "tarn_qcsapi_firmware_get_version", "firmware_version"},
    {"Maui agent", "TarnGetQuantennaMauiVersion", "version"},
    {"Smart WiFi", "TarnGetQuantennaSmartWiFiVersion", "version"},
    {"Smart WiFi daemon", "TarnGetQuantennaSmartWiFiDaemonVersion", "version"},
}};

void addVersion(Listing& list, const std::string& component, const Cell& version)
{
    Fields& row = list.rows.emplace_back();
    row.set("component", textCell(component));
    row.set("version", version);
}

ExitCode versions(const Console& console)
{
    Survey survey;
    Page page("versions");
    Listing& list = page.list("versions", {{"component", "component"}, {"version", "version", &strong}});
    for (const Radio& radio : survey.radios())
        addVersion(list, radio.title() + " driver", survey.ask("TarnGetRadioDriverVersion", radio.asRadio())["version"]);
    for (const Component& component : kComponents)
        addVersion(list, component.name, survey.ask(component.function)[component.output]);
    addVersion(list, "tarnctl", textCell(TARNCTL_VERSION));
    return page.write(console, survey);
}

} // namespace

void addVersions(Verbs& verbs)
{
    verbs.add("versions", "Shows the versions of what runs on the gateway", &versions);
}

} // namespace tarn::ctl
