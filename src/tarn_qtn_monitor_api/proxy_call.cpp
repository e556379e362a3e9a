#include "proxy_call.h"

namespace tarn
{

std::int32_t ProxyCall::openOn(const char* handle, Site site)
{
    const std::uint32_t refusal = tarn::open(head, handle, site);
    if (refusal == 0)
        copyText(message.ifname, static_cast<const char*>(head.required[0].pointer));
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
