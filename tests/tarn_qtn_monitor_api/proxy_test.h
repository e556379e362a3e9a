// What the tests of the module's functions share: the places in the proxy's message, and a platform that expects such messages.
#pragma once

#include "kor_iil_mock.hpp"
#include "support/samples.h"
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
