#include "scenario.h"

#include "base/mac_address.h"

#include <nlohmann/json.hpp>

namespace tarn::simulator
{

namespace
{

// Numbers things of a kind: 02:00:KIND:00:01:05.
std::string addressOf(std::uint8_t kind, std::size_t number)
{
    const auto byte = [&](unsigned shift) { return static_cast<std::uint8_t>(number >> shift); };
    return base::macText({0x02, 0, kind, byte(16), byte(8), byte(0)});
}

// The bands by turns, the channels of each from the lowest.
Json generatedRadio(std::size_t index, std::size_t interfaces)
{
    const auto band = static_cast<Band>((index + 1) % 3); // 5 GHz first
    const std::uint32_t bandwidth = band == Band::k2 ? 20 : 80;
    const std::vector<std::uint32_t> channels = channelsFor({band, "us", bandwidth, false, false});
    Json radio = {{"name", "radio" + std::to_string(index)},
                  {"band", toString(band)},
                  {"onModule", true},
                  {"country", "us"},
                  {"bandwidth", bandwidth},
                  {"channel", channels[index / 3 * 4 % channels.size()]},
                  {"phyMode", "11ax"},
                  {"interfaces", Json::array()}};
    for (std::size_t i = 0; i < interfaces; ++i)
    {
        const std::string place = std::to_string(index) + "-" + std::to_string(i);
        radio["interfaces"].push_back(
            {{"name", "wifi" + place}, {"bssid", addressOf(0, index * kInterfaceRoom + i + 1)}, {"ssid", "net " + place}});
    }
    return radio;
}

} // namespace

Json generatedScenario(std::size_t radios, std::size_t interfaces, std::size_t stations)
{
    Json scenario = {{"scenario", 1},
                     {"description", std::to_string(radios) + " radios with " + std::to_string(interfaces) +
                                         " interfaces each, and " + std::to_string(stations) + " stations on each of these."},
                     {"radios", Json::array()},
                     {"clients", Json::array()}};
    for (std::size_t radio = 0; radio < radios; ++radio)
    {
        scenario["radios"].push_back(generatedRadio(radio, interfaces));
        const Json band = scenario["radios"].back()["band"];
        for (std::size_t interface = 0; interface < interfaces; ++interface)
            for (std::size_t i = 0; i < stations; ++i)
                scenario["clients"].push_back({{"address", addressOf(1, scenario["clients"].size() + 1)},
                                               {"bands", Json::array({band})},
                                               {"phyMode", "11ax"},
                                               {"pathLoss", 50 + i % 40},
                                               {"ssid", scenario["radios"].back()["interfaces"][interface]["ssid"]},
                                               {"packetRate", 1}});
    }
    return scenario;
}

} // namespace tarn::simulator
