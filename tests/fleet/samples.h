// One sound envelope of each kind.
#pragma once

#include "fleet/envelope.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace fleet_test
{

using Bytes = std::vector<std::uint8_t>;

inline constexpr tarn::fleet::Kind kKinds[] = {
    tarn::fleet::Kind::kRequest, tarn::fleet::Kind::kReply, tarn::fleet::Kind::kEvent, tarn::fleet::Kind::kBirth,
    tarn::fleet::Kind::kWill,    tarn::fleet::Kind::kPing,  tarn::fleet::Kind::kPong};

inline constexpr char kMessage[] = "\x00\x00\x00\x02\xAB\x00\x00\x00"; // as much of a message as is not zero, and three zeros

inline void setMessage(tarn::fleet::Envelope& envelope, const char* bytes, std::uint32_t present, std::uint32_t length)
{
    envelope.message = bytes;
    envelope.present = present;
    envelope.length = length;
}

// Request: radio 3 of command 7; reply: the same with an output; the rest as a bridge sends it.
inline tarn::fleet::Envelope sample(tarn::fleet::Kind kind)
{
    using tarn::fleet::ByteOrder;
    using tarn::fleet::Kind;
    const bool isRequest = kind == Kind::kRequest, isReply = kind == Kind::kReply, isEvent = kind == Kind::kEvent;
    const bool isPing = kind == Kind::kPing, isPong = kind == Kind::kPong;

    tarn::fleet::Envelope envelope;
    envelope.kind = kind;
    envelope.sequence = 5;
    if (isRequest || isReply || isPing || isPong)
        envelope.session = 0x1122334455667788u;
    if (isRequest || isPing)
        std::strcpy(envelope.operatorId, "noc-1");
    if (!isPing)
    {
        envelope.byteOrder = ByteOrder::kBig;
        envelope.run = 0xA1B2C3D4E5F60718u;
        envelope.clock = 0x0102030405u;
        envelope.contract = 0xFEDCBA9876543210u;
    }
    if (isRequest || isReply || isEvent)
    {
        std::strcpy(envelope.service, "TARN");
        envelope.command = isEvent ? 2 : 7;
    }
    if (isRequest)
    {
        envelope.live = 3000;
        envelope.wait = 4;
    }
    if (isRequest || isReply)
        setMessage(envelope, kMessage, 8, 9584);
    if (kind == Kind::kBirth || isPong)
        setMessage(envelope, "1.0.0", 5, 5);
    return envelope;
}

inline Bytes encoded(const tarn::fleet::Envelope& envelope)
{
    Bytes bytes(tarn::fleet::kLongestEnvelope);
    std::size_t size = 0;
    if (tarn::fleet::encode(envelope, bytes.data(), bytes.size(), size) != tarn::fleet::Fault::kNone)
        return {};
    bytes.resize(size);
    return bytes;
}

inline Bytes unpacked(const tarn::fleet::Envelope& envelope)
{
    Bytes message(envelope.length);
    tarn::fleet::unpack(envelope, message.data());
    return message;
}

} // namespace fleet_test
