// `tarnctl dfs`: radar checks, radio by radio and channel by channel.
#include "tarnctl/listing.h"
#include "tarnctl/verbs/verbs.h"

namespace tarn::ctl
{

namespace
{

struct DfsOptions
{
    std::vector<std::string> targets;
    WatchOptions watch;
};

void declareDfs(Syntax& syntax, DfsOptions& options)
{
    declareTargets(syntax, options.targets);
    declareWatch(syntax, options.watch);
    syntax.footer("The module tells this of its own radios; others are left out.");
}

Tone availabilityTone(const Cell& cell)
{
    return cell.name == "available" ? Tone::kGood : Tone::kWarning;
}

ExitCode dfs(const Console& console, const DfsOptions& options)
{
    Survey survey("dfs");
    Page page("dfs");
    Listing& radios = page.list("radios",
                                {{"id", "id"},
                                 {"name", "name", &strong},
                                 {"channel", "channel"},
                                 {"ready", "ready", &switchTone, true},
                                 {"radar_check", "cacstatus", nullptr, true},
                                 {"first_radar_check", "first", nullptr, true},
                                 {"second_receiver", "second", nullptr, true}},
                                "Radar checks");
    radios.isAside = true;
    Listing& channels = page.list(
        "channels", {{"radio", "radio"}, {"channel", "channel"}, {"availability", "availability", &availabilityTone, true}},
        "Channels");
    for (const Radio& radio : survey.radios(options.targets))
    {
        if (radio.interfaces.empty() || !radio.interfaces.front().onModule)
            continue;
        const std::string& interface = radio.interfaces.front().name;
        Fields row = radio.data;
        row.set("id", numberCell(radio.id));
        row.set("cacstatus", survey.ask("tarn_qcsapi_wifi_get_cac_status", {"ifname=" + interface})["cacstatus"]);
        row.set("first", survey.ask("tarn_qcsapi_wifi_get_icac_status", {"intf_name=" + interface})["status"]);
        row.set("second", survey.ask("tarn_qcsapi_wifi_get_dfs_s_radio_status", {"intf_name=" + interface})["status"]);
        radios.rows.push_back(std::move(row));
        const Fields availability = survey.ask("tarn_qcsapi_wifi_get_chan_avail_status", {"intf_name=" + interface});
        for (Fields channel : availability.elements("channels"))
        {
            channel.set("radio", numberCell(radio.id));
            channels.rows.push_back(std::move(channel));
        }
    }
    return page.write(console, survey);
}

} // namespace

void addDfs(Verbs& verbs)
{
    const auto act = [](const Console& console, const DfsOptions& options)
    { return watch(console, options.watch, [&](const Console& frame) { return dfs(frame, options); }); };
    verbs.add("dfs", "Shows radar checks and the channels' availability", &declareDfs, act);
}

} // namespace tarn::ctl
