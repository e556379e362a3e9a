#include "tarnctl/verbs/radio_setting.h"

#include "tarnctl/change.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/values.h"

namespace tarn::ctl
{

namespace
{

constexpr char kAutomatic[] = "auto";

struct SettingOptions
{
    std::optional<std::string> radio;
    std::optional<std::string> value;
    WatchOptions watch;
};

Fields rowOf(Survey& survey, const RadioSetting& setting, const Radio& radio)
{
    Fields row = radio.data;
    row.set("id", numberCell(radio.id));
    if (setting.complete != nullptr)
        setting.complete(survey, radio, row);
    return row;
}

ExitCode show(const Console& console, const RadioSetting& setting, const SettingOptions& options)
{
    Survey survey(setting.name);
    Page page(setting.name);
    Listing& list = page.list("radios", setting.columns);
    for (const Radio& radio :
         survey.radios(options.radio ? std::vector<std::string>{*options.radio} : std::vector<std::string>()))
        list.rows.push_back(rowOf(survey, setting, radio));
    return page.write(console, survey);
}

ExitCode change(const Console& console, const RadioSetting& setting, const std::string& target, const std::string& value)
{
    Survey survey(setting.name);
    const Radio radio = survey.radio(target);
    const bool isAutomatic = setting.automaticField != nullptr && value == kAutomatic;
    if (!isAutomatic && (value.empty() || value.find_first_not_of("0123456789") != std::string::npos))
        throw UsageError(std::string(setting.name) + ": expected a number" +
                         (setting.automaticField == nullptr ? "" : " or auto") + "; got " + inQuotes(value));
    const std::string field = isAutomatic ? setting.automaticField : setting.field;
    const Report report = tryToChange(
        console, setting.name, radio.title(),
        [&] { return setField("TarnSetRadioCfg", radio.asRadio(), "cfg." + field, isAutomatic ? "on" : value); },
        [&] { return rowOf(survey, setting, radio)[setting.choices]; });
    const Fields after = survey.ask("TarnGetRadio", radio.asRadio());
    return writeChanges(console, setting.changeKind, survey,
                        {{radio.title(), setting.name, radio.data[setting.field], after[setting.field], report}});
}

} // namespace

void addRadioSetting(Verbs& verbs, const RadioSetting& setting, const char* description)
{
    const auto declare = [setting](Syntax& syntax, SettingOptions& options)
    {
        syntax.text("RADIO", options.radio, "A radio by its id or name, or by the name of one of its interfaces");
        syntax.text(setting.value, options.value, setting.meaning);
        declareWatch(syntax, options.watch);
        syntax.footer(setting.footer);
    };
    const auto act = [setting](const Console& console, const SettingOptions& options)
    {
        if (!options.value)
            return watch(console, options.watch, [&](const Console& frame) { return show(frame, setting, options); });
        if (options.watch.seconds || options.watch.count)
            throw UsageError(std::string(setting.name) + ": expected a value or --watch, not both");
        return change(console, setting, options.radio.value_or(""), *options.value);
    };
    verbs.add<SettingOptions>(setting.name, description, declare, act);
}

} // namespace tarn::ctl
