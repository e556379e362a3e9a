// Writes down what goes over the wire: with KORIIL_RECORD=path, one JSON line a call.
#pragma once

#include <cstdint>
#include <string>

namespace koriil
{

// Whether calls are to be recorded; the environment is read on the first question.
bool isRecording();

// The record of one call, begun before the call, while the buffer still holds the request.
class Record
{
public:
    // `message` is NULL for a call that was refused before its message was looked at.
    Record(const char* callerId, const char* serviceId, std::uint32_t wait, std::uint32_t command, std::uint32_t length,
           const void* message);

    // Completes the line and appends it to the file. `reply` is NULL if there is none.
    void finish(std::uint32_t status, const void* reply);

private:
    std::string line_;
    std::uint32_t length_;
};

} // namespace koriil
