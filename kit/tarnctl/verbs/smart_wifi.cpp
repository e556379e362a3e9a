// `tarnctl smart-wifi`: what the steering daemon knows.
#include "tarnctl/listing.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/verbs/verbs.h"

namespace tarn::ctl
{

namespace
{

struct SmartWifiOptions
{
    std::string table;
    std::optional<std::string> sort;
    WatchOptions watch;
};

// A table of the daemon: a snapshot is taken, then read.
struct Table
{
    const char* key;
    const char* kind; // of its document
    const char* sync;
    const char* number;
    const char* at;
    std::vector<Column> columns;
};

const std::vector<Table>& tables()
{
    static const std::vector<Table> kTables = {
        {"bss",
         "smart-wifi-bss",
         "TarnSyncQuantennaSmartWiFiBSSTable",
         "TarnGetQuantennaSmartWiFiBSSEntryNumber",
         "TarnGetQuantennaSmartWiFiBSSEntryAt",
         {{"bssid", "bssid", &strong},
          {"ssid", "ssid"},
          {"interface", "name"},
          {"band", "band"},
          {"channel", "channel"},
          {"bandwidth", "bandwidth"},
          {"stations", "stations"},
          {"own", "own", &switchTone, true},
          {"mobility_domain", "mobilityDomain"}}},
        {"stations",
         "smart-wifi-stations",
         "TarnSyncQuantennaSmartWiFiAssoiated",
         "TarnGetQuantennaSmartWiFiAssoiatedNumber",
         "TarnGetQuantennaSmartWiFiAssoiatedAt",
         {{"address", "macAddress", &strong},
          {"bssid", "bssid"},
          {"ssid", "ssid"},
          {"band", "band"},
          {"signal", "rssi", &signalTone},
          {"tx_rate", "txRate"},
          {"rx_rate", "rxRate"},
          {"connected", "secondsAssociated"}}},
        {"history",
         "smart-wifi-history",
         "TarnSyncQuantennaSmartWiFiRecordInfo",
         "TarnGetQuantennaSmartWiFiRecordInfoNumber",
         "TarnGetQuantennaSmartWiFiRecordInfoAt",
         {{"after_start", "secondsSinceStart"}, {"status", "status", nullptr, true}, {"text", "text"}}},
    };
    return kTables;
}

std::vector<std::string> tableNames()
{
    std::vector<std::string> names;
    for (const Table& table : tables())
        names.emplace_back(table.key);
    return names;
}

void declareSmartWifi(Syntax& syntax, SmartWifiOptions& options)
{
    syntax.text("TABLE", options.table, "bss, stations or history");
    declareSort(syntax, options.sort, {}); // which differ from table to table
    declareWatch(syntax, options.watch);
}

ExitCode show(const Console& console, const Table& table, const SmartWifiOptions& options)
{
    Survey survey("smart-wifi");
    Page page(table.kind);
    Listing& list = page.list(table.key, table.columns);
    performOrFail(table.sync);
    list.rows = survey.list(table.number, table.at);
    for (Fields& row : list.rows)
        for (const char* duration : {"secondsAssociated", "secondsSinceStart"})
            if (row[duration].isKnown())
                row.set(duration, withDuration(row[duration]));
    if (options.sort)
        list.sort(*options.sort);
    return page.write(console, survey);
}

ExitCode smartWifi(const Console& console, const SmartWifiOptions& options)
{
    requireAction("smart-wifi", options.table, tableNames());
    for (const Table& table : tables())
        if (options.table == table.key)
            return watch(console, options.watch, [&](const Console& frame) { return show(frame, table, options); });
    return ExitCode::kOther;
}

} // namespace

void addSmartWifi(Verbs& verbs)
{
    verbs.add("smart-wifi", "Shows what the steering daemon knows", &declareSmartWifi, &smartWifi, &tableNames);
}

} // namespace tarn::ctl
