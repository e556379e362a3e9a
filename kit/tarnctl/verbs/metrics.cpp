// `tarnctl metrics`: what is measured and counted, for a monitoring system.
#include "base/replace_file.h"
#include "base/timestamp.h"
#include "tarnctl/fields.h"
#include "tarnctl/layout_in_use.h"
#include "tarnctl/module_sensors.h"
#include "tarnctl/occupancy.h"
#include "tarnctl/open_metrics.h"
#include "tarnctl/survey.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/verbs/verbs.h"

#include <array>
#include <cmath>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

struct MetricsOptions
{
    std::optional<std::string> textFile;
    bool hasAddresses = false;
};

void declareMetrics(Syntax& syntax, MetricsOptions& options)
{
    syntax.text("--textfile", options.textFile, "Replace this file in one step, instead of writing to standard output", "FILE");
    syntax.flag("--addresses", options.hasAddresses, "Name stations by their MAC addresses, and add what they have counted");
    syntax.footer(
        "The text is in the OpenMetrics format. Without --addresses stations have the numbers of their places in the lists,\n"
        "from 0, which are others when one of them leaves.\n"
        "Example:\n  tarnctl metrics --textfile /var/lib/prometheus/node-exporter/wifi.prom");
}

// --- What there is ---------------------------------------------------------------------------------------------------------
//
// Names and units are those that exporters of other systems use for the same. Where the layout does not tell the unit, or tells
// one of another kind, a metric is left out.

// Of which field of the layout, or of the tool's own beside these.
struct FieldMetric
{
    const char* field;
    Metric metric;
    bool isSwitch = false;
};

constexpr MetricType kGauge = MetricType::kGauge;
constexpr MetricType kCounter = MetricType::kCounter;

constexpr Metric kGatewayInfo = {"wifi_gateway_info", kGauge, "",
                                 "The gateway's firmware, and the layout by which its records were read."};
constexpr Metric kRadioInfo = {"wifi_radio_info", kGauge, "", "What describes a radio."};
constexpr Metric kInterfaceInfo = {"wifi_interface_info", kGauge, "", "What describes a network."};
constexpr Metric kStationInfo = {"wifi_station_info", kGauge, "", "What describes a station."};

constexpr std::array<FieldMetric, 1> kOfModule = {{
    {"p_elapsed_time", {"wifi_module_uptime_seconds", kGauge, "seconds", "Time since the Wi-Fi module started."}},
}};

constexpr Metric kModuleTemperature = {"wifi_module_temperature_celsius", kGauge, "celsius",
                                       "Temperature of the Wi-Fi module."};

constexpr std::array<FieldMetric, 8> kOfRadios = {{
    {"ready", {"wifi_radio_ready", kGauge, "", "Whether the radio is ready: 1 or 0."}, true},
    {"enabled", {"wifi_radio_enabled", kGauge, "", "Whether the radio is switched on: 1 or 0."}, true},
    {"channel", {"wifi_radio_channel", kGauge, "", "Number of the primary channel."}},
    {"bandwidth", {"wifi_radio_bandwidth_hertz", kGauge, "hertz", "Width of the channel."}},
    {"transmitPower", {"wifi_radio_transmit_power_ratio", kGauge, "ratio", "Transmit power, of the highest."}},
    {"temperature", {"wifi_radio_temperature_celsius", kGauge, "celsius", "Temperature of the radio's chip."}},
    {"noise", {"wifi_radio_noise_dbm", kGauge, "dbm", "Noise on the channel."}},
    {"channelLoad", {"wifi_radio_channel_load_ratio", kGauge, "ratio", "How much of the time the channel is busy."}},
}};

constexpr std::array<FieldMetric, 10> kOfInterfaces = {{
    {"enabled", {"wifi_interface_enabled", kGauge, "", "Whether the network is switched on: 1 or 0."}, true},
    {"frequency", {"wifi_interface_frequency_hertz", kGauge, "hertz", "Frequency of the primary channel."}},
    {"stations", {"wifi_interface_stations", kGauge, "", "Number of stations that are connected."}},
    {"rxBytes", {"wifi_interface_receive_bytes", kCounter, "bytes", "Bytes received."}},
    {"txBytes", {"wifi_interface_transmit_bytes", kCounter, "bytes", "Bytes sent."}},
    {"rxPackets", {"wifi_interface_receive_packets", kCounter, "", "Packets received."}},
    {"txPackets", {"wifi_interface_transmit_packets", kCounter, "", "Packets sent."}},
    {"rxErrors", {"wifi_interface_receive_errors", kCounter, "", "Packets received with errors."}},
    {"txErrors", {"wifi_interface_transmit_errors", kCounter, "", "Packets that could not be sent."}},
    {"txRetries", {"wifi_interface_transmit_retries", kCounter, "", "Packets sent once more."}},
}};

