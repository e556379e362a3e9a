// The platform as the conformance checks see it: keeps the last message and trace with their very pointers, and answers as
// told.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace conformance
{

struct SentMessage
{
    const char* callerId = nullptr;
    std::string service;
    std::uint32_t wait = 0;
    std::uint32_t command = 0;
    std::uint32_t length = 0;
    bool aligned = false; // at a multiple of 4
    std::vector<std::uint8_t> bytes;
};

struct WrittenTrace
{
    std::uint32_t level = 0;
    std::string tag;
    std::uint32_t line = 0;
    std::string format;
    const char* argument = nullptr; // the first one, if the format asks for a text
};

// One at a time.
class Recorder
{
public:
    Recorder();
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    // What the next messages are answered with: an IPC status, and the bytes of the reply, as far as they go; none leave the
    // message as it was sent.
    void answerWith(std::uint32_t ipcStatus, const std::vector<std::uint8_t>& reply);

    void clear();

    unsigned sentCount = 0;
    SentMessage sent; // the last one
    unsigned traceCount = 0;
    WrittenTrace trace; // the last one

private:
    static std::uint32_t execute(void* context, const char* callerId, const char* serviceId, std::uint32_t wait,
                                 std::uint32_t cmdId, std::uint32_t msgLen, void* msg);

    std::uint32_t status_ = 0;
    const std::vector<std::uint8_t>* answer_ = nullptr;
};

} // namespace conformance
