// A call through the proxy. Most of them are about one interface of the module, whose name stands at the head of the message.
#pragma once

#include <cstdint>

#include "call.h"
#include "messages.h"

namespace tarn
{

struct ProxyCall : BasicCall<Family::kProxy, std::int32_t, ProxyMessage>
{
    // Opens a call about an interface: checks as open does, the interface's name before the other pointers, and once the
    // message is cleared stores the name in `ifname` as text, cut to 64 characters.
    std::int32_t openOn(const char* handle, Required interface, std::uint32_t line = __builtin_LINE())
    {
        return check(handle, interface.pointer, interface.complaint, site(line));
    }

    std::int32_t openOn(const char* handle, Required interface, Required first, std::uint32_t line = __builtin_LINE())
    {
        return check(handle, interface, first, site(line));
    }

    std::int32_t openOn(const char* handle, Required interface, Required first, Required second,
                        std::uint32_t line = __builtin_LINE())
    {
        return check(handle, interface, first, second, site(line));
    }

private:
    std::int32_t check(const char* handle, const void* interface, const char* complaint, std::uint32_t site);
    std::int32_t check(const char* handle, Required interface, Required first, std::uint32_t site);
    std::int32_t check(const char* handle, Required interface, Required first, Required second, std::uint32_t site);

    std::int32_t name(std::uint32_t refusal, const void* interface);
};

} // namespace tarn
