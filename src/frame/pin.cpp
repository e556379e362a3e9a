#include "tarn_frame.h"

// The check digit is the units digit. Counting from it, every second digit has weight 3.
uint32_t tarnValidatePinCode(uint32_t pin)
{
    constexpr uint32_t kDigits = 8;
    uint32_t sum = 0;
    for (uint32_t place = 0; place < kDigits; ++place, pin /= 10)
        sum += pin % 10 * (place % 2 == 0 ? 1 : 3);
    return sum % 10 == 0;
}
