// The call of the trials, tarn_qcsapi_pm_set_mode: it changes something, and its argument tells one from another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace fleet_test
{

inline constexpr char kNumberedFunction[] = "tarn_qcsapi_pm_set_mode";
inline constexpr char kNumberedArgument[] = "mode";
inline constexpr char kNumberedService[] = "QTN_RPC_PROXY";
inline constexpr std::uint32_t kNumberedCommand = 22, kNumberedLength = 9376;

inline std::uint32_t numberIn(const void* message)
{
    constexpr std::size_t kAt = 104;
    std::uint32_t number = 0;
    std::memcpy(&number, static_cast<const std::uint8_t*>(message) + kAt, sizeof number);
    return number;
}

// The reply, without zeros at its end that would not travel, and two words there; the last one is the reply status.
inline void answerInFull(void* message, std::uint32_t length, std::uint32_t word, std::uint32_t status)
{
    const std::uint32_t words[] = {word, status};
    std::memset(message, 0x55, length - sizeof words);
    std::memcpy(static_cast<std::uint8_t*>(message) + length - sizeof words, words, sizeof words);
}

} // namespace fleet_test
