// `tarnctl temperature`: how warm radios and module are.
#include "tarnctl/listing.h"
#include "tarnctl/module_sensors.h"
#include "tarnctl/verbs/verbs.h"

#include <string>

namespace tarn::ctl
{

namespace
{

struct TemperatureOptions
{
    WatchOptions watch;
};

void declareTemperature(Syntax& syntax, TemperatureOptions& options)
{
    declareWatch(syntax, options.watch);
}

void addTemperature(Listing& list, const std::string& sensor, const Cell& temperature)
{
    Fields& row = list.rows.emplace_back();
    row.set("sensor", textCell(sensor));
    row.set("temperature", temperature);
}

ExitCode temperature(const Console& console)
{
    Survey survey;
    Page page("temperature");
    Listing& list = page.list("sensors", {{"sensor", "sensor"}, {"temperature", "temperature", &temperatureTone}});
    for (const Radio& radio : survey.radios())
        addTemperature(list, radio.title(), survey.ask("TarnGetRadioChipTemperature", radio.asRadio())["temperature"]);
    const Fields module = survey.ask("tarn_qcsapi_get_temperature_info");
    for (const ModuleSensor& sensor : kModuleSensors)
        addTemperature(list, std::string("module, ") + sensor.name, module[sensor.output]);
    return page.write(console, survey);
}

} // namespace

void addTemperature(Verbs& verbs)
{
    const auto act = [](const Console& console, const TemperatureOptions& options)
    { return watch(console, options.watch, &temperature); };
    verbs.add("temperature", "Shows how warm radios and module are", &declareTemperature, act);
}

} // namespace tarn::ctl
