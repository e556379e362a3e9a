// The arguments of one call, laid out in guarded memory, and what the contract says they become.
#pragma once

#include "calling/calling.h"
#include "contract/contract.h"
#include "guarded_area.h"

#include <cstdint>
#include <string>
#include <vector>

namespace conformance
{

enum class Numbers
{
    kDistinct, // every byte of every number is another one
    kZero,
    kOne,
    kHighest
};

enum class Texts
{
    kShort,
    kEmpty,
    kFull,    // one character less than its place in the message
    kTooLong, // one character too many
    kMuchTooLong
};

enum class Blocks
{
    kDistinct,
    kZeros,
    kHighest,
    kZeroInside
};

struct Style
{
    Numbers numbers = Numbers::kDistinct;
    Texts texts = Texts::kShort;
    Blocks blocks = Blocks::kDistinct;
};

class PreparedCall
{
public:
    // `callerSize` is what goes in for the size of a buffer where the caller says it, and `bufferSize` how many bytes there
    // really are.
    PreparedCall(const tarn::contract::Contract& contract, const tarn::contract::Command& command, const Style& style,
                 Placement placement, std::uint32_t callerSize, std::uint32_t bufferSize);
    PreparedCall(const PreparedCall&) = delete;
    PreparedCall& operator=(const PreparedCall&) = delete;

    // Passes a null pointer.
    void omit(const std::string& argument);

    // Makes a check fail: `empty` chooses the empty text where the check takes either.
    void violate(const tarn::contract::Check& check, bool empty);

    const std::vector<tarn::calling::ArgumentValue>& values() const
    {
        return passed_;
    }

    // The message as it must be sent.
    std::vector<std::uint8_t> expectedMessage() const;

    // What is wrong in the caller's memory after a call that wrote this reply, or that wrote nothing if `reply` is null; empty
    // if nothing is.
    std::string memoryDeviation(const std::vector<std::uint8_t>* reply) const;

    // "1 byte behind ifname" ...; empty if the address lies near no argument.
    std::string describeAddress(const void* address) const;

private:
    struct Slot
    {
        const tarn::contract::Argument* argument = nullptr;
        GuardedArea* area = nullptr;     // of a pointer argument or record
        std::vector<std::uint8_t> input; // of an input that is no number
        bool omitted = false;
    };

    Slot& slotOf(const std::string& argument);
    std::vector<std::uint8_t> inputBytes(const tarn::contract::Argument& argument, std::size_t index, const Style& style) const;
    void fill(const Slot& slot, std::size_t index, std::vector<std::uint8_t>& message) const;
    std::vector<std::uint8_t> expectedOutput(const Slot& slot, const std::vector<std::uint8_t>& reply) const;

    const tarn::contract::Contract& contract_;
    const tarn::contract::Command& command_;
    std::uint32_t callerSize_;
    std::uint32_t bufferSize_;
    std::vector<Slot> slots_;
    std::vector<tarn::calling::ArgumentValue> passed_;
};

} // namespace conformance
