// What travels between a client and a service: one packet a message, a fixed header in front.
//
// Fields are in the sender's byte order. Both ends run on one machine, but not always on one architecture: under user-mode
// emulation a big-endian client can meet a little-endian service. The magic number shows it, and the connection is refused with
// KOR_IIL_MISMATCH_COMM.
#pragma once

#include "kor_iil_service.h"

#include <cstddef>
#include <cstdint>

namespace koriil
{

constexpr std::uint32_t kMagic = 0x4B6F7249;
constexpr std::uint32_t kMagicOfOtherByteOrder = 0x49726F4B;
constexpr std::uint16_t kVersion = 2;

// Bytes of an identifier with its NUL.
constexpr std::size_t kIdentifierSize = 32;

enum class PacketKind : std::uint16_t
{
    kHello = 1,     // client: first packet of a connection; `name` is the service it looks for
    kRequest = 2,   // client: `name` is the caller; the message follows
    kSubscribe = 3, // client: send event `command` on connection `connection`; `name` is the caller
    kCancel = 4,    // client: no longer send it there
    kReply = 5,     // service: answers any of these; to kHello, `connection` is the connection's number
    kEvent = 6,     // service: event `command`; its data follows
    kCounters = 7   // client: asks for the service's counters; KorIilServiceCounters follows, and comes back
};

struct PacketHeader
{
    std::uint32_t magic = kMagic; // magic and version keep their place in every version of this header
    std::uint16_t version = kVersion;
    PacketKind kind = PacketKind::kHello;
    std::uint32_t sequence = 0; // number of the request on its connection; a reply repeats it
    std::uint32_t status = 0;   // of a reply; unless it is KOR_IIL_OK, no message follows
    std::uint32_t command = 0;  // the command, or the event
    std::uint32_t length = 0;   // bytes behind the header
    std::uint32_t wait = 0;     // seconds the client waits for the reply
    std::uint32_t began = 0;    // when its wait began, see Deadline

    std::uint32_t connection = 0; // number that the service gave to a connection; of a request: to its own, or 0
    std::uint32_t revision = 0;   // of a subscription or its end: the highest of an event holds, whichever arrives first
    char name[kIdentifierSize] = {};
    std::uint32_t unused[2] = {}; // so that the message behind is aligned for any type
};

static_assert(sizeof(PacketHeader) == 80, "no padding");
static_assert(offsetof(PacketHeader, version) == 4, "the same in every version");
static_assert(offsetof(PacketHeader, kind) == 6, "packed");
static_assert(offsetof(PacketHeader, sequence) == 8, "packed");
static_assert(offsetof(PacketHeader, name) == 40, "packed");

struct Packet
{
    PacketHeader header;
    alignas(16) unsigned char message[KOR_IIL_MAX_LENGTH];
};

static_assert(offsetof(Packet, message) == sizeof(PacketHeader), "header and message are contiguous");

enum class PacketValidity
{
    kValid,    // a complete header of this version and byte order
    kForeign,  // from a peer of another byte order or version
    kMalformed // neither
};

// Checks the header of a packet of which `received` bytes came.
PacketValidity validityOf(const PacketHeader& header, std::size_t received);

// Sends the header and `header.length` bytes of `message` as one packet. It never waits: where the receiver's queue is full, it
// fails with EAGAIN.
bool sendPacket(int socket, const PacketHeader& header, const void* message);

} // namespace koriil