constexpr std::array<FieldMetric, 3> kOfStations = {{
    {"rssi", {"wifi_station_signal_dbm", kGauge, "dbm", "Signal with which the station is received."}},
    {"rxRate",
     {"wifi_station_receive_bits_per_second", kGauge, "bits_per_second", "Rate at which the station was received last."}},
    {"txRate",
     {"wifi_station_transmit_bits_per_second", kGauge, "bits_per_second", "Rate at which was sent to the station last."}},
}};

// With addresses alone: a sum goes on only where it is known whose it is.
constexpr std::array<FieldMetric, 7> kOfKnownStations = {{
    {"secondsAssociated", {"wifi_station_connected_seconds", kCounter, "seconds", "Time since the station connected."}},
    {"rxBytes", {"wifi_station_receive_bytes", kCounter, "bytes", "Bytes received from the station."}},
    {"txBytes", {"wifi_station_transmit_bytes", kCounter, "bytes", "Bytes sent to the station."}},
    {"rxPackets", {"wifi_station_receive_packets", kCounter, "", "Packets received from the station."}},
    {"txPackets", {"wifi_station_transmit_packets", kCounter, "", "Packets sent to the station."}},
    {"txRetries", {"wifi_station_transmit_retries", kCounter, "", "Packets sent to the station once more."}},
    {"txErrors", {"wifi_station_transmit_failed", kCounter, "", "Packets that could not be sent to the station."}},
}};

// --- Values ----------------------------------------------------------------------------------------------------------------

struct Conversion
{
    std::string_view unit; // of a layout
    std::string_view base;
    double factor;
    double divisor;
};

constexpr std::array<Conversion, 13> kConversions = {{
    {"dBm", "dbm", 1, 1},
    {"dBm below zero", "dbm", -1, 1},
    {"degrees Celsius", "celsius", 1, 1},
    {"percent", "ratio", 1, 100},
    {"seconds", "seconds", 1, 1},
    {"milliseconds", "seconds", 1, 1000},
    {"bytes", "bytes", 1, 1},
    {"MHz", "hertz", 1e6, 1},
    {"kHz", "hertz", 1e3, 1},
    {"Hz", "hertz", 1, 1},
    {"Mbit/s", "bits_per_second", 1e6, 1},
    {"kbit/s", "bits_per_second", 1e3, 1},
    {"bit/s", "bits_per_second", 1, 1},
}};

// Whole numbers without a point.
Datum numberOf(double value)
{
    constexpr double kMostExact = 9007199254740992.0; // 2 to the power 53
    if (value == std::floor(value) && std::abs(value) <= kMostExact)
        return static_cast<std::int64_t>(value);
    return value;
}

// Nothing if the metric cannot be told.
Datum valueOf(const Metric& metric, const Cell& cell)
{
    if (!cell.isNumber() || (metric.type == kCounter && cell.number() < 0))
        return {};
    if (*metric.unit == '\0')
        return cell.value;
    for (const Conversion& conversion : kConversions)
        if (cell.unit == conversion.unit && metric.unit == conversion.base)
            return numberOf(static_cast<double>(cell.number()) * conversion.factor / conversion.divisor);
    return {};
}

// Whichever numbers the layout gives these names.
Datum switchValueOf(const Cell& cell)
{
    if (cell.name == "yes" || cell.name == "on")
        return 1;
    if (cell.name == "no" || cell.name == "off")
        return 0;
    const bool isPlain = cell.isNumber() && cell.name.empty() && (cell.number() == 0 || cell.number() == 1);
    return isPlain ? cell.value : Datum();
}

// --- Collecting ------------------------------------------------------------------------------------------------------------

class MetricsCollector
{
public:
    MetricsCollector(Survey& survey, bool hasAddresses) : survey_(survey), hasAddresses_(hasAddresses)
    {
    }

    void collect()
    {
        collectGateway();
        for (const Radio& radio : survey_.radios())
        {
            collectRadio(radio);
            for (const Interface& interface : radio.interfaces)
                collectInterface(radio, interface);
        }
    }

    const Metrics& metrics() const
    {
        return metrics_;
    }

    // Of what was left out.
    const std::vector<std::string>& notes() const
    {
        return notes_;
    }

private:
    void add(const Metric& metric, const Labels& labels, const Datum& value)
    {
        if (!value.isNothing() && !metrics_.add(metric, labels, value))
            notes_.push_back("the gateway tells twice of " + std::string(metric.name) + labelsText(labels) +
                             "; the first is taken");
    }

    void addInfo(const Metric& metric, const Labels& labels)
    {
        add(metric, labels, 1);
    }

    template <typename FieldMetrics>
    void addFields(const FieldMetrics& fieldMetrics, const Labels& labels, const Fields& fields)
    {
        for (const FieldMetric& each : fieldMetrics)
            add(each.metric, labels,
                each.isSwitch ? switchValueOf(fields[each.field]) : valueOf(each.metric, fields[each.field]));
    }

