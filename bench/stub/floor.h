// The floor: what somebody would write by hand for one command, with nothing of a library round it. Clear the message, store
// the inputs, call, copy the output; no argument is checked, and no failure looked at. One function for every length of a
// message, with the prototype of the library's.
#pragma once

#include <cstdint>

#include "tarn_api.h"
#include "tarn_qtn_monitor_api.h"

namespace stub_floor
{

std::uint32_t getLastErrorMask(const char* callerId, std::uint32_t* mask);
std::uint32_t getLogLevel(const char* callerId, std::uint32_t* level);
std::uint32_t getRoamingState(const char* callerId, std::uint32_t radioId, std::uint32_t ssidId, std::uint32_t* enable);
std::uint32_t getMirrorStatus(const char* callerId, std::uint32_t* status);
std::uint32_t getBlockAddressNumber(const char* callerId, std::uint32_t radioId, std::uint32_t ssidId, std::uint32_t* number);
std::uint32_t getMacFilterMode(const char* callerId, std::uint32_t radioId, std::uint32_t apId, std::uint32_t* mode);
std::uint32_t setSsid(const char* callerId, std::uint32_t radioId, std::uint32_t ssidId, std::uint32_t param,
                      TarnSsidIntfCfg cfg);
std::uint32_t getAtmState(const char* callerId, std::uint32_t* state);
std::uint32_t getStation(const char* callerId, std::uint32_t radioId, std::uint32_t apId, std::uint32_t index,
                         TarnAccessPointAssociatedData* associated);
std::uint32_t getSsid(const char* callerId, std::uint32_t radioId, std::uint32_t ssidId, TarnSsidIntfData* data);
std::uint32_t getSoniqAssociation(const char* callerId, std::uint32_t index, TarnQuantennaSoniqCurrentAssociationData* data);
std::uint32_t getWps(const char* callerId, std::uint32_t radioId, std::uint32_t apId, TarnAccessPointWpsData* data);
std::uint32_t setAtm(const char* callerId, std::uint32_t value);
std::uint32_t setSecurity(const char* callerId, std::uint32_t radioId, std::uint32_t apId, TarnAccessPointSecurityCfg cfg);
std::uint32_t getSecurity(const char* callerId, std::uint32_t radioId, std::uint32_t apId, TarnAccessPointSecurityData* data);
std::uint32_t getQcomm(const char* callerId, TarnQuantennaSmartWiFiQcommData* data);
std::uint32_t setRadio(const char* callerId, std::uint32_t radioId, std::uint32_t param, TarnRadioCfg cfg);
std::uint32_t getChannel(const char* callerId, const char* interface, std::uint32_t* channel);
std::uint32_t getRadio(const char* callerId, std::uint32_t radioId, TarnRadioData* data);

} // namespace stub_floor
