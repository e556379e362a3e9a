/* The settings of a connection to brokers, by name, as command lines and files have them on both sides of the fleet. Needs no
 * C++ run-time library. */
#pragma once

#include "broker_link.h"
#include "lines.h"

#include <cstddef>
#include <cstdint>

namespace tarn::fleet
{

bool setNumber(const char* name, const char* value, std::uint32_t least, std::uint32_t most, std::uint32_t& number,
               const Problem& problem);

// Of 1 to size - 1 characters.
bool setText(const char* name, const char* value, char* text, std::size_t size, const Problem& problem);

// Whether it is the name of one of the settings here: id, broker, cafile, cert, key, keep-alive.
bool isLinkSetting(const char* name);

// One of these settings.
bool setLink(LinkSettings& link, const char* name, const char* value, const Problem& problem);

// What has to be there, and what goes together; adds ports that were left out. `owner` is whose name the id is.
bool completeLink(LinkSettings& link, const char* owner, const Problem& problem);

// A file: a setting a line, its name and its value with a space between; `#` begins a comment. `take` is given each of them,
// and returns false if it is wrong.
bool readSettingsFile(const char* fileName,
                      bool (*take)(void* context, const char* name, const char* value, const Problem& problem), void* context,
                      const Problem& problem);

} // namespace tarn::fleet
