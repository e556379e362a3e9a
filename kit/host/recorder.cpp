#include "recorder.h"

#include "timestamp.h"
#include "trace.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace koriil
{
namespace
{

constexpr size_t kRoomForStatus = 64; // everything of a line but its front and the two messages

int openRecording()
{
    const char* path = std::getenv("KORIIL_RECORD");
    if (path == nullptr || *path == '\0')
        return -1;
    const int file = open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0)
        KORIIL_REPORT(kTraceWarning, "KORIIL_RECORD=%s cannot be opened, calls are not recorded: %s", path,
                      std::strerror(errno));
    return file;
}

int recording()
{
    static const int file = openRecording();
    return file;
}

// As JSON. A caller id may hold any bytes: each one becomes the character of its number, so that the line is ASCII and nothing
// is lost.
std::string quoted(const char* text)
{
    if (text == nullptr)
        return "null";
    std::string result = "\"";
    for (size_t i = 0; i < 64 && text[i] != '\0'; ++i) // longer ones are no identifiers
    {
        const auto character = static_cast<unsigned char>(text[i]);
        if (character >= 0x20 && character < 0x7F && character != '"' && character != '\\')
        {
            result += text[i];
            continue;
        }
        char escaped[8];
        snprintf(escaped, sizeof(escaped), "\\u%04x", character);
        result += escaped;
    }
    return result + "\"";
}

void appendHexadecimal(std::string& line, const void* bytes, uint32_t length)
{
    if (bytes == nullptr)
    {
        line += "null";
        return;
    }
    static constexpr char kDigits[] = "0123456789abcdef";
    line += '"';
    for (uint32_t i = 0; i < length; ++i)
    {
        const unsigned char byte = static_cast<const unsigned char*>(bytes)[i];
        line += kDigits[byte >> 4];
        line += kDigits[byte & 15];
    }
    line += '"';
}

} // namespace

bool isRecording()
{
    return recording() >= 0;
}

Record::Record(const char* callerId, const char* serviceId, uint32_t wait, uint32_t command, uint32_t length,
               const void* message)
    : length_(length)
{
    line_ = std::string("{\"time\":\"") + Timestamp().text + "\",\"pid\":" + std::to_string(getpid()) +
            ",\"caller\":" + quoted(callerId) + ",\"service\":" + quoted(serviceId) +
            ",\"command\":" + std::to_string(command) + ",\"wait\":" + std::to_string(wait) +
            ",\"length\":" + std::to_string(length) + ",\"request\":";
    if (message != nullptr)
        line_.reserve(line_.size() + 4 * size_t{length} + kRoomForStatus); // nothing can fail once the call is done
    appendHexadecimal(line_, message, length);
}

void Record::finish(uint32_t status, const void* reply)
{
    char text[kRoomForStatus];
    snprintf(text, sizeof(text), ",\"status\":%lu,\"reply\":", static_cast<unsigned long>(status));
    line_ += text;
    appendHexadecimal(line_, reply, length_);
    line_ += "}\n";

    // One write a line: lines of several threads and processes never mix.
    ssize_t written;
    do
        written = write(recording(), line_.data(), line_.size());
    while (written < 0 && errno == EINTR);
    if (written != static_cast<ssize_t>(line_.size()))
        KORIIL_REPORT(kTraceWarning, "a record of %zu bytes could not be written: %s", line_.size(),
                      written < 0 ? std::strerror(errno) : "no room");
}

} // namespace koriil
