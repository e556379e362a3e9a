#include "messages/exchange.h"

#include <cstring>

#include <rpc/rpc.h>

#include "messages_xdr.h"

namespace
{

constexpr std::size_t kRoom = 9600; // for the longest reply

// Returns how many bytes were written.
template <class Message>
std::size_t encodeXdr(char* buffer, Message message, bool_t (*filter)(XDR*, Message*))
{
    XDR stream;
    xdrmem_create(&stream, buffer, kRoom, XDR_ENCODE);
    return filter(&stream, &message) ? xdr_getpos(&stream) : 0;
}

template <class Message>
bool decodeXdr(char* buffer, std::size_t size, Message& message, bool_t (*filter)(XDR*, Message*))
{
    XDR stream;
    xdrmem_create(&stream, buffer, static_cast<unsigned>(size), XDR_DECODE);
    return filter(&stream, &message) != 0;
}

std::size_t serveXdr(char* request, std::size_t size, char* reply, unsigned recordSize)
{
    XdrRequest asked = {};
    if (!decodeXdr(request, size, asked, xdr_XdrRequest) || asked.radio != messages::kRequest.radio)
        return 0;
    auto* const record = reinterpret_cast<char*>(const_cast<unsigned char*>(messages::serviceRecord.data()));
    return encodeXdr(reply, XdrReply{{recordSize, record}, messages::kStatus}, xdr_XdrReply);
}

template <std::size_t size>
std::uint32_t callXdr(void* record)
{
    alignas(8) char request[kRoom], reply[kRoom];
    const std::size_t asked = encodeXdr(
        request, XdrRequest{messages::kRequest.command, messages::kRequest.radio, messages::kRequest.ssid}, xdr_XdrRequest);
    const std::size_t answered = serveXdr(request, asked, reply, size);

    XdrReply decoded = {{0, static_cast<char*>(record)}, 0}; // decoded straight into the caller's record
    if (!decodeXdr(reply, answered, decoded, xdr_XdrReply) || decoded.record.record_len != size)
        return 0;
    return decoded.status;
}

} // namespace

void messages::addXdr(std::vector<bench::Case>& cases)
{
    addCases(cases, "XDR", callXdr<4>, callXdr<128>, callXdr<9552>);
}
