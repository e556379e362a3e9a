// What the library adds to a call: its functions beside the same calls by hand, one pair for each length of a message.
#include "harness/cases.h"
#include "stub/floor.h"

#include <cstdio>
#include <cstring>
#include <tuple>

#include "kor_iil.h"

namespace
{

// What a call hands to the platform.
using Sent = std::tuple<std::string, std::uint32_t, std::uint32_t, std::vector<unsigned char>>;

Sent* watched = nullptr; // what is sent, while two functions are compared

void watch(const char* service, std::uint32_t wait, std::uint32_t command, std::uint32_t length, void* message)
{
    auto* const bytes = static_cast<unsigned char*>(message);
    *watched = {service, wait, command, {bytes, bytes + length}};
    for (std::uint32_t i = 0; i < length; ++i)
        bytes[i] = static_cast<unsigned char>(i * 7 + 1);
}

} // namespace

// A platform that does nothing, so that only what is above it is measured.
extern "C" std::uint32_t KorIilExecute(const char*, const char* serviceId, std::uint32_t wait, std::uint32_t cmdId,
                                       std::uint32_t msgLen, void* msg)
{
    if (watched != nullptr)
        watch(serviceId, wait, cmdId, msgLen, msg);
    asm volatile("" : : "r"(msg) : "memory");
    return 0;
}

namespace
{

using namespace stub_floor;
using Word = std::uint32_t;

constexpr char kCaller[] = "bench";

// Calls of a function whose last argument is the caller's record, behind these numbers.
template <auto function, class Record, std::uint32_t... numbers>
std::uint32_t reading(void* record)
{
    return static_cast<std::uint32_t>(function(kCaller, numbers..., static_cast<Record*>(record)));
}

template <auto function, class Record, std::uint32_t... numbers>
std::uint32_t writing(void* record)
{
    return function(kCaller, numbers..., *static_cast<const Record*>(record));
}

template <auto function>
std::uint32_t ofInterface(void* record)
{
    return static_cast<std::uint32_t>(function(kCaller, "wifi0", static_cast<Word*>(record)));
}

void add(std::vector<bench::Case>& cases, int length, bench::Call library, bench::Call byHand)
{
    cases.push_back({"library/" + std::to_string(length), library});
    cases.push_back({"floor/" + std::to_string(length), byHand});
}

template <auto library, auto byHand, class Record, std::uint32_t... numbers>
void addReading(std::vector<bench::Case>& cases, int length)
{
    add(cases, length, reading<library, Record, numbers...>, reading<byHand, Record, numbers...>);
}

template <auto library, auto byHand, class Record, std::uint32_t... numbers>
void addWriting(std::vector<bench::Case>& cases, int length)
{
    add(cases, length, writing<library, Record, numbers...>, writing<byHand, Record, numbers...>);
}

std::vector<bench::Case> allCases()
{
    std::vector<bench::Case> cases;
    addReading<TarnGetLastErrorMask, getLastErrorMask, Word>(cases, 8);
    addReading<TarnGetLogLevel, getLogLevel, Word>(cases, 12);
    addReading<TarnGetSsidOPXRoamingState, getRoamingState, Word, 1, 1>(cases, 16);
    addReading<tarn_qtn_mirror_get_mirror_status, getMirrorStatus, Word>(cases, 24);
    addReading<TarnGetSsidOPXShgwBlockAddrNum, getBlockAddressNumber, Word, 1, 1>(cases, 36);
    addReading<TarnGetAccessPointMacFilterMode, getMacFilterMode, Word, 1, 1>(cases, 44);
    addWriting<TarnSetSsidIntfCfg, setSsid, TarnSsidIntfCfg, 1, 1, 1>(cases, 56);
    addReading<TarnGetQuantennaATMState, getAtmState, Word>(cases, 76);
    addReading<TarnGetAccessPointAssociatedAt, getStation, TarnAccessPointAssociatedData, 1, 1, 0>(cases, 140);
    addReading<TarnGetSsidIntf, getSsid, TarnSsidIntfData, 1, 1>(cases, 144);
    addReading<TarnGetQuantennaSoniqCurrentAssociationAt, getSoniqAssociation, TarnQuantennaSoniqCurrentAssociationData, 0>(
        cases, 148);
    addReading<TarnGetAccessPointWps, getWps, TarnAccessPointWpsData, 1, 1>(cases, 220);
    add(
        cases, 268, [](void*) { return TarnSetQuantennaATM(kCaller, 1); }, [](void*) { return setAtm(kCaller, 1); });
    addWriting<TarnSetAccessPointSecurityCfg, setSecurity, TarnAccessPointSecurityCfg, 1, 1>(cases, 336);
    addReading<TarnGetAccessPointSecurity, getSecurity, TarnAccessPointSecurityData, 1, 1>(cases, 344);
    addReading<TarnGetQuantennaSmartWiFiQcomm, getQcomm, TarnQuantennaSmartWiFiQcommData>(cases, 2240);
    addWriting<TarnSetRadioCfg, setRadio, TarnRadioCfg, 1, 1>(cases, 4444);
    add(cases, 9376, ofInterface<tarn_qcsapi_wifi_get_channel>, ofInterface<getChannel>);
    addReading<TarnGetRadio, getRadio, TarnRadioData, 1>(cases, 9584);
    return cases;
}

// What a call sends, returns, and leaves in the caller's record.
std::tuple<Sent, std::uint32_t, std::vector<unsigned char>> observed(bench::Call call)
{
    Sent sent;
    watched = &sent;
    std::vector<unsigned char> record(bench::kRecordSize, 0x55);
    const std::uint32_t status = call(record.data());
    watched = nullptr;
    return {sent, status, record};
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<bench::Case> cases = allCases();
    for (std::size_t i = 0; i < cases.size(); i += 2)
        if (observed(cases[i].call) != observed(cases[i + 1].call))
        {
            std::fprintf(stderr, "%s and %s do not do the same\n", cases[i].name.c_str(), cases[i + 1].name.c_str());
            return 1;
        }
    return bench::runCases(argc, argv, cases);
}