    void collectGateway()
    {
        Labels description = {{"firmware", wordOf(survey_.ask("tarn_qcsapi_firmware_get_version")["firmware_version"])}};
        description.emplace_back("layout", layoutInUse()->layout.title());
        addInfo(kGatewayInfo, description);
        addFields(kOfModule, {}, survey_.ask("tarn_qcsapi_system_get_time_since_start"));
        const Fields temperatures = survey_.ask("tarn_qcsapi_get_temperature_info");
        for (const ModuleSensor& sensor : kModuleSensors)
            add(kModuleTemperature, {{"sensor", sensor.name}}, valueOf(kModuleTemperature, temperatures[sensor.output]));
    }

    void collectRadio(const Radio& radio)
    {
        const Labels labels = {{"radio", std::to_string(radio.id)}};
        Labels description = labels;
        description.emplace_back("name", radio.name);
        for (const auto& [label, field] : {std::pair("band", "band"), std::pair("mode", "phyMode"),
                                           std::pair("country", "country"), std::pair("driver", "driverVersion")})
            description.emplace_back(label, wordOf(radio.data[field]));
        addInfo(kRadioInfo, description);
        Fields fields = radio.data;
        fields.add(survey_.ask("TarnGetRadioStats", radio.asRadio()));
        addFields(kOfRadios, labels, fields);
    }

    void collectInterface(const Radio& radio, const Interface& interface)
    {
        const Labels labels = {{"device", interface.name}};
        Fields fields = interface.data;
        fields.add(survey_.ask("TarnGetSsidIntfStats", interface.asSsid()));
        addInfo(kInterfaceInfo, {labels.front(),
                                 {"radio", std::to_string(radio.id)},
                                 {"ssid", wordOf(fields["ssid"])},
                                 {"bssid", wordOf(fields["bssid"])}});
        const std::int64_t channel = radio.data["channel"].number();
        if (channel != 0)
            fields.set("frequency", numberCell(frequencyOf(bandOf(wordOf(radio.data["band"]), channel), channel), "MHz"));
        addFields(kOfInterfaces, labels, fields);
        std::size_t place = 0;
        for (const Fields& station : survey_.stations(interface))
            collectStation(interface, station, place++);
    }

    void collectStation(const Interface& interface, const Fields& station, std::size_t place)
    {
        Labels labels = {{"device", interface.name}};
        const std::string address = wordOf(station["macAddress"]);
        if (!hasAddresses_ || address.empty())
        {
            labels.emplace_back("station", std::to_string(place));
            addFields(kOfStations, labels, station);
            return;
        }
        labels.emplace_back("mac_address", address);
        Labels description = labels;
        description.emplace_back("mode", wordOf(station["phyMode"]));
        addInfo(kStationInfo, description);
        addFields(kOfStations, labels, station);
        Fields counted = station;
        counted.add(survey_.ask("TarnGetAccessPointAssociatedStats", interface.with({"macAddress=" + address}), true));
        addFields(kOfKnownStations, labels, counted);
    }

    // Of a text, the bytes as they came.
    static std::string wordOf(const Cell& cell)
    {
        if (const std::string* text = cell.value.text())
            return *text;
        return cell.isKnown() ? cell.text() : "";
    }

    Survey& survey_;
    const bool hasAddresses_;
    Metrics metrics_;
    std::vector<std::string> notes_;
};

Json documentOf(const Metrics& metrics, const std::vector<std::string>& notes)
{
    Json document = Console::document("metrics");
    document["time"] = base::Timestamp().text;
    document["layout"] = layoutDocument(layoutInUse());
    document["metrics"] = metrics.document();
    document["notes"] = notes;
    return document;
}

ExitCode metrics(const Console& console, const MetricsOptions& options)
{
    if (console.json && options.textFile)
        throw UsageError("metrics: expected --textfile or JSON, not both");
    Survey survey("metrics");
    MetricsCollector collector(survey, options.hasAddresses);
    collector.collect();
    std::vector<std::string> notes = survey.notes();
    notes.insert(notes.end(), collector.notes().begin(), collector.notes().end());
    if (console.json)
        console.write(documentOf(collector.metrics(), notes));
    else if (options.textFile)
        base::replaceFile(*options.textFile, collector.metrics().text(), base::Readers::kAsUsual);
    else
        console.out << collector.metrics().text() << std::flush;
    for (const std::string& note : notes)
        console.remark(note);
    return survey.exitCode();
}

} // namespace

void addMetrics(Verbs& verbs)
{
    verbs.add("metrics", "Writes what is measured and counted, for a monitoring system", &declareMetrics, &metrics);
}

} // namespace tarn::ctl
