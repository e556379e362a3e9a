// `tarnctl bandwidth`: how wide the radios' channels are.
#include "tarnctl/layout_in_use.h"
#include "tarnctl/verbs/radio_setting.h"

#include <algorithm>

namespace tarn::ctl
{

namespace
{

constexpr int kBandwidths[] = {20, 40, 80, 160, 320}; // MHz: those of IEEE 802.11

// One of the channels: its own, or any if it chooses its channel.
bool canUse(const Fields& radio, const Cell& channels)
{
    const bool chooses = radio["autoChannel"].name == "on";
    const auto isUsable = [&](const Datum& each) { return chooses || each.number() == radio["channel"].number(); };
    const Datum::List* const list = channels.value.list();
    return list != nullptr && std::any_of(list->begin(), list->end(), isUsable);
}

// No call tells which bandwidths there are, but one tells which channels there are of a bandwidth.
void addPossibleBandwidths(Survey& survey, const Radio& radio, Fields& row)
{
    const layout::Structure* const query = layoutInUse()->layout.record("TarnChannelQuery");
    if (query == nullptr || query->field("bandwidth") == nullptr)
        return;
    Datum::List possible;
    for (const int bandwidth : kBandwidths)
    {
        Assignments asked = radio.asRadio();
        asked.push_back("query.bandwidth=" + std::to_string(bandwidth));
        if (canUse(row, survey.ask("TarnGetRadioPossibleChannels", asked, true)["channels"]))
            possible.emplace_back(bandwidth);
    }
    if (!possible.empty())
        row.set("possibleBandwidths", listCell(std::move(possible)));
}

} // namespace

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
                      {"mode", "phyMode"},
                      {"possible_bandwidths", "possibleBandwidths", &faint}},
                     "possibleBandwidths",
                     &addPossibleBandwidths},
                    "Shows or sets the bandwidth of radios");
}

} // namespace tarn::ctl
