#include "messages/exchange.h"

#include <cstring>

#include <capnp/message.h>
#include <capnp/serialize.h>

#include "messages.capnp.h"

namespace
{

using messages::capnproto::Reply;
using messages::capnproto::Request;

constexpr std::size_t kRoom = 9600 / sizeof(capnp::word); // for the longest reply

// Returns the part of the buffer that was written.
kj::ArrayPtr<const capnp::word> encodeCapnProto(capnp::MessageBuilder& message, kj::ArrayPtr<capnp::word> buffer)
{
    kj::ArrayOutputStream stream(buffer.asBytes());
    capnp::writeMessage(stream, message);
    return buffer.slice(0, stream.getArray().size() / sizeof(capnp::word));
}

kj::ArrayPtr<const capnp::word> serveCapnProto(kj::ArrayPtr<const capnp::word> request, kj::ArrayPtr<capnp::word> reply,
                                               std::size_t size)
{
    capnp::FlatArrayMessageReader asked(request);
    if (asked.getRoot<Request>().getRadio() != messages::kRequest.radio)
        return nullptr;
    capnp::MallocMessageBuilder message;
    auto answer = message.initRoot<Reply>();
    answer.setRecord(kj::arrayPtr(messages::serviceRecord.data(), size));
    answer.setStatus(messages::kStatus);
    return encodeCapnProto(message, reply);
}

template <std::size_t size>
std::uint32_t callCapnProto(void* record)
{
    capnp::word requestRoom[kRoom], replyRoom[kRoom];
    capnp::MallocMessageBuilder message;
    auto asked = message.initRoot<Request>();
    asked.setCommand(messages::kRequest.command);
    asked.setRadio(messages::kRequest.radio);
    asked.setSsid(messages::kRequest.ssid);
    const auto request = encodeCapnProto(message, kj::arrayPtr(requestRoom, kRoom));

    capnp::FlatArrayMessageReader reader(serveCapnProto(request, kj::arrayPtr(replyRoom, kRoom), size));
    const auto decoded = reader.getRoot<Reply>();
    if (decoded.getRecord().size() != size)
        return 0;
    std::memcpy(record, decoded.getRecord().begin(), size);
    return decoded.getStatus();
}

} // namespace

void messages::addCapnProto(std::vector<bench::Case>& cases)
{
    addCases(cases, "Cap'n Proto", callCapnProto<4>, callCapnProto<128>, callCapnProto<9552>);
}
