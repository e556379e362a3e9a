/* What tarn-bridge is told: by its command line, and by a file of the same words. Needs no C++ run-time library. */
#pragma once

#include "bridge.h"

#include <cstddef>
#include <cstdint>

namespace tarn::fleet
{

struct BridgeOptions
{
    BridgeSettings bridge;
    char policyFile[LinkSettings::kPathSize] = {}; // empty: what only reads is allowed
    std::uint32_t renewSeconds = 5;                // 0: subscriptions are not renewed
    std::uint32_t readyDescriptor = 0;             // where to write a line once the broker is reached; 0: nowhere
    bool isEvents = true;
    bool isHelp = false;
    bool isVersion = false;
};

// All return false and write to `problem` what was expected, if something is wrong.

// One setting by its name, which is that of its option without the dashes, and its value.
bool set(BridgeOptions& options, const char* name, const char* value, char* problem, std::size_t size);

// A file: a setting a line, its name and its value with a space between; `#` begins a comment.
bool readSettings(BridgeOptions& options, const char* fileName, char* problem, std::size_t size);

// The whole command line. `--config FILE` reads that file at its place.
bool readArguments(BridgeOptions& options, int count, const char* const* arguments, char* problem, std::size_t size);

// The text of --help.
extern const char kBridgeHelp[]; // NOLINT(bugprone-dynamic-static-initializers): a text

} // namespace tarn::fleet
