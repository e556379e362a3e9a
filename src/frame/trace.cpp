#include "trace.h"

#include "kor_iil.h"

namespace tarn
{

// The text is the format, because a trace sink may sort by format. All texts are this library's own and have no conversions.
#pragma GCC diagnostic ignored "-Wformat-security"
void trace(const char* tag, std::uint32_t line, const char* text)
{
    KorIilTrace(kTraceLevel, tag, line, text);
}

} // namespace tarn
