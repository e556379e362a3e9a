#include "open_metrics.h"

#include "base/join.h"
#include "terminal_text.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

const char* toString(MetricType type)
{
    return type == MetricType::kCounter ? "counter" : "gauge";
}

std::string escapedValue(const std::string& value)
{
    std::string escaped;
    for (const char character : printable(value)) // which leaves no line feeds
    {
        if (character == '\\' || character == '"')
            escaped += '\\';
        escaped += character;
    }
    return escaped;
}

} // namespace

std::string labelsText(const Labels& labels)
{
    if (labels.empty())
        return "";
    return "{" +
           base::join(labels, ",",
                      [](const auto& label) { return label.first + std::string("=\"") + escapedValue(label.second) + "\""; }) +
           "}";
}

bool Metrics::add(const Metric& metric, Labels labels, Datum value)
{
    std::vector<Sample>& samples = family(metric).samples;
    if (std::any_of(samples.begin(), samples.end(), [&](const Sample& sample) { return sample.labels == labels; }))
        return false;
    samples.push_back({std::move(labels), std::move(value)});
    return true;
}

std::string Metrics::text() const
{
    std::string text;
    for (const Family& family : families_)
    {
        const Metric& metric = *family.metric;
        const std::string name = metric.name;
        text += "# TYPE " + name + " " + toString(metric.type) + "\n";
        if (*metric.unit != '\0')
            text += "# UNIT " + name + " " + metric.unit + "\n";
        text += "# HELP " + name + " " + metric.help + "\n";
        for (const Sample& sample : family.samples)
            text += name + (metric.type == MetricType::kCounter ? "_total" : "") + labelsText(sample.labels) + " " +
                    sample.value.plain() + "\n";
    }
    return text + "# EOF\n";
}

Json Metrics::document() const
{
    Json families = Json::array();
    for (const Family& family : families_)
    {
        const Metric& metric = *family.metric;
        Json samples = Json::array();
        for (const Sample& sample : family.samples)
        {
            Json labels = Json::object();
            for (const auto& [name, value] : sample.labels)
                labels[name] = printable(value);
            samples.push_back({{"labels", labels}, {"value", sample.value.json()}});
        }
        families.push_back({{"name", metric.name},
                            {"type", toString(metric.type)},
                            {"unit", metric.unit},
                            {"help", metric.help},
                            {"samples", samples}});
    }
    return families;
}

Metrics::Family& Metrics::family(const Metric& metric)
{
    for (Family& family : families_)
        if (family.metric == &metric)
            return family;
    return families_.emplace_back(Family{&metric, {}});
}

} // namespace tarn::ctl
