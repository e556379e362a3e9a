#include "seen_requests.h"

#include <algorithm>

namespace tarn::fleet
{

// The session's place; if it has none, a free one or that of the session that was silent longest and has no request alive.
SeenRequests::Session* SeenRequests::find(std::uint64_t session, std::uint64_t now)
{
    Session* place = nullptr;
    for (Session& each : sessions_)
    {
        if (each.session == session)
            return &each;
        if ((each.session == 0 || each.dead <= now) && (place == nullptr || each.heardAt < place->heardAt))
            place = &each;
    }
    if (place != nullptr)
    {
        *place = Session();
        place->session = session;
    }
    return place;
}

SeenRequests::Verdict SeenRequests::see(std::uint64_t session, std::uint32_t sequence, std::uint64_t dead, std::uint64_t now)
{
    Session* place = find(session, now);
    if (place == nullptr)
        return Verdict::kNoRoom;
    if (sequence > place->latest)
    {
        const std::uint32_t ahead = sequence - place->latest;
        place->seen = ahead < kWindow ? place->seen << ahead : 0;
        place->latest = sequence;
    }
    const std::uint32_t behind = place->latest - sequence;
    if (behind >= kWindow || (place->seen >> behind & 1u) != 0)
        return Verdict::kSeen;
    place->seen |= std::uint64_t{1} << behind;
    place->heardAt = now;
    place->dead = std::max(place->dead, dead);
    return Verdict::kNew;
}

} // namespace tarn::fleet
