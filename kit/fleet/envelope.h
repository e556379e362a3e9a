/* What travels through the broker: an envelope around the message of one call, around an event, or about a gateway's presence.
 * docs/fleet-envelope.md has it byte by byte. Needs no C++ run-time library, no heap and no exceptions, as it is part of the
 * program on the gateway. */
#pragma once

#include "names.h"

#include <cstddef>
#include <cstdint>

namespace tarn::fleet
{

inline constexpr std::uint8_t kEnvelopeVersion = 1;

// Longest message of a call and longest data of an event, in bytes. The longest of the contract has 9584.
inline constexpr std::uint32_t kLongestMessage = 16384;
// Longest wait for a request to be carried out, in milliseconds: a day.
inline constexpr std::uint32_t kLongestLife = 86400000;
// In front of the names and the message.
inline constexpr std::size_t kHeaderSize = 66;
// Longest version of the bridge's program, which is the message of a birth or a pong: printable ASCII without space.
inline constexpr std::uint32_t kLongestProgramVersion = 31;
inline constexpr std::size_t kLongestEnvelope = kHeaderSize + (kIdSize - 1) + (kServiceSize - 1) + kLongestMessage;

enum class Kind : std::uint8_t
{
    kRequest = 1, // operator to gateway: a call
    kReply = 2,   // gateway to operator: what became of it
    kEvent = 3,   // gateway to all
    kBirth = 4,   // gateway to all: it is connected
    kWill = 5,    // broker or gateway to all: it is not connected any more
    kPing = 6,    // operator to gateway: are you there?
    kPong = 7     // gateway to operator: yes
};

enum class ByteOrder : std::uint8_t
{
    kNone = 0, // of a ping, whose sender need not know the gateway's
    kBig = 1,
    kLittle = 2
};

#if __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
inline constexpr ByteOrder kOwnByteOrder = ByteOrder::kBig;
#else
inline constexpr ByteOrder kOwnByteOrder = ByteOrder::kLittle;
#endif

// Why the bridge did not carry out a request. With every one of them it is certain that the service has not seen it.
enum class Refusal : std::uint8_t
{
    kNone = 0,          // it was carried out, and the status is what the gateway's IPC returned
    kPolicy = 1,        // the gateway does not allow this call from afar
    kRate = 2,          // too many calls in a short time
    kBusy = 3,          // the service's queue on the gateway is full
    kLate = 4,          // its time to live was over
    kOtherRun = 5,      // it was meant for the bridge before a restart
    kNoRun = 6,         // a call that changes something has to name the run that it is meant for
    kOtherContract = 7, // the two sides have different contracts
    kOtherByteOrder = 8,
    kLength = 9,   // the command's message has another length
    kStopping = 10 // the bridge is about to end
};
inline constexpr std::uint8_t kLastRefusal = 10;

// One envelope. Which fields a kind has is in docs/fleet-envelope.md; those that it does not have are 0 or empty.
struct Envelope
{
    Kind kind = Kind::kRequest;
    ByteOrder byteOrder = ByteOrder::kNone; // the gateway's, in both directions
    Refusal refusal = Refusal::kNone;
    std::uint64_t session = 0;  // the asking program's: a random number that it chose when it started
    std::uint32_t sequence = 0; // counts from 1: requests and pings of a session, events of a service, connections of a run
    std::uint64_t run = 0;      // the bridge's: a random number that it chose when it started; 0 in a request for any run
    std::uint64_t clock = 0;    // of the bridge, milliseconds since its run began
    std::uint32_t live = 0;     // milliseconds, from `clock` on, or from arrival where no run is named
    std::uint32_t command = 0;  // number of the command, or of the event
    std::uint32_t wait = 0;     // in the unit of the gateway's IPC
    std::uint32_t status = 0;   // IPC status
    std::uint64_t contract = 0; // hash of the sender's contract
    std::uint32_t length = 0;   // bytes of the whole message
    char operatorId[kIdSize] = {};
    char service[kServiceSize] = {};

    // The first `present` bytes of the message; all behind them are zero. Encoding leaves further zeros at its end out. A
    // decoded message is in the bytes that were decoded; unpack gives all of it.
    const void* message = nullptr;
    std::uint32_t present = 0;
};

// Why something is no envelope.
enum class Fault : std::uint8_t
{
    kNone,
    kTruncated, // it ends before its header, its names or its message does
    kOversize,  // it goes on behind its message
    kVersion,
    kKind,
    kByteOrder,
    kRefusal,
    kSession,
    kSequence,
    kRun,
    kClock,
    kLive,
    kCommand,
    kWait,
    kStatus,
    kContract,
    kLength,
    kPresent,
    kOperator,
    kService,
    kTrailingZeros, // the message travels without those
    kProgramVersion,
    kNoRoom // encoding: the buffer is too small
};

// What was expected of the part that is at fault.
const char* describe(Fault fault);

// What this refusal means, for people.
const char* describe(Refusal refusal);

// Whether an envelope may have these fields. Of the messages, only the program's version in a birth or a pong is looked at.
Fault check(const Envelope& envelope);

// Writes the envelope to `bytes`, at most `room` of them, and sets `size`. Nothing is written unless the result is kNone.
Fault encode(const Envelope& envelope, void* bytes, std::size_t room, std::size_t& size);

// Reads an envelope; `envelope.message` then points into `bytes`. `envelope` is changed only if the result is kNone.
Fault decode(const void* bytes, std::size_t size, Envelope& envelope);

// Writes the whole message of a decoded envelope, `envelope.length` bytes; if that is 0, `message` may be null.
void unpack(const Envelope& envelope, void* message);

} // namespace tarn::fleet
