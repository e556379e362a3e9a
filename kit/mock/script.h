// One scripted call: what it must look like, and how it is answered.
#pragma once

#include "kor_iil_mock.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarn::mock
{

enum class Kind
{
    kExecute,
    kSubscribe,
    kCancel
};

// A run of bytes of a message.
struct Part
{
    std::uint32_t offset;
    std::vector<std::uint8_t> bytes;
    std::string label; // how the test put it: "word 0x00000002" ...

    std::uint32_t end() const
    {
        return offset + static_cast<std::uint32_t>(bytes.size());
    }
};

// A call as the component made it.
struct ActualCall
{
    Kind kind;
    const char* callerId;
    const char* serviceId;
    std::uint32_t number; // of the command or the event
    std::uint32_t wait;
    std::uint32_t length;
    std::uint8_t* message;
};

// "TARN command 7" or "subscription to TARN event 1".
std::string nameOf(Kind kind, const std::string& serviceId, std::uint32_t number);

} // namespace tarn::mock

struct KorIilMockCall
{
    tarn::mock::Kind kind;
    std::string file;
    unsigned line;
    std::string serviceId;
    std::uint32_t number;
    std::uint32_t length;

    std::optional<std::string> callerId;
    std::optional<std::uint32_t> wait;
    std::vector<tarn::mock::Part> sent;
    bool restZero = false;
    std::vector<tarn::mock::Part> reply;
    std::uint32_t status = 0;
    std::uint32_t ipcStatus = 0;

    std::string name() const;

    // Whether this is the call that was made, whatever it carries.
    bool isFor(const tarn::mock::ActualCall& actual) const;

    // What is wrong with caller, wait, length and bytes, one line or more each; empty if all is as scripted.
    std::string differences(const tarn::mock::ActualCall& actual) const;

    // Writes the reply over the message, as far as the message goes.
    void answer(const tarn::mock::ActualCall& actual) const;
};
