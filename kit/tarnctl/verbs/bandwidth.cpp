// `tarnctl bandwidth`: how wide the radios' channels are.
#include "tarnctl/verbs/radio_setting.h"

namespace tarn::ctl
{

void addBandwidth(Verbs& verbs)
{
    addRadioSetting(verbs,
                    {"bandwidth",
                     "bandwidth-change",
                     "bandwidth",
                     "MHZ",
                     "The bandwidth to set, in the unit that the list shows",
                     "Example:\n  tarnctl bandwidth wifi0 40",
                     {{"id", "id"},
                      {"name", "name"},
                      {"band", "band"},
                      {"bandwidth", "bandwidth", &strong},
                      {"channel", "channel"},
                      {"mode", "phyMode"}}},
                    "Shows or sets the bandwidth of radios");
}

} // namespace tarn::ctl
