#include "stub/floor.h"

#include <cstring>

#include "kor_iil.h"
#include "tarn_api/messages.h"
#include "tarn_qtn_monitor_api/messages.h"

namespace stub_floor
{

std::uint32_t getLastErrorMask(const char* callerId, std::uint32_t* mask)
{
    tarn::LastErrorMaskMessage message;
    std::memset(&message, 0, sizeof message);
    KorIilExecute(callerId, "TARN", 3, 2, sizeof message, &message);
    *mask = message.mask;
    return message.status;
}

std::uint32_t getLogLevel(const char* callerId, std::uint32_t* level)
{
    tarn::LogLevelMessage message;
    std::memset(&message, 0, sizeof message);
    KorIilExecute(callerId, "TARN", 3, 0, sizeof message, &message);
    *level = message.levelReported;
    return message.status;
}

std::uint32_t getRoamingState(const char* callerId, std::uint32_t radioId, std::uint32_t ssidId, std::uint32_t* enable)
{
    tarn::RoamingMessage message;
    std::memset(&message, 0, sizeof message);
    message.radio = radioId - 1;
    message.ssid = ssidId - 1;
    KorIilExecute(callerId, "TARN", 3, 48, sizeof message, &message);
    *enable = message.enabled;
    return message.status;
}

std::uint32_t getMirrorStatus(const char* callerId, std::uint32_t* status)
{
    tarn::MirrorMessage message;
    std::memset(&message, 0, sizeof message);
    KorIilExecute(callerId, "QTN_MIRROR", 3, 0, sizeof message, &message);
    *status = message.mirrorStatus;
    return static_cast<std::uint32_t>(message.status);
}

std::uint32_t getBlockAddressNumber(const char* callerId, std::uint32_t radioId, std::uint32_t ssidId, std::uint32_t* number)
{
    tarn::BlockAddressMessage message;
    std::memset(&message, 0, sizeof message);
    message.radio = radioId - 1;
    message.ssid = ssidId - 1;
    KorIilExecute(callerId, "TARN", 3, 52, sizeof message, &message);
    *number = message.number;
    return message.status;
}

std::uint32_t getMacFilterMode(const char* callerId, std::uint32_t radioId, std::uint32_t apId, std::uint32_t* mode)
{
    tarn::MacFilterMessage message;
    std::memset(&message, 0, sizeof message);
    message.radio = radioId - 1;
    message.accessPoint = apId - 1;
    KorIilExecute(callerId, "TARN", 3, 71, sizeof message, &message);
    *mode = message.modeReported;
    return message.status;
}

std::uint32_t setSsid(const char* callerId, std::uint32_t radioId, std::uint32_t ssidId, std::uint32_t param,
                      TarnSsidIntfCfg cfg)
{
    tarn::SsidCommandMessage message;
    std::memset(&message, 0, sizeof message);
    message.radio = radioId - 1;
    message.ssid = ssidId - 1;
    message.param = param;
    message.configuration = cfg;
    KorIilExecute(callerId, "TARN", 3, 45, sizeof message, &message);
    return message.status;
}

std::uint32_t getAtmState(const char* callerId, std::uint32_t* state)
{
    tarn::ModuleStateMessage message;
    std::memset(&message, 0, sizeof message);
    KorIilExecute(callerId, "TARN", 3, 31, sizeof message, &message);
    *state = message.word;
    return message.status;
}

std::uint32_t getStation(const char* callerId, std::uint32_t radioId, std::uint32_t apId, std::uint32_t index,
                         TarnAccessPointAssociatedData* associated)
{
    tarn::StationMessage message;
    std::memset(&message, 0, sizeof message);
    message.radio = radioId - 1;
    message.accessPoint = apId - 1;
    message.index = index;
    KorIilExecute(callerId, "TARN", 4, 67, sizeof message, &message);
    *associated = message.associated;
    return message.status;
}

std::uint32_t getSsid(const char* callerId, std::uint32_t radioId, std::uint32_t ssidId, TarnSsidIntfData* data)
{
    tarn::SsidQueryMessage message;
    std::memset(&message, 0, sizeof message);
    message.radio = radioId - 1;
    message.ssid = ssidId - 1;
    KorIilExecute(callerId, "TARN", 3, 44, sizeof message, &message);
    *data = message.data;
    return message.status;
}

std::uint32_t getSoniqAssociation(const char* callerId, std::uint32_t index, TarnQuantennaSoniqCurrentAssociationData* data)
{
    tarn::SoniqAssociationMessage message;
    std::memset(&message, 0, sizeof message);
    message.index = index;
    KorIilExecute(callerId, "TARN", 3, 112, sizeof message, &message);
    *data = message.association;
    return message.status;
}

std::uint32_t getWps(const char* callerId, std::uint32_t radioId, std::uint32_t apId, TarnAccessPointWpsData* data)
{
    tarn::WpsMessage message;
    std::memset(&message, 0, sizeof message);
    message.radio = radioId - 1;
    message.accessPoint = apId - 1;
    KorIilExecute(callerId, "TARN", 3, 61, sizeof message, &message);
    *data = message.data;
    return message.status;
}

std::uint32_t setAtm(const char* callerId, std::uint32_t value)
{
    tarn::ModuleControlMessage message;
    std::memset(&message, 0, sizeof message);
    message.value = value;
    KorIilExecute(callerId, "TARN", 3, 30, sizeof message, &message);
    return message.status;
}

std::uint32_t setSecurity(const char* callerId, std::uint32_t radioId, std::uint32_t apId, TarnAccessPointSecurityCfg cfg)
{
    tarn::AccessPointWriteMessage message;
    std::memset(&message, 0, sizeof message);
    message.radio = radioId - 1;
    message.accessPoint = apId - 1;
    message.securityConfiguration = cfg;
    KorIilExecute(callerId, "TARN", 3, 59, sizeof message, &message);
    return message.status;
}

std::uint32_t getSecurity(const char* callerId, std::uint32_t radioId, std::uint32_t apId, TarnAccessPointSecurityData* data)
{
    tarn::AccessPointReadMessage message;
    std::memset(&message, 0, sizeof message);
    message.radio = radioId - 1;
    message.accessPoint = apId - 1;
    KorIilExecute(callerId, "TARN", 3, 58, sizeof message, &message);
    *data = message.security;
    return message.status;
}

std::uint32_t getQcomm(const char* callerId, TarnQuantennaSmartWiFiQcommData* data)
{
    tarn::SmartWiFiMessage message;
    std::memset(&message, 0, sizeof message);
    KorIilExecute(callerId, "TARN", 3, 84, sizeof message, &message);
    *data = message.qcomm;
    return message.status;
}

std::uint32_t setRadio(const char* callerId, std::uint32_t radioId, std::uint32_t param, TarnRadioCfg cfg)
{
    tarn::RadioCommandMessage message;
    std::memset(&message, 0, sizeof message);
    message.radio = radioId - 1;
    message.param = param;
    message.configuration = cfg;
    KorIilExecute(callerId, "TARN", 3, 9, sizeof message, &message);
    return message.status;
}

std::uint32_t getChannel(const char* callerId, const char* interface, std::uint32_t* channel)
{
    tarn::ProxyMessage message;
    std::memset(&message, 0, sizeof message);
    std::strncpy(message.ifname, interface, sizeof message.ifname - 1);
    KorIilExecute(callerId, "QTN_RPC_PROXY", 3, 2, sizeof message, &message);
    *channel = message.out.words[0];
    return static_cast<std::uint32_t>(message.status);
}

std::uint32_t getRadio(const char* callerId, std::uint32_t radioId, TarnRadioData* data)
{
    tarn::RadioQueryMessage message;
    std::memset(&message, 0, sizeof message);
    message.radio = radioId - 1;
    KorIilExecute(callerId, "TARN", 3, 7, sizeof message, &message);
    *data = message.data;
    return message.status;
}

} // namespace stub_floor
