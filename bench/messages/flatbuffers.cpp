#include "messages/exchange.h"

#include <cstring>

#include "messages_generated.h"

namespace
{

using messages::flat::CreateReply;
using messages::flat::CreateRequest;
using messages::flat::Reply;
using messages::flat::Request;

// A builder keeps its memory from message to message, and so do those who use one.
bool serveFlatBuffers(const flatbuffers::FlatBufferBuilder& request, flatbuffers::FlatBufferBuilder& reply, std::size_t size)
{
    flatbuffers::Verifier verifier(request.GetBufferPointer(), request.GetSize());
    if (!verifier.VerifyBuffer<Request>())
        return false;
    if (flatbuffers::GetRoot<Request>(request.GetBufferPointer())->radio() != messages::kRequest.radio)
        return false;
    reply.Clear();
    const auto record = reply.CreateVector(messages::serviceRecord.data(), size);
    reply.Finish(CreateReply(reply, record, messages::kStatus));
    return true;
}

template <std::size_t size>
std::uint32_t callFlatBuffers(void* record)
{
    static flatbuffers::FlatBufferBuilder request, reply;
    request.Clear();
    request.Finish(CreateRequest(request, messages::kRequest.command, messages::kRequest.radio, messages::kRequest.ssid));
    if (!serveFlatBuffers(request, reply, size))
        return 0;

    flatbuffers::Verifier verifier(reply.GetBufferPointer(), reply.GetSize());
    if (!verifier.VerifyBuffer<Reply>())
        return 0;
    const auto* const decoded = flatbuffers::GetRoot<Reply>(reply.GetBufferPointer());
    if (decoded->record() == nullptr || decoded->record()->size() != size)
        return 0;
    std::memcpy(record, decoded->record()->data(), size);
    return decoded->status();
}

} // namespace

void messages::addFlatBuffers(std::vector<bench::Case>& cases)
{
    addCases(cases, "FlatBuffers", callFlatBuffers<4>, callFlatBuffers<128>, callFlatBuffers<9552>);
}
