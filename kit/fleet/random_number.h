/* Random numbers of the system, without the C++ run-time library. */
#pragma once

#include <cstdint>
#include <cstdio>

namespace tarn::fleet
{

// 0 if the system gives none.
inline std::uint64_t randomNumber()
{
    std::uint64_t number = 0;
    if (std::FILE* file = std::fopen("/dev/urandom", "re"); file != nullptr)
    {
        std::setvbuf(file, nullptr, _IONBF, 0); // no more than is needed
        if (std::fread(&number, sizeof number, 1, file) != 1)
            number = 0;
        std::fclose(file);
    }
    return number;
}

} // namespace tarn::fleet
