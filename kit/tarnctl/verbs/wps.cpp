// `tarnctl wps`: the windows in which stations may register by button or PIN.
#include "tarnctl/change.h"
#include "tarnctl/listing.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/verbs/verbs.h"

namespace tarn::ctl
{

namespace
{

struct WpsOptions
{
    std::string action;
    std::vector<std::string> targets;
    std::optional<std::string> pin;
    WatchOptions watch;
};

constexpr char kPinIsToOpen[] = "--pin: expected only with wps open";

std::vector<std::string> actions()
{
    return {"status", "open", "cancel"};
}

void declareWps(Syntax& syntax, WpsOptions& options)
{
    syntax.text("ACTION", options.action, "status, open or cancel");
    declareTargets(syntax, options.targets);
    syntax.text("--pin", options.pin,
                "With open: the station's PIN; without it any station may come, as when a button is pressed");
    declareWatch(syntax, options.watch);
    syntax.footer("Open and cancel need one interface.\n"
                  "Example:\n  tarnctl wps open wifi0");
}

ExitCode status(const Console& console, const std::vector<std::string>& targets)
{
    Survey survey("wps");
    Page page("wps");
    Listing& list = page.list("windows", {{"interface", "interface", &strong},
                                          {"ssid", "ssid"},
                                          {"wps", "wpsEnabled", &switchTone, true},
                                          {"window", "windowStatus", nullptr, true},
                                          {"left", "windowSecondsLeft"},
                                          {"method", "windowMethod", &switchTone, true},
                                          {"configured", "wpsConfigured", nullptr, true},
                                          {"upnp", "wpsUpnp", &switchTone, true},
                                          {"ap_pin", "wpsApPinEnabled", &switchTone, true}});
    for (const Interface& interface : survey.interfaces(targets))
    {
        Fields row = survey.ask("TarnGetAccessPointWps", interface.asAccessPoint());
        row.set("interface", textCell(interface.name));
        row.set("ssid", interface.data["ssid"]);
        list.rows.push_back(std::move(row));
    }
    return page.write(console, survey);
}

std::vector<std::string> openingBy(const std::optional<std::string>& pin)
{
    if (!pin)
        return {"value1=button", "value2=0"};
    const Report check = perform("tarnValidatePinCode", {"pin=" + *pin});
    if (check.outcome != CallOutcome::kDone)
        throw UsageError("--pin: " + failureText(check));
    return {"value1=pin", "value2=" + *pin};
}

ExitCode change(const Console& console, const WpsOptions& options)
{
    if (options.targets.size() != 1)
        throw UsageError("wps " + options.action + ": expected one interface");
    if (options.pin && options.action != "open")
        throw UsageError(kPinIsToOpen);
    if (options.watch.seconds || options.watch.count)
        throw UsageError("--watch: expected only with wps status");
    Survey survey("wps");
    const Interface interface = survey.interface(options.targets.front());
    const auto window = [&] { return survey.ask("TarnGetAccessPointWpsWindowStatus", interface.asAccessPoint())["status"]; };
    const Cell before = window();
    const Report report = options.action == "open"
                              ? performOrFail("TarnTriggerAccessPointWpsWindow", interface.with(openingBy(options.pin)))
                              : performOrFail("TarnCancelAccessPointWpsWindow", interface.asAccessPoint());
    return writeChanges(console, "wps-change", survey, {{interface.name, "WPS window", before, window(), report}});
}

ExitCode wps(const Console& console, const WpsOptions& options)
{
    requireAction("wps", options.action, actions());
    if (options.action != "status")
        return change(console, options);
    if (options.pin)
        throw UsageError(kPinIsToOpen);
    return watch(console, options.watch, [&](const Console& frame) { return status(frame, options.targets); });
}

} // namespace

void addWps(Verbs& verbs)
{
    verbs.add("wps", "Shows, opens or cancels WPS windows", &declareWps, &wps, &actions);
}

} // namespace tarn::ctl
