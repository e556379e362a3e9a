// A call through the proxy. Most of them are about one interface of the module, whose name is the message's first field.
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
    [[gnu::always_inline]] std::int32_t openOn(const char* handle, Required interface, Required second = {},
                                               Required third = {}, std::uint32_t line = __builtin_LINE())
    {
        return openOn(handle, prepare(line, interface, second, third));
    }

private:
    std::int32_t openOn(const char* handle, Site site);
};

} // namespace tarn
