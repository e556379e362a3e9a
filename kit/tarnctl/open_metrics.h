// Metrics in the OpenMetrics text format, for a page or a file that a monitoring system collects.
//
//     Metrics metrics;
//     metrics.add(kSignal, {{"device", "wifi0"}, {"station", "0"}}, -48);
//     metrics.text()
//
// Collectors that read files know the types of the format before this one only, and refuse a file with another. So there is no
// type `info` here: what describes an object by its labels is a gauge with the value 1, and its name ends in _info.
#pragma once

#include "datum.h"

#include <string>
#include <utility>
#include <vector>

namespace tarn::ctl
{

enum class MetricType
{
    kGauge,
    kCounter
};

struct Metric
{
    const char* name; // of the family: it ends in the unit, if there is one; samples of a counter have _total behind it
    MetricType type;
    const char* unit; // a base unit; may be empty
    const char* help; // in one line
};

// Values may be any bytes: what is no UTF-8 is written as \xNN.
using Labels = std::vector<std::pair<const char*, std::string>>;

// {device="wifi0",station="0"}; empty if there are none.
std::string labelsText(const Labels& labels);

class Metrics
{
public:
    // False if there is a sample with these labels already, which stays: with two, no collector would take any.
    bool add(const Metric& metric, Labels labels, Datum value);

    std::string text() const;

    // The families for a JSON document.
    Json document() const;

private:
    struct Sample
    {
        Labels labels;
        Datum value;
    };

    struct Family
    {
        const Metric* metric = nullptr;
        std::vector<Sample> samples;
    };

    Family& family(const Metric& metric);

    std::vector<Family> families_; // each with all its samples, as the format has it
};

} // namespace tarn::ctl
