#include "recorder.h"

#include "base/byte_order.h"
#include "base/hexadecimal.h"
#include "base/quote.h"
#include "base/timestamp.h"
#include "environment.h"
#include "output.h"
#include "trace.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <mutex>

#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace koriil
{
namespace
{

constexpr std::size_t kStatusSize = 64; // the most that a line has beside its front and the two messages

std::mutex appending; // from a write until what the file's end says of it

// NULL if nothing is recorded.
const OutputFile* openRecording()
{
    const char* const path = setting("KORIIL_RECORD");
    if (path == nullptr)
        return nullptr;
    pthread_atfork([] { appending.lock(); }, [] { appending.unlock(); }, [] { appending.unlock(); });
    static const OutputFile kFile(path);
    if (kFile.descriptor() >= 0)
        return &kFile;
    KORIIL_REPORT(kTraceWarning, "KORIIL_RECORD=%s cannot be opened, calls are not recorded: %s", path, std::strerror(errno));
    return nullptr;
}

const OutputFile* recording()
{
    static const OutputFile* const kFile = openRecording();
    return kFile;
}

// A caller id may hold any bytes, but one of more than 64 is no identifier.
std::string identifier(const char* text)
{
    return text == nullptr ? "null" : tarn::base::inJsonQuotes({text, strnlen(text, 64)});
}

void appendHexadecimal(std::string& line, const void* bytes, std::uint32_t length)
{
    if (bytes == nullptr)
    {
        line += "null";
        return;
    }
    line += '"';
    tarn::base::appendHex(line, bytes, length);
    line += '"';
}

// A line that did not fit (the disk is full) is taken back, so that the next one is whole. False if it did not fit.
bool appendLine(const std::string& line)
{
    const std::lock_guard<std::mutex> guard(appending);
    const int file = recording()->descriptor();
    const ssize_t written = writeAtOnce(file, line.data(), line.size());
    if (written == static_cast<ssize_t>(line.size()))
        return true;
    const int error = written < 0 ? errno : ENOSPC;
    struct stat status = {};
    const off_t end = lseek(file, 0, SEEK_CUR);
    if (written > 0 && fstat(file, &status) == 0 && status.st_size == end) // another process may have appended more
        [[maybe_unused]]
        const int taken = ftruncate(file, end - written);
    errno = error;
    return false;
}

} // namespace

bool isRecording()
{
    return recording() != nullptr;
}

RecordedCall::RecordedCall(const char* callerId, const char* serviceId, std::uint32_t wait, std::uint32_t command,
                           std::uint32_t length, const void* message)
    : length_(length)
{
    line_ = std::string("{\"time\":\"") + tarn::base::Timestamp().text + "\",\"pid\":" + std::to_string(getpid()) +
            ",\"caller\":" + identifier(callerId) + ",\"service\":" + identifier(serviceId) +
            ",\"command\":" + std::to_string(command) + ",\"wait\":" + std::to_string(wait) +
            ",\"length\":" + std::to_string(length) + ",\"byte_order\":\"" + tarn::base::kByteOrder + "\",\"request\":";
    if (message != nullptr)
        line_.reserve(line_.size() + 4 * std::size_t{length} + kStatusSize); // finish() allocates nothing, and so cannot fail
    appendHexadecimal(line_, message, length);
}

void RecordedCall::finish(std::uint32_t status, const void* reply)
{
    char text[kStatusSize];
    std::snprintf(text, sizeof text, ",\"status\":%lu,\"reply\":", static_cast<unsigned long>(status));
    line_ += text;
    appendHexadecimal(line_, reply, length_);
    line_ += "}\n";

    if (!appendLine(line_))
        KORIIL_REPORT(kTraceWarning, "a record of %zu bytes could not be written: %s", line_.size(), std::strerror(errno));
}

} // namespace koriil
