// The trace sink: one line per record, of limited length, written without buffering.
#include "trace.h"

#include "base/timestamp.h"
#include "environment.h"
#include "output.h"
#include "thread_guards.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include <unistd.h>

namespace koriil
{
namespace
{

constexpr std::size_t kLongestLine = 1024; // with its newline
constexpr char kCutMark[] = " [cut]";

// Lines that a process may write in a second. Who writes more has a fault that the first ones show.
constexpr std::uint32_t kLinesPerSecond = 1000;

// One line under construction: printable ASCII only, never longer than kLongestLine.
class TraceLine
{
public:
    void append(const char* text)
    {
        for (; *text != '\0' && !cut_; ++text)
            appendCharacter(static_cast<unsigned char>(*text));
    }

    // False if there was no room for it.
    bool writeTo(int descriptor)
    {
        if (cut_)
        {
            std::memcpy(bytes_ + length_, kCutMark, sizeof kCutMark - 1);
            length_ += sizeof kCutMark - 1;
        }
        bytes_[length_++] = '\n';
        return writeAtOnce(descriptor, bytes_, length_) > 0;
    }

private:
    void appendCharacter(unsigned char character)
    {
        char shown[8] = {};
        if (character >= 0x20 && character < 0x7F)
            shown[0] = static_cast<char>(character);
        else
            std::snprintf(shown, sizeof shown, "\\x%02X", character);

        const std::size_t length = std::strlen(shown);
        if (length_ + length > kLongestLine - sizeof kCutMark)
        {
            cut_ = true;
            return;
        }
        std::memcpy(bytes_ + length_, shown, length);
        length_ += length;
    }

    char bytes_[kLongestLine];
    std::size_t length_ = 0;
    bool cut_ = false;
};

// From the environment, read when the first record is written.
struct TraceSettings
{
    std::uint32_t highestLevel = kTraceNotice;
    const OutputFile* file = nullptr; // NULL for standard error
};

void warn(const char* format, ...) __attribute__((format(printf, 1, 2)));

void warn(const char* format, ...)
{
    char text[kLongestLine];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);

    TraceLine line;
    line.append(text);
    line.writeTo(STDERR_FILENO);
}

std::uint32_t levelFrom(const char* text, std::uint32_t fallback)
{
    if (std::strcmp(text, "off") == 0)
        return 0;

    char* end = nullptr;
    errno = 0;
    const unsigned long level = std::strtoul(text, &end, 10);
    if (text[0] >= '0' && text[0] <= '9' && *end == '\0' && errno == 0 && level <= UINT32_MAX)
        return static_cast<std::uint32_t>(level);

    warn("koriil: KORIIL_TRACE is '%s'; expected off or the number of the highest level to show, 1 to %u", text,
         static_cast<unsigned>(kTraceDebug));
    return fallback;
}

TraceSettings readSettings()
{
    TraceSettings settings;
    if (const char* level = setting("KORIIL_TRACE"))
        settings.highestLevel = levelFrom(level, settings.highestLevel);

    if (const char* path = setting("KORIIL_TRACE_FILE"))
    {
        static const OutputFile kFile(path);
        if (kFile.descriptor() >= 0)
            settings.file = &kFile;
        else
            warn("koriil: trace file %s cannot be opened (%s); tracing to standard error", path, std::strerror(errno));
    }
    return settings;
}

void appendLevel(TraceLine& record, std::uint32_t level)
{
    static constexpr const char* kNames[] = {"level0 ", "error ", "warning ", "notice ", "debug "};
    if (level < std::size(kNames))
        return record.append(kNames[level]);

    char number[24];
    std::snprintf(number, sizeof number, "level%lu ", static_cast<unsigned long>(level));
    record.append(number);
}

void appendPlace(TraceLine& record, const char* fileTag, std::uint32_t line)
{
    char text[16];
    std::snprintf(text, sizeof text, ":%lu ", static_cast<unsigned long>(line));
    record.append(fileTag != nullptr ? fileTag : "?");
    record.append(text);
}

// Lines that were not written. Not locked, so that a child that is forked meanwhile can trace.
std::atomic<std::uint32_t> dropped{0};

bool isTooMuch()
{
    static std::atomic<std::uint32_t> second{0};
    static std::atomic<std::uint32_t> lines{0};
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    const auto thisSecond = static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::seconds>(now).count());
    if (second.exchange(thisSecond) != thisSecond)
        lines = 0;
    return ++lines > kLinesPerSecond;
}

void writeRecord(int descriptor, std::uint32_t level, const char* fileTag, std::uint32_t line, const char* text)
{
    TraceLine record;
    record.append(tarn::base::Timestamp().text);
    record.append(" ");
    appendLevel(record, level);
    appendPlace(record, fileTag, line);
    record.append(text);
    if (!record.writeTo(descriptor))
        ++dropped;
}

// Says how many lines are missing before the next one that is written.
void reportDropped(int descriptor)
{
    const std::uint32_t missing = dropped.exchange(0);
    if (missing == 0)
        return;
    char text[64];
    std::snprintf(text, sizeof text, "%lu trace lines dropped", static_cast<unsigned long>(missing));
    writeRecord(descriptor, kTraceWarning, "koriil", __LINE__, text);
    if (dropped > 0) // this one, too
        dropped += missing - 1;
}

} // namespace
} // namespace koriil

extern "C" void KorIilTrace(uint32_t level, const char* fileTag, uint32_t line, const char* format, ...)
{
    using namespace koriil;

    const int callersErrno = errno;
    const CancellationDeferred deferred;
    static const TraceSettings kSettings = readSettings();
    if (level > kSettings.highestLevel || kSettings.highestLevel == 0)
    {
    }
    else if (isTooMuch())
        ++dropped;
    else
    {
        // Cut here, a text is too long for the line as well, which then ends in the cut mark.
        char text[kLongestLine] = "(no text)";
        if (format != nullptr)
        {
            errno = callersErrno; // for %m
            va_list arguments;
            va_start(arguments, format);
            if (std::vsnprintf(text, sizeof text, format, arguments) < 0)
                std::snprintf(text, sizeof text, "(unprintable) %s", format);
            va_end(arguments);
        }
        const int descriptor = kSettings.file != nullptr ? kSettings.file->descriptor() : STDERR_FILENO;
        reportDropped(descriptor);
        writeRecord(descriptor, level, fileTag, line, text);
    }
    errno = callersErrno;
}
