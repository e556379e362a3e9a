// The layout of a made-up second gateway: it knows what the simulated gateway knows, and has it at other offsets, selected by
// other bits, and with other numbers for values and statuses.
#pragma once

#include "layout/layout.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>

namespace tarn_test
{

constexpr int kSecondGatewayValueShift = 40;
constexpr int kSecondGatewayStatusShift = 500; // away from zero
constexpr int kSecondGatewayHighestBit = 29;

// Without gaps, the last field first. Arrays stay behind the numbers that count their elements.
inline void rearrange(nlohmann::ordered_json& structure)
{
    nlohmann::ordered_json& fields = structure["fields"];
    std::reverse(fields.begin(), fields.end());
    std::stable_partition(fields.begin(), fields.end(), [](const auto& field) { return field["type"] != "array"; });
    int offset = 0;
    for (auto& field : fields)
    {
        field["offset"] = offset;
        const int elementSize = field.contains("stride") ? field["stride"].template get<int>() : 0;
        if (field["type"] == "mac address")
            offset += 6;
        else if (field["type"] != "array")
            offset += field["size"].template get<int>();
        else if (elementSize != 0)
            offset += elementSize * field["count"].template get<int>();
        else
            offset += field["element"].value("size", 6) * field["count"].template get<int>();
    }
}

inline std::string secondGatewayText()
{
    nlohmann::ordered_json layout = nlohmann::ordered_json::parse(tarn::layout::simulatedText());
    layout["name"] = "attic";
    layout["version"] = "2b";
    layout["owner"] = "nobody";
    for (const char* kind : {"records", "blocks", "events"})
        for (auto& structure : layout[kind])
            rearrange(structure);
    for (auto& set : layout["values"])
        for (auto& value : set)
            value = value.get<int>() + kSecondGatewayValueShift;
    for (auto& selection : layout["selections"])
        for (auto& bit : selection["bits"])
            bit = kSecondGatewayHighestBit - bit.get<int>();
    for (auto& status : layout["statuses"])
    {
        const int number = status["number"].get<int>();
        status["number"] = number == 0 ? 0 : number + (number < 0 ? -kSecondGatewayStatusShift : kSecondGatewayStatusShift);
    }
    return layout.dump(1);
}

} // namespace tarn_test
