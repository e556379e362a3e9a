// `tarnctl radios`: the gateway's radios, one a line.
#include "tarnctl/listing.h"
#include "tarnctl/verbs/verbs.h"

#include <array>

namespace tarn::ctl
{

namespace
{

struct RadiosOptions
{
    std::vector<std::string> targets;
    WatchOptions watch;
};

void declareRadios(Syntax& syntax, RadiosOptions& options)
{
    declareTargets(syntax, options.targets);
    declareWatch(syntax, options.watch);
    syntax.footer("Without a layout, what the radios' records tell is left out.");
}

// What is asked one by one, and needs no layout.
struct Query
{
    const char* function;
    const char* output;
};

constexpr std::array<Query, 5> kQueries = {{
    {"TarnGetRadioIsReady", "isReady"},
    {"TarnGetRadioChainNumber", "number"},
    {"TarnGetRadioCurrentTransmitPowerLevel", "power"},
    {"TarnGetRadioChipTemperature", "temperature"},
    {"TarnGetRadioDriverVersion", "version"},
}};

Fields rowOf(Survey& survey, const Radio& radio)
{
    Fields row = radio.data;
    row.set("id", numberCell(radio.id));
    for (const Query& query : kQueries)
        row.set(query.output, survey.ask(query.function, radio.asRadio())[query.output]);
    return row;
}

ExitCode radios(const Console& console, const RadiosOptions& options)
{
    Survey survey;
    Page page("radios");
    Listing& list = page.list("radios", {{"id", "id"},
                                         {"name", "name", &strong},
                                         {"band", "band"},
                                         {"ready", "isReady", &switchTone, true},
                                         {"enabled", "enabled", &switchTone, true},
                                         {"channel", "channel", &strong},
                                         {"bandwidth", "bandwidth"},
                                         {"power_level", "power"},
                                         {"mode", "phyMode"},
                                         {"country", "country"},
                                         {"chains", "number"},
                                         {"temperature", "temperature", &temperatureTone},
                                         {"driver", "version"}});
    for (const Radio& radio : survey.radios(options.targets))
        list.rows.push_back(rowOf(survey, radio));
    return page.write(console, survey);
}

} // namespace

void addRadios(Verbs& verbs)
{
    const auto act = [](const Console& console, const RadiosOptions& options)
    { return watch(console, options.watch, [&](const Console& frame) { return radios(frame, options); }); };
    verbs.add("radios", "Shows the gateway's radios", &declareRadios, act);
}

} // namespace tarn::ctl
