/* What both sides of the fleet have of the contract without reading it: its hash, and for the bridge each function's command,
 * length and effect. Written by the build from the files of kit/contract. Needs no C++ run-time library. */
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::fleet
{

// Of a text, as FNV-1a with 64 bits; `hash` continues another.
inline constexpr std::uint64_t kHashOfNothing = 0xCBF29CE484222325u;
constexpr std::uint64_t hashOf(const char* text, std::size_t size, std::uint64_t hash = kHashOfNothing)
{
    for (std::size_t at = 0; at < size; ++at)
        hash = (hash ^ static_cast<unsigned char>(text[at])) * 0x100000001B3u;
    return hash;
}

// NOLINTBEGIN(bugprone-dynamic-static-initializers): all that is declared here is initialised by the compiler.

// Of all that the functions put on the wire: services, numbers, lengths, and direction, encoding, offset and size of each
// argument; not of names and descriptions. Two programs with the same hash mean the same by the same bytes.
extern const std::uint64_t kContractHash;

struct ContractFunction
{
    const char* name;
    std::uint16_t length; // bytes of its message
    std::uint8_t service; // index into kContractServices
    std::uint8_t command;
    bool reads; // a call leaves nothing behind on the gateway
};

struct ContractService
{
    const char* name;
    std::uint32_t events; // it publishes those from 1 to this number
};

inline constexpr std::size_t kContractServiceCount = 3;
inline constexpr std::size_t kContractFunctionCount = 247;
extern const ContractService kContractServices[kContractServiceCount];
extern const ContractFunction kContractFunctions[kContractFunctionCount]; // by service and command

// NOLINTEND(bugprone-dynamic-static-initializers)

// The index of that service, or kContractServiceCount.
std::size_t findService(const char* service);

// The index of the first function that has this command, or kContractFunctionCount. Others of the same command are behind it,
// and have the same length and effect.
std::size_t findCommand(const char* service, std::uint32_t command);

} // namespace tarn::fleet
