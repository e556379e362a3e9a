// The messages to the Wi-Fi module, byte by byte: one for all calls through the proxy, and the mirror service's.
//
// Words are 32 bits in the host's byte order. The services read and write these very bytes, so every field's offset is
// asserted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "text.h"

namespace tarn
{

// A place in the message for one argument of whatever kind. What does not fit does not compile.
template <std::size_t size>
struct Slot
{
    union
    {
        std::uint32_t firstWord;
        std::uint8_t firstByte;
        unsigned char bytes[size];
    };
    static_assert(size % sizeof(std::uint32_t) == 0, "the slot is a whole number of words, so that nothing follows unnamed");

    void word(std::uint32_t value)
    {
        firstWord = value;
    }

    // The slot's first byte, which on the gateway is the high byte of its word.
    void byte(std::uint8_t value)
    {
        firstByte = value;
    }

    // A text, cut to `room` - 1 characters. The rest of the slot stays as it is, which is zero.
    template <std::size_t room>
    void text(const char* from)
    {
        static_assert(room <= size);
        copyText(reinterpret_cast<char*>(bytes), room, from, room);
    }

    // Exactly `length` bytes as they stand.
    template <std::size_t length>
    void block(const void* from)
    {
        static_assert(length <= size);
        std::memcpy(bytes, from, length);
    }
};

// Where the service writes its result: words from the start, a text, or a record.
struct ResultArea
{
    std::uint32_t words[2050];

    // Exactly `length` bytes.
    template <std::size_t length>
    void block(void* to) const
    {
        static_assert(length <= sizeof words);
        std::memcpy(to, words, length);
    }

    // `count` words from the first on.
    template <std::size_t count>
    void copyWords(std::uint32_t* to) const
    {
        for (std::size_t i = 0; i != count; ++i)
            to[i] = words[i];
    }

    // A text, cut to the caller's buffer. One that fills the whole area without a NUL ends with it.
    void text(char* to, std::uint32_t size) const
    {
        copyText(to, size, reinterpret_cast<const char*>(words), sizeof words);
    }
};

inline constexpr std::size_t kInterfaceNameSize = 65;

// All commands of the proxy. Which slot takes which argument is each command's own.
struct ProxyMessage
{
    char ifname[kInterfaceNameSize];
    std::uint8_t reserved[3];
    Slot<36> param1;
    Slot<1040> param2;
    Slot<4> param3;
    Slot<4> param4;
    ResultArea out;
    std::uint32_t out_words[5];
    std::int32_t status;

    // All that the caller asks for, from the result area on. What lies behind the end of the message arrives as zeros.
    void copyFromOut(void* to, std::size_t length) const;
};
static_assert(sizeof(ProxyMessage) == 9376);
static_assert(offsetof(ProxyMessage, ifname) == 0 && sizeof(ProxyMessage::ifname) == 65);
static_assert(offsetof(ProxyMessage, reserved) == 65);
static_assert(offsetof(ProxyMessage, param1) == 68 && sizeof(ProxyMessage::param1) == 36);
static_assert(offsetof(ProxyMessage, param2) == 104 && sizeof(ProxyMessage::param2) == 1040);
static_assert(offsetof(ProxyMessage, param3) == 1144);
static_assert(offsetof(ProxyMessage, param4) == 1148);
static_assert(offsetof(ProxyMessage, out) == 1152 && sizeof(ProxyMessage::out) == 8200);
static_assert(offsetof(ProxyMessage, out_words) == 9352);
static_assert(offsetof(ProxyMessage, status) == 9372);

// All commands of the mirror service.
struct MirrorMessage
{
    std::uint32_t enable;
    std::uint32_t processId;
    std::uint32_t telnetReferenceCount;
    std::uint32_t telnetStatus;
    std::uint32_t mirrorStatus;
    std::int32_t status;
};
static_assert(sizeof(MirrorMessage) == 24);
static_assert(offsetof(MirrorMessage, enable) == 0);
static_assert(offsetof(MirrorMessage, processId) == 4);
static_assert(offsetof(MirrorMessage, telnetReferenceCount) == 8);
static_assert(offsetof(MirrorMessage, telnetStatus) == 12);
static_assert(offsetof(MirrorMessage, mirrorStatus) == 16);
static_assert(offsetof(MirrorMessage, status) == 20);

} // namespace tarn
