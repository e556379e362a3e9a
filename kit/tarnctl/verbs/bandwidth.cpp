// `tarnctl bandwidth`: how wide the radios' channels are.
#include "tarnctl/layout_in_use.h"
#include "tarnctl/verbs/radio_setting.h"

#include <algorithm>

namespace tarn::ctl
{

namespace
{

constexpr int kBandwidths[] = {20, 40, 80, 160, 320}; // MHz: those of IEEE 802.11

bool contains(const Cell& channels, std::int64_t channel)
{
    const Datum::List* const list = channels.value.list();
    return list != nullptr &&
           std::any_of(list->begin(), list->end(), [&](const Datum& each) { return each.number() == channel; });
}

// No call tells which bandwidths there are, but one tells which channels there are of a bandwidth. Those that are possible have
// the radio's channel among them, or any if the radio chooses its channel.
void complete(Survey& survey, const Radio& radio, Fields& row)
{
    const layout::Structure* const query = layoutInUse()->layout.record("TarnChannelQuery");
    if (query == nullptr || query->field("bandwidth") == nullptr)
        return;
    Datum::List possible;
    for (const int bandwidth : kBandwidths)
    {
        Assignments asked = radio.asRadio();
        asked.push_back("query.bandwidth=" + std::to_string(bandwidth));
        const Cell channels = survey.ask("TarnGetRadioPossibleChannels", asked, true)["channels"];
        if (row["autoChannel"].name == "on" ? channels.isKnown() : contains(channels, row["channel"].number()))
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
                     &complete},
                    "Shows or sets the bandwidth of radios");
}

} // namespace tarn::ctl
