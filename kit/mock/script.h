// One scripted call: what is expected of it, and how it is answered.
#pragma once

#include "kor_iil_mock.h"

#include "contract/contract.h"
#include "layout/layout.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarn::mock
{

enum class CallKind
{
    kExecute,
    kSubscribe,
    kCancel
};

// Consecutive bytes of a message.
struct Part
{
    std::uint32_t offset;
    std::vector<std::uint8_t> bytes;
    std::string label; // how the test gave them: "word 0x00000002", "cfg.channel" ...

    std::uint32_t end() const
    {
        return offset + static_cast<std::uint32_t>(bytes.size());
    }
};

// A call as the component made it.
struct ActualCall
{
    CallKind kind;
    const char* callerId;
    const char* serviceId;
    std::uint32_t number; // of the command or the event
    std::uint32_t wait;
    std::uint32_t length;
    std::uint8_t* message;
};

inline constexpr std::uint32_t kAnyTimes = std::numeric_limits<std::uint32_t>::max();

// "TARN command 7" or "subscription to TARN event 1".
std::string nameOf(CallKind kind, const std::string& serviceId, std::uint32_t number);

} // namespace tarn::mock

struct KorIilMockCall
{
    tarn::mock::CallKind kind;
    std::string file;
    unsigned line;
    std::string serviceId;
    std::uint32_t number;
    std::uint32_t length;

    // Of a call that is expected by its function; the layout that its fields are named by.
    const tarn::contract::Command* command = nullptr;
    std::shared_ptr<const tarn::layout::Layout> layout;

    bool isInOrder = true;
    std::uint32_t least = 1; // how often it must be made, and how often it may be
    std::uint32_t most = 1;
    std::uint32_t made = 0;

    std::optional<std::string> callerId;
    std::optional<std::uint32_t> wait;
    std::vector<tarn::mock::Part> sent;
    bool restZero = false;
    std::vector<tarn::mock::Part> reply;
    std::uint32_t status = 0;
    std::uint32_t ipcStatus = 0;

    // "TarnGetRadio", or "TARN command 7" of one that is expected by its number.
    std::string name() const;

    // Whether one more of these may be made.
    bool isOpen() const;

    // Whether kind, service and number are those of the call that was made.
    bool isFor(const tarn::mock::ActualCall& actual) const;

    // Whether it is this call in all that is compared.
    bool fits(const tarn::mock::ActualCall& actual) const;

    // Describes how caller, wait, length and bytes differ, one or more lines for each that does; empty if all are as scripted.
    std::string differences(const tarn::mock::ActualCall& actual) const;

    // Writes the reply over the message; what lies beyond the message's end is left out.
    void answer(const tarn::mock::ActualCall& actual) const;
};
