// The steps that every command function takes: refuse, fill, send, copy out, return.
//
// A command function holds one call: the message, and in front of it what the steps have to remember. It opens the call (which
// checks the caller id and the pointers, and clears the message), fills the message, executes the call, copies the outputs out,
// and returns the reply status. The steps themselves are out of line, so that a command function stays a few dozen
// instructions.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn
{

// How long most replies may take, in the unit of the platform's IPC library.
inline constexpr std::uint32_t kWait = 3;

// The three families of command functions. They differ in service, trace tag, one trace text, and results.
enum class Family : std::uint8_t
{
    kDevice,
    kProxy,
    kMirror
};

// A pointer that must not be null, and the trace text for when it is.
struct Required
{
    const void* pointer;
    const char* complaint;
};

// What is known of a call before it runs, in one word, because each argument more costs every command function an instruction.
struct Site
{
    std::uint32_t packed; // line in 14 bits, family in 2, bytes of the message in 16

    constexpr Site(std::uint32_t line, Family family, std::size_t length)
        : packed(line << 18 | static_cast<std::uint32_t>(family) << 16 | static_cast<std::uint32_t>(length))
    {
    }

    constexpr std::uint32_t line() const // of the exported function: the only clue a trace gives to which function failed
    {
        return packed >> 18;
    }

    constexpr std::uint32_t family() const
    {
        return packed >> 16 & 3;
    }

    constexpr std::uint32_t length() const
    {
        return packed & 0xFFFF;
    }
};

// What a call remembers between its steps. The message stands right behind it.
struct CallHead
{
    const char* callerId;
    std::uint32_t site;
};

// Checks the caller id, then the pointers in the order given. The first that fails is traced, and the family's result for a
// refusal returned. Otherwise the message is cleared and 0 returned.
std::uint32_t open(CallHead& head, const char* callerId, std::uint32_t site);
std::uint32_t open(CallHead& head, const char* callerId, const void* pointer, const char* complaint, std::uint32_t site);
std::uint32_t open(CallHead& head, const char* callerId, Required first, Required second, std::uint32_t site);
std::uint32_t open(CallHead& head, const char* callerId, Required first, Required second, Required third, std::uint32_t site);

// Traces a refusal that is no matter of a null pointer, and returns the family's result for it.
std::uint32_t reject(const CallHead& head, const char* complaint);

// Sends the message and waits for the reply, which then stands in its place. Returns 0, or the family's result for the failure.
//
// This step takes the message of a call, the others the head in front of it: two addresses that are computed apart cost a
// command function less than one that is kept in a register in between. A message without a head is not for this step.
std::uint32_t execute(void* message, std::uint32_t commandAndWait);

constexpr std::uint32_t commandAndWait(std::uint32_t command, std::uint32_t wait)
{
    return command | wait << 8;
}

template <Family family, class Result, class Layout>
struct BasicCall
{
    CallHead head;
    Layout message;

    Result open(const char* callerId, std::uint32_t line = __builtin_LINE())
    {
        return static_cast<Result>(tarn::open(head, callerId, site(line)));
    }

    Result open(const char* callerId, Required pointer, std::uint32_t line = __builtin_LINE())
    {
        return static_cast<Result>(tarn::open(head, callerId, pointer.pointer, pointer.complaint, site(line)));
    }

    Result open(const char* callerId, Required first, Required second, std::uint32_t line = __builtin_LINE())
    {
        return static_cast<Result>(tarn::open(head, callerId, first, second, site(line)));
    }

    Result open(const char* callerId, Required first, Required second, Required third, std::uint32_t line = __builtin_LINE())
    {
        return static_cast<Result>(tarn::open(head, callerId, first, second, third, site(line)));
    }

    Result reject(const char* complaint) const
    {
        return static_cast<Result>(tarn::reject(head, complaint));
    }

    Result execute(std::uint32_t command, std::uint32_t wait = kWait)
    {
        return static_cast<Result>(tarn::execute(&message, commandAndWait(command, wait)));
    }

protected:
    static constexpr std::uint32_t site(std::uint32_t line)
    {
        static_assert(offsetof(BasicCall, message) == sizeof(CallHead), "the steps look for the message right behind the head");
        static_assert(sizeof(Layout) <= 0xFFFF, "the length has 16 bits of the site");
        return Site(line, family, sizeof(Layout)).packed;
    }
};

} // namespace tarn
