/* The platform's events, for the bridge of this process. A handler of the platform has no context, so there is one source a
 * process. Needs no C++ run-time library. */
#pragma once

#include <cstdint>

namespace tarn::fleet
{

class Bridge;

// Subscribes to every event of the contract for the bridge, on a thread of its own, and asks again every so many seconds: a
// service that was restarted has lost its subscribers, and the platform does not tell. 0: does not ask again once accepted.
// False if there is no thread, or a bridge has the events already.
bool startEvents(Bridge& bridge, std::uint32_t renewSeconds);

// Cancels the subscriptions. No event reaches the bridge once this has returned.
void stopEvents();

} // namespace tarn::fleet
