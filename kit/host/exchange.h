// One exchange between this thread and a service.
#pragma once

#include "packet.h"

#include <cstdint>

namespace koriil
{

// Sends `request` with the `request.length` bytes of `message` behind it, over this thread's connection to the service, and
// waits for the reply, which must be of the same length and then stands in `message`. Fills in the request's sequence.
//
// The request is sent once at most. It is only while nothing of it has been sent that a connection found dead is replaced by a
// new one. Returns an IPC status; the message is overwritten only if it is KOR_IIL_OK.
//
// May throw std::bad_alloc, before anything is sent.
std::uint32_t exchange(const char* serviceId, PacketHeader& request, void* message);

} // namespace koriil
