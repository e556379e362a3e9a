// Asks a gateway everything that it can be asked, and puts the answers into one document of kind "report".
#pragma once

#include "tarnctl/call.h"
#include "tarnctl/console.h"

#include <optional>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

struct CollectOptions
{
    double seconds = 5;      // for which the counters are watched
    bool hasSecrets = false; // passphrases, PINs, keys, and bytes that no layout describes
};

struct Collected
{
    Json document;                 // of what has been told, and of what has not
    std::optional<Report> failure; // the first call that got no answer
};

Collected collect(const Console& console, const CollectOptions& options);

} // namespace tarn::ctl
