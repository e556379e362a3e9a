// What the library needs of its platform besides calls. No call that is measured fails, so that nothing is traced.
#include "kor_iil.h"

#include <cstdint>
#include <cstdlib>

extern "C" void KorIilTrace(std::uint32_t, const char*, std::uint32_t, const char*, ...)
{
    std::abort();
}

extern "C" std::uint32_t KorIilSubscribeEvent(const char*, const char*, std::uint32_t, KorIilEventHandler)
{
    return 0;
}

extern "C" std::uint32_t KorIilCancelEvent(const char*, const char*, std::uint32_t, KorIilEventHandler)
{
    return 0;
}
