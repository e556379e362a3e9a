#include "messages/exchange.h"

#include <cstring>

#include <pb_decode.h>
#include <pb_encode.h>

#include "nanopb_messages.pb.h"

namespace
{

constexpr std::size_t kRoom = 9600; // for the longest reply

// Returns how many bytes were written.
std::size_t encodeNanopb(pb_byte_t* buffer, const pb_msgdesc_t* description, const void* message)
{
    pb_ostream_t stream = pb_ostream_from_buffer(buffer, kRoom);
    return pb_encode(&stream, description, message) ? stream.bytes_written : 0;
}

bool decodeNanopb(const pb_byte_t* buffer, std::size_t length, const pb_msgdesc_t* description, void* message)
{
    pb_istream_t stream = pb_istream_from_buffer(buffer, length);
    return pb_decode(&stream, description, message);
}

std::size_t serveNanopb(const pb_byte_t* request, std::size_t length, pb_byte_t* reply, std::size_t size)
{
    NanopbRequest asked = NanopbRequest_init_zero;
    if (!decodeNanopb(request, length, NanopbRequest_fields, &asked) || asked.radio != messages::kRequest.radio)
        return 0;
    NanopbReply answer; // not cleared: 9552 bytes, of which a short record uses little
    answer.record.size = static_cast<pb_size_t>(size);
    std::memcpy(answer.record.bytes, messages::serviceRecord.data(), size);
    answer.status = messages::kStatus;
    return encodeNanopb(reply, NanopbReply_fields, &answer);
}

template <std::size_t size>
std::uint32_t callNanopb(void* record)
{
    pb_byte_t request[kRoom], reply[kRoom];
    const NanopbRequest asked = {messages::kRequest.command, messages::kRequest.radio, messages::kRequest.ssid};
    const std::size_t answered = serveNanopb(request, encodeNanopb(request, NanopbRequest_fields, &asked), reply, size);

    NanopbReply decoded; // its defaults are set by pb_decode
    if (!decodeNanopb(reply, answered, NanopbReply_fields, &decoded) || decoded.record.size != size)
        return 0;
    std::memcpy(record, decoded.record.bytes, size);
    return decoded.status;
}

} // namespace

void messages::addNanopb(std::vector<bench::Case>& cases)
{
    addCases(cases, "nanopb", callNanopb<4>, callNanopb<128>, callNanopb<9552>);
}
