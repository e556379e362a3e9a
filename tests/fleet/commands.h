// The calls that the tests of the fleet ask for by number, and the lengths of their messages in bytes.
#pragma once

#include <cstdint>

namespace fleet_test
{

inline constexpr std::uint32_t kGetLogLevel = 0, kSetLogLevel = 1, kShort = 12; // of TARN; the second changes something
inline constexpr std::uint32_t kGetRadioNum = 5, kLong = 9584;                  // of TARN, only reads
inline constexpr std::uint32_t kGetChannel = 2, kOfProxy = 9376;                // of QTN_RPC_PROXY, only reads

} // namespace fleet_test
