// One logical call, in the encoding of each peer: the caller encodes a request, the service decodes it and encodes a reply with
// a record of its own, and the caller decodes that into a record of its own. Nothing is sent: what one side has encoded is the
// other's to read. The inside of a record is bytes to both.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "harness/cases.h"

namespace messages
{

struct Request
{
    std::uint32_t command, radio, ssid;
};

// What every call asks for: as TarnGetSsidIntf does with ids from 1.
constexpr Request kRequest = {44, 0, 0};

constexpr std::uint32_t kStatus = 5; // of every reply, so that a call without one shows

// The record that the service has.
extern const std::array<unsigned char, bench::kRecordSize> serviceRecord;

// Each adds a case for messages of 12, 144 and 9584 bytes of the library.
void addTarn(std::vector<bench::Case>& cases);
void addCapnProto(std::vector<bench::Case>& cases);
void addFlatBuffers(std::vector<bench::Case>& cases);
void addNanopb(std::vector<bench::Case>& cases);
void addProtobuf(std::vector<bench::Case>& cases);
void addSdBus(std::vector<bench::Case>& cases);
void addXdr(std::vector<bench::Case>& cases);

// The three cases of a peer: with records of 4, 128 and 9552 bytes.
inline void addCases(std::vector<bench::Case>& cases, const std::string& name, bench::Call small, bench::Call middle,
                     bench::Call large)
{
    cases.push_back({name + "/12", small});
    cases.push_back({name + "/144", middle});
    cases.push_back({name + "/9584", large});
}

} // namespace messages
