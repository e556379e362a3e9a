// What the tests of the module's functions share: the places in the proxy's message, and a platform that expects such messages.
#pragma once

#include "kor_iil_mock.hpp"
#include "tarn_qtn_monitor_api.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tarn::test
{

inline constexpr std::uint32_t kMessageSize = 9376;
inline constexpr std::uint32_t kIfname = 0;
inline constexpr std::uint32_t kIfnameSize = 65;
inline constexpr std::uint32_t kParam1 = 68;
inline constexpr std::uint32_t kParam1Size = 36;
inline constexpr std::uint32_t kParam2 = 104;
inline constexpr std::uint32_t kParam2Size = 1040;
inline constexpr std::uint32_t kParam3 = 1144;
inline constexpr std::uint32_t kParam4 = 1148;
inline constexpr std::uint32_t kOut = 1152;
inline constexpr std::uint32_t kOutSize = 8200;
inline constexpr std::uint32_t kOutWords = 9352;
inline constexpr std::uint32_t kStatus = 9372;

// What a buffer or a word holds before the call, to see whether it was written.
inline constexpr std::uint8_t kUntouchedByte = 0xEE;
inline constexpr std::uint32_t kUntouched = 0xEEEEEEEE;

// "abc...zabc...", so that a text is seen to be cut behind the right character.
inline std::string letters(std::size_t length)
{
    std::string text;
    for (std::size_t i = 0; i != length; ++i)
        text += static_cast<char>('a' + i % 26);
    return text;
}

// Bytes of which none is zero and neighbours differ.
inline std::vector<std::uint8_t> nonZeroBytes(std::size_t size)
{
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i != size; ++i)
        bytes.push_back(static_cast<std::uint8_t>(1 + i % 251));
    return bytes;
}

class ProxyTest : public testing::Test
{
protected:
    // A command of the proxy by the caller "ledd", with wait 3. Every byte that the test does not name must be zero.
    mock::Call expectCommand(std::uint32_t command, const char* file = __builtin_FILE(),
                             unsigned line = static_cast<unsigned>(__builtin_LINE()))
    {
        return platform.expect("QTN_RPC_PROXY", command, kMessageSize, file, line).caller("ledd").wait(3).restZero();
    }

    // The same about the interface "wifi0".
    mock::Call expectOnWifi0(std::uint32_t command, const char* file = __builtin_FILE(),
                             unsigned line = static_cast<unsigned>(__builtin_LINE()))
    {
        return expectCommand(command, file, line).text(kIfname, kIfnameSize, "wifi0");
    }

    mock::Platform platform;
};

} // namespace tarn::test
