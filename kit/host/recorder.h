// Records what goes over the wire: with KORIIL_RECORD=path, one JSON line per call.
#pragma once

#include <cstdint>
#include <string>

namespace koriil
{

// Whether calls are to be recorded. The environment is read at the first call of this function.
bool isRecording();

// The line of one call, begun before the call, while the buffer still holds the request.
class RecordedCall
{
public:
    // `message` is NULL for a call whose arguments were refused.
    RecordedCall(const char* callerId, const char* serviceId, std::uint32_t wait, std::uint32_t command, std::uint32_t length,
                 const void* message);

    // Completes the line and appends it to the file. `reply` is NULL if there is none.
    void finish(std::uint32_t status, const void* reply);

private:
    std::string line_;
    std::uint32_t length_;
};

} // namespace koriil
