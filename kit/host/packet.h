// What travels between a client and a service: one packet a message, a fixed header in front.
//
// Fields are in the sender's byte order. Both ends are on one machine, yet not always of one kind: under user-mode emulation a
// big-endian client can meet a little-endian service. The magic number tells, and such peers part with a clear status.
#pragma once

#include "kor_iil_service.h"

#include <cstddef>
#include <cstdint>

namespace koriil
{

constexpr std::uint32_t kMagic = 0x4B6F7249;
constexpr std::uint32_t kMagicOfOtherByteOrder = 0x49726F4B;
constexpr std::uint16_t kVersion = 1;

// Bytes of an identifier with its NUL.
constexpr std::size_t kIdentifierSize = 32;

enum class PacketKind : std::uint16_t
{
    Hello = 1,     // client: first packet of a connection; `name` is the service it looks for
    Request = 2,   // client: `name` is the caller; the message follows
    Subscribe = 3, // client: send event `command` on connection `channel`; `name` is the caller
    Cancel = 4,    // client: send it there no longer
    Reply = 5,     // service: answers each of the above; to Hello, `channel` is the connection's number
    Event = 6      // service: event `command`; its data follows
};

struct PacketHeader
{
    std::uint32_t magic = kMagic; // magic and version stay where they are in every version of this header
    std::uint16_t version = kVersion;
    PacketKind kind = PacketKind::Hello;
    std::uint32_t sequence = 0; // number of the exchange on its connection; a reply repeats it
    std::uint32_t status = 0;   // of a reply; one that is not KOR_IIL_OK carries no message
    std::uint32_t command = 0;  // the command, or the event
    std::uint32_t length = 0;   // bytes behind the header
    std::uint32_t wait = 0;     // seconds the client waits for the reply
    std::uint32_t channel = 0;  // number that the service gave to a connection
    char name[kIdentifierSize] = {};
};

static_assert(sizeof(PacketHeader) == 64, "no padding");
static_assert(offsetof(PacketHeader, version) == 4, "stays in every version");
static_assert(offsetof(PacketHeader, kind) == 6, "packed");
static_assert(offsetof(PacketHeader, sequence) == 8, "packed");
static_assert(offsetof(PacketHeader, name) == 32, "packed");

struct Packet
{
    PacketHeader header;
    alignas(16) unsigned char message[KOR_IIL_MAX_LENGTH];
};

static_assert(offsetof(Packet, message) == sizeof(PacketHeader), "header and message are one run of bytes");

enum class PacketOrigin
{
    Sound,    // a whole header of ours
    Foreign,  // from a peer of another byte order or version
    Malformed // from nobody we know
};

// Judges the first `received` bytes of a packet.
inline PacketOrigin originOf(const PacketHeader& header, std::size_t received)
{
    if (received < offsetof(PacketHeader, kind))
        return PacketOrigin::Malformed;
    if (header.magic == kMagicOfOtherByteOrder || (header.magic == kMagic && header.version != kVersion))
        return PacketOrigin::Foreign;
    if (header.magic != kMagic || received < sizeof(PacketHeader))
        return PacketOrigin::Malformed;
    return PacketOrigin::Sound;
}

} // namespace koriil
