// The messages to the Wi-Fi module, byte by byte: one for all calls through the proxy, and the mirror service's.
//
// Words are 32 bits in the host's byte order. The services read and write these very bytes, so every field's offset and size is
// asserted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "layout.h"
#include "text.h"

namespace tarn
{

// A place in the message for one argument of any kind. What does not fit does not compile.
template <std::size_t size>
struct Slot
{
    union
    {
        std::uint32_t firstWord;
        std::uint8_t firstByte;
        unsigned char bytes[size];
    };
    static_assert(size % sizeof(std::uint32_t) == 0, "the slot is a whole number of words, so that no padding follows");

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
        static_assert(room <= size, "the text does not fit into the slot");
        copyText(reinterpret_cast<char*>(bytes), room, from, room);
    }

    // Exactly `length` bytes, unchanged.
    template <std::size_t length>
    void block(const void* from)
    {
        static_assert(length <= size, "the block does not fit into the slot");
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
        static_assert(length <= sizeof words, "the result area has fewer bytes");
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

constexpr std::size_t kInterfaceNameSize = 65;

// All commands of the proxy. Which slot takes which argument depends on the command.
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

    // All that the caller asks for, from the result area on. Bytes behind the end of the message are written as zeros.
    void copyFromOut(void* to, std::size_t length) const;
};
TARN_LENGTH(ProxyMessage, 9376);
TARN_FIELD(ProxyMessage, ifname, 0, 65);
TARN_FIELD(ProxyMessage, reserved, 65, 3);
TARN_FIELD(ProxyMessage, param1, 68, 36);
TARN_FIELD(ProxyMessage, param2, 104, 1040);
TARN_FIELD(ProxyMessage, param3, 1144, 4);
TARN_FIELD(ProxyMessage, param4, 1148, 4);
TARN_FIELD(ProxyMessage, out, 1152, 8200);
TARN_FIELD(ProxyMessage, out_words, 9352, 20);
TARN_FIELD(ProxyMessage, status, 9372, 4);

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
TARN_LENGTH(MirrorMessage, 24);
TARN_FIELD(MirrorMessage, enable, 0, 4);
TARN_FIELD(MirrorMessage, processId, 4, 4);
TARN_FIELD(MirrorMessage, telnetReferenceCount, 8, 4);
TARN_FIELD(MirrorMessage, telnetStatus, 12, 4);
TARN_FIELD(MirrorMessage, mirrorStatus, 16, 4);
TARN_FIELD(MirrorMessage, status, 20, 4);

} // namespace tarn
