// How tarn-fleet reaches a broker: options of the command line over a file of the same words.
#pragma once

#include "broker_link.h"

#include <optional>
#include <string>
#include <vector>

namespace CLI // NOLINT(readability-identifier-naming)
{
class App;
}

namespace tarn::fleet
{

struct OperatorOptions
{
    std::vector<std::string> brokers;
    std::optional<std::string> id;
    std::optional<std::string> authorities;
    std::optional<std::string> certificate;
    std::optional<std::string> key;
    std::optional<std::string> keepAlive;
    std::optional<std::string> file;
};

// --broker, --id, --cafile, --cert, --key, --keep-alive and --config.
void declare(CLI::App& parser, OperatorOptions& options);

// Reads the file: that of --config, that of TARN_FLEET, ~/.config/tarn/fleet.conf, /etc/tarn/fleet.conf, whichever there is
// first. Throws ctl::UsageError.
LinkSettings linkSettings(const OperatorOptions& options);

} // namespace tarn::fleet
