// One request of this thread to a service, and its reply.
#pragma once

#include "deadline.h"
#include "packet.h"

#include <cstdint>

namespace koriil
{

// Sends `request` with the `request.length` bytes of `message` behind it, over this thread's connection to the service, and
// waits for the reply, which must have the same length and overwrites `message`. Fills in the request's sequence and wait.
//
// The request is sent at most once: a connection found dead is replaced by a new one only while nothing has been sent. Returns
// an IPC status; the message is overwritten only if that is KOR_IIL_OK.
//
// May throw std::bad_alloc, before anything is sent.
std::uint32_t roundTrip(const char* serviceId, PacketHeader& request, void* message, const Deadline& deadline);

} // namespace koriil
