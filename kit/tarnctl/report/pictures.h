// The pictures of a report's page, as SVG that takes its colours from the page.
#pragma once

#include "markup.h"
#include "tarnctl/occupancy.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarn::ctl
{

// The channels of a band, and each network over those that it covers, as high as its signal is strong.
Markup bandPicture(Band band, std::vector<Network> networks);

struct StationSignal
{
    std::string name;
    std::int64_t signal = 0; // dBm
    std::string remark;      // behind the signal
};

// A bar a station, the strongest first.
Markup signalPicture(std::vector<StationSignal> stations);

// How much of something came a second.
struct Curve
{
    std::string name;
    std::vector<double> seconds; // when it was read
    std::vector<double> rates;

    double mean() const;
};

Markup curvePicture(const std::vector<Curve>& curves, const std::string& unit);

// A mark in a curve's colour.
Markup curveMark(std::size_t curve);

} // namespace tarn::ctl
