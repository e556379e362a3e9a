// What the campaign's programs have in common: the service and its messages.
#pragma once

#include "kor_iil_service.h"

#include <cstdint>
#include <cstring>

namespace campaign
{

constexpr const char* kService = "CAMPAIGN";
constexpr std::uint32_t kAmple = 60; // seconds; only a test that fails waits that long

// The service answers command kAdd with the sum of the message's words in the first. `second` tells the calls apart.
constexpr std::uint32_t kAdd = 1;
struct Sum
{
    std::uint32_t first;
    std::uint32_t second;
};

// A receiver calls kAcknowledge after so many events.
constexpr std::uint32_t kAcknowledge = 2;
constexpr std::uint32_t kAcknowledgedAtOnce = 100;

inline std::uint32_t answerSum(void*, const KorIilRequest* request, void* message)
{
    if (request->command != kAdd)
        return KOR_IIL_UNKNOWN_CMD;
    if (request->length != sizeof(Sum))
        return KOR_IIL_MISMATCH_CMD_LEN;
    Sum sum;
    std::memcpy(&sum, message, sizeof sum);
    sum.first += sum.second;
    std::memcpy(message, &sum, sizeof sum);
    return KOR_IIL_OK;
}

} // namespace campaign
