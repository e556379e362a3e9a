/* Which requests have been here already, so that none is carried out twice: of each session the latest sequence number, and
 * which of the 63 before it. */
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::fleet
{

class SeenRequests
{
public:
    enum class Verdict
    {
        kNew,
        kSeen,  // or too old to tell
        kNoRoom // every session that is remembered has a request that could still come again and be carried out
    };

    // Remembers a request. `dead` is when its time to live is over, on the same clock as `now`: so long its session is not
    // forgotten.
    Verdict see(std::uint64_t session, std::uint32_t sequence, std::uint64_t dead, std::uint64_t now);

    static constexpr std::size_t kSessions = 64;
    static constexpr std::uint32_t kWindow = 64;

private:
    struct Session
    {
        std::uint64_t session = 0; // 0: a free place
        std::uint64_t seen = 0;    // bit n: the sequence number that is n less than the latest
        std::uint64_t dead = 0;    // when all its requests are
        std::uint64_t heardAt = 0;
        std::uint32_t latest = 0;
    };

    Session* find(std::uint64_t session, std::uint64_t now);

    Session sessions_[kSessions];
};

} // namespace tarn::fleet
