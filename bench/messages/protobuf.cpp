#include "messages/exchange.h"

#include <cstring>

#include "messages.pb.h"

namespace
{

constexpr std::size_t kRoom = 9600; // for the longest reply

// Returns how many bytes were written.
template <class Message>
std::size_t encodeProtobuf(const Message& message, unsigned char* buffer)
{
    return message.SerializeToArray(buffer, kRoom) ? message.ByteSizeLong() : 0;
}

std::size_t serveProtobuf(const unsigned char* request, std::size_t length, unsigned char* reply, std::size_t size)
{
    messages::protobuf::Request asked;
    if (!asked.ParseFromArray(request, static_cast<int>(length)) || asked.radio() != messages::kRequest.radio)
        return 0;
    messages::protobuf::Reply answer;
    answer.set_record(messages::serviceRecord.data(), size);
    answer.set_status(messages::kStatus);
    return encodeProtobuf(answer, reply);
}

template <std::size_t size>
std::uint32_t callProtobuf(void* record)
{
    unsigned char request[kRoom], reply[kRoom];
    messages::protobuf::Request asked;
    asked.set_command(messages::kRequest.command);
    asked.set_radio(messages::kRequest.radio);
    asked.set_ssid(messages::kRequest.ssid);
    const std::size_t answered = serveProtobuf(request, encodeProtobuf(asked, request), reply, size);

    messages::protobuf::Reply decoded;
    if (!decoded.ParseFromArray(reply, static_cast<int>(answered)) || decoded.record().size() != size)
        return 0;
    std::memcpy(record, decoded.record().data(), size);
    return decoded.status();
}

} // namespace

void messages::addProtobuf(std::vector<bench::Case>& cases)
{
    addCases(cases, "protobuf-lite", callProtobuf<4>, callProtobuf<128>, callProtobuf<9552>);
}
