#include "recorder.h"

#include "kor_iil_mock.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>

namespace conformance
{

Recorder::Recorder()
{
    KorIilMockReset();
    KorIilMockOnExecute(&execute, this);
    KorIilMockOnTrace(
        [](void* context, std::uint32_t level, const char* tag, std::uint32_t line, const char* format, va_list arguments)
        {
            Recorder& recorder = *static_cast<Recorder*>(context);
            ++recorder.traceCount;
            recorder.trace = {level, tag, line, format, nullptr};
            if (std::strstr(format, "%s") != nullptr)
                recorder.trace.argument = va_arg(arguments, const char*);
        },
        this);
}

Recorder::~Recorder()
{
    KorIilMockReset();
}

void Recorder::answerWith(std::uint32_t ipcStatus, const std::vector<std::uint8_t>& reply)
{
    status_ = ipcStatus;
    answer_ = &reply;
}

void Recorder::clear()
{
    sentCount = 0;
    traceCount = 0;
    trace = {};
}

std::uint32_t Recorder::execute(void* context, const char* callerId, const char* serviceId, std::uint32_t wait,
                                std::uint32_t cmdId, std::uint32_t msgLen, void* msg)
{
    Recorder& recorder = *static_cast<Recorder*>(context);
    ++recorder.sentCount;
    SentMessage& sent = recorder.sent;
    sent.callerId = callerId;
    sent.service = serviceId;
    sent.wait = wait;
    sent.command = cmdId;
    sent.length = msgLen;
    sent.aligned = reinterpret_cast<std::uintptr_t>(msg) % 4 == 0;
    const auto* const bytes = static_cast<const std::uint8_t*>(msg);
    sent.bytes.assign(bytes, bytes + msgLen);
    if (recorder.answer_ != nullptr && !recorder.answer_->empty())
        std::memcpy(msg, recorder.answer_->data(), std::min<std::size_t>(msgLen, recorder.answer_->size()));
    return recorder.status_;
}

} // namespace conformance
