#include "proxy_call.h"

namespace tarn
{

std::int32_t ProxyCall::check(const char* handle, const void* interface, const char* complaint, std::uint32_t site)
{
    return name(tarn::open(head, handle, interface, complaint, site), interface);
}

std::int32_t ProxyCall::check(const char* handle, Required interface, Required first, std::uint32_t site)
{
    return name(tarn::open(head, handle, interface, first, site), interface.pointer);
}

std::int32_t ProxyCall::check(const char* handle, Required interface, Required first, Required second, std::uint32_t site)
{
    return name(tarn::open(head, handle, interface, first, second, site), interface.pointer);
}

// Stores the name of a call that was not refused.
std::int32_t ProxyCall::name(std::uint32_t refusal, const void* interface)
{
    if (refusal == 0)
        copyText(message.ifname, static_cast<const char*>(interface));
    return static_cast<std::int32_t>(refusal);
}

void ProxyMessage::copyFromOut(void* to, std::size_t length) const
{
    constexpr std::size_t kReadable = sizeof(ProxyMessage) - offsetof(ProxyMessage, out);
    const std::size_t copied = length < kReadable ? length : kReadable;
    std::memcpy(to, reinterpret_cast<const unsigned char*>(this) + offsetof(ProxyMessage, out), copied);
    std::memset(static_cast<unsigned char*>(to) + copied, 0, length - copied);
}

} // namespace tarn
