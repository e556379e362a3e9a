#include "trace.h"

#include "kor_iil.h"

namespace tarn
{

// The text is the format, because a trace sink may go by the format. All texts are this library's own and hold no conversions.
#pragma GCC diagnostic ignored "-Wformat-security"
void trace(const char* tag, std::uint32_t line, const char* text)
{
    KorIilTrace(kTraceLevel, tag, line, text);
}

} // namespace tarn
