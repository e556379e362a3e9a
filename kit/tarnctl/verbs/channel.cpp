// `tarnctl channel`: the radios' channels.
#include "tarnctl/verbs/radio_setting.h"

namespace tarn::ctl
{

void addChannel(Verbs& verbs)
{
    addRadioSetting(verbs,
                    {"channel",
                     "channel-change",
                     "channel",
                     "NUMBER",
                     "The channel to set, or auto",
                     "Examples:\n  tarnctl channel\n  tarnctl channel wifi0 44\n  tarnctl channel 2 auto",
                     {{"id", "id"},
                      {"name", "name"},
                      {"band", "band"},
                      {"channel", "channel", &strong},
                      {"bandwidth", "bandwidth"},
                      {"secondary_channel", "secondaryChannel", &switchTone},
                      {"automatic", "autoChannel", &switchTone, true},
                      {"possible_channels", "possibleChannels", &faint}},
                     "possibleChannels",
                     nullptr,
                     "autoChannel"},
                    "Shows or sets the channels of radios");
}

} // namespace tarn::ctl
