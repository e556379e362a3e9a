#include "messages/exchange.h"

#include <cstring>

#include "kor_iil.h"
#include "tarn_api.h"

namespace
{

constexpr char kCaller[] = "bench";

// The record and where it is in the message, by the message's length.
struct Place
{
    std::size_t offset, size;
};

Place placeOfRecord(std::uint32_t length)
{
    switch (length)
    {
    case 12:
        return {4, 4};
    case 144:
        return {12, 128};
    default:
        return {28, 9552};
    }
}

std::uint32_t getLogLevel(void* record)
{
    return TarnGetLogLevel(kCaller, static_cast<std::uint32_t*>(record));
}

std::uint32_t getSsid(void* record)
{
    return TarnGetSsidIntf(kCaller, 1, 1, static_cast<TarnSsidIntfData*>(record));
}

std::uint32_t getRadio(void* record)
{
    return TarnGetRadio(kCaller, 1, static_cast<TarnRadioData*>(record));
}

} // namespace

// The service's half: it looks at the ids and writes its record and the status.
extern "C" std::uint32_t KorIilExecute(const char*, const char*, std::uint32_t, std::uint32_t, std::uint32_t msgLen, void* msg)
{
    auto* const bytes = static_cast<unsigned char*>(msg);
    std::uint32_t radio;
    std::memcpy(&radio, bytes, sizeof radio);
    if (radio != messages::kRequest.radio)
        return 3;
    const Place place = placeOfRecord(msgLen);
    std::memcpy(bytes + place.offset, messages::serviceRecord.data(), place.size);
    std::memcpy(bytes + msgLen - sizeof messages::kStatus, &messages::kStatus, sizeof messages::kStatus);
    return 0;
}

void messages::addTarn(std::vector<bench::Case>& cases)
{
    addCases(cases, "libtarn", getLogLevel, getSsid, getRadio);
}
