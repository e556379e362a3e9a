// `tarnctl power`: how strongly the radios transmit.
#include "tarnctl/verbs/radio_setting.h"

#include <string>

namespace tarn::ctl
{

namespace
{

// What each chain transmits with, and the levels there are: the module tells that of its radios.
void complete(Survey& survey, const Radio& radio, Fields& row)
{
    row.set("power", survey.ask("TarnGetRadioCurrentTransmitPowerLevel", radio.asRadio())["power"]);
    if (!radio.onModule)
        return;
    row.add(survey.ask("TarnGetRadioQuantennaCurrentTransmitPower", radio.asRadio(), true));
    if (!radio.interfaces.empty() && radio.interfaces.front().onModule)
        row.add(
            survey.ask("tarn_qcsapi_wifi_get_supported_tx_power_levels", {"ifname=" + radio.interfaces.front().name}, true));
}

} // namespace

void addPower(Verbs& verbs)
{
    addRadioSetting(verbs,
                    {"power",
                     "power-change",
                     "transmitPower",
                     "LEVEL",
                     "The level to set, in the unit that the list shows",
                     "Example:\n  tarnctl power wifi0 50",
                     {{"id", "id"},
                      {"name", "name"},
                      {"band", "band"},
                      {"power_level", "power", &strong},
                      {"chain0", "chain0"},
                      {"chain1", "chain1"},
                      {"chain2", "chain2"},
                      {"chain3", "chain3"},
                      {"levels", "available_percentages", &faint}},
                     "available_percentages",
                     &complete},
                    "Shows or sets the transmit power of radios");
}

} // namespace tarn::ctl
