// The steps that every command function takes: refuse, fill, send, copy out, return.
//
// A command function holds one call: the message, and in front of it what the steps have to remember. It opens the call (which
// checks the caller id and the pointers, and clears the message), fills the message, executes the call, copies the outputs out,
// and returns the reply status. A function without outputs finishes the call instead: the last three in one step. What the
// steps do is out of line, so that a command function is a few dozen instructions.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn
{

// How long most replies may take, in the unit of the platform's IPC library.
constexpr std::uint32_t kWait = 3;

// The three families of command functions. They differ in service, trace tag, one trace text, and results.
enum class Family : std::uint8_t
{
    kDevice,
    kProxy,
    kMirror
};

// A pointer that must not be null, and the trace text for when it is. Without a text there is nothing to check.
struct Required
{
    const void* pointer;
    const char* text;
};

// What a function's source says of its call: where it is made, by which family, how many pointers it requires, and how long the
// message is. One word, because each further argument costs every command function an instruction.
class Site
{
public:
    Site() = default;

    constexpr Site(std::uint32_t line, std::uint32_t pointers, Family family, std::size_t length)
        : packed_(line << 20 | pointers << 18 | static_cast<std::uint32_t>(family) << 16 | static_cast<std::uint32_t>(length))
    {
    }

    constexpr std::uint32_t line() const // of the exported function: all that a trace tells of which function failed
    {
        return packed_ >> 20;
    }

    constexpr std::uint32_t pointers() const
    {
        return packed_ >> 18 & 3;
    }

    constexpr std::uint32_t family() const
    {
        return packed_ >> 16 & 3;
    }

    constexpr std::uint32_t length() const // of the message, in bytes
    {
        return packed_ & 0xFFFF;
    }

private:
    std::uint32_t packed_; // line in 12 bits, pointers and family in 2 each, length in 16
};

// What a call remembers between its steps. The message follows it directly.
struct CallHead
{
    Required required[3];
    const char* callerId;
    Site site;

    // Remembers the pointers to check, and returns how many there are. Inlined, or their number would not be a constant.
    [[gnu::always_inline]] std::uint32_t require(Required first, Required second, Required third)
    {
        if (first.text == nullptr)
            return 0;
        required[0] = first;
        if (second.text == nullptr)
            return 1;
        required[1] = second;
        if (third.text == nullptr)
            return 2;
        required[2] = third;
        return 3;
    }
};

// Checks the caller id, then the required pointers in their order. The first that fails is traced, and the family's result for
// a refusal returned. Otherwise the message is cleared and 0 returned.
std::uint32_t open(CallHead& head, const char* callerId, Site site);

// Traces a refusal for another reason than a null pointer, and returns the family's result for it.
std::uint32_t reject(const CallHead& head, const char* text);

// Sends the message and waits for the reply, which takes its place. Returns 0, or the family's result for the failure.
//
// This step and the next take the message of a call, the others the head in front of it: two addresses that are computed
// separately cost a command function less than one that is kept in a register between the steps. The message must have a head.
std::uint32_t execute(void* message, std::uint32_t command, std::uint32_t wait);

// The same, but returns the reply status instead of 0.
std::uint32_t finish(void* message, std::uint32_t command, std::uint32_t wait);

template <Family family, class Result, class Message>
struct BasicCall
{
    CallHead head;
    Message message;

    [[gnu::always_inline]] Result open(const char* callerId, Required first = {}, Required second = {}, Required third = {},
                                       std::uint32_t line = __builtin_LINE())
    {
        return static_cast<Result>(tarn::open(head, callerId, prepare(line, first, second, third)));
    }

    Result reject(const char* text) const
    {
        return static_cast<Result>(tarn::reject(head, text));
    }

    Result execute(std::uint32_t command, std::uint32_t wait = kWait)
    {
        return static_cast<Result>(tarn::execute(&message, command, wait));
    }

    Result finish(std::uint32_t command, std::uint32_t wait = kWait)
    {
        return static_cast<Result>(tarn::finish(&message, command, wait));
    }

protected:
    [[gnu::always_inline]] Site prepare(std::uint32_t line, Required first, Required second, Required third)
    {
        static_assert(offsetof(BasicCall, message) == sizeof(CallHead),
                      "the steps look for the message directly behind the head");
        static_assert(sizeof(Message) <= 0xFFFF, "the length has 16 bits of the site");
        static_assert(offsetof(Message, status) == sizeof(Message) - sizeof(Result), "the last word is the reply status");
        return Site(line, head.require(first, second, third), family, sizeof(Message));
    }
};

} // namespace tarn
