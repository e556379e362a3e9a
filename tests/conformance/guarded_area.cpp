#include "guarded_area.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

namespace conformance
{

namespace
{

std::size_t pageSize()
{
    static const std::size_t size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

} // namespace

GuardedArea::GuardedArea()
{
    accessible_ = (kMost + kMargin + pageSize() - 1) / pageSize() * pageSize();
    mappingSize_ = accessible_ + 2 * pageSize();
    void* const mapped = mmap(nullptr, mappingSize_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED)
        throw std::runtime_error("no memory for a guarded area");
    mapping_ = static_cast<std::uint8_t*>(mapped);
    first_ = mapping_ + pageSize();
    if (mprotect(first_, accessible_, PROT_READ | PROT_WRITE) != 0)
        throw std::runtime_error("a guarded area cannot be made accessible");
    shadow_ = static_cast<std::uint8_t*>(std::malloc(accessible_));
    if (shadow_ == nullptr)
        throw std::runtime_error("no memory for a guarded area");
}

GuardedArea::~GuardedArea()
{
    munmap(mapping_, mappingSize_);
    std::free(shadow_);
}

std::uint8_t* GuardedArea::place(std::size_t bytes, Placement placement)
{
    if (bytes > kMost)
        throw std::runtime_error("a run larger than a guarded area");
    size_ = bytes;
    watchedSize_ = size_ + kMargin;
    watched_ = placement == Placement::kFront ? first_ : first_ + accessible_ - watchedSize_;
    start_ = placement == Placement::kFront ? watched_ : watched_ + kMargin;

    // 251 is prime, so that no two places at a distance of a power of two look the same.
    static const auto* const pattern = []
    {
        static std::uint8_t bytesOfPattern[kMost + kMargin];
        for (std::size_t i = 0; i < sizeof bytesOfPattern; ++i)
            bytesOfPattern[i] = static_cast<std::uint8_t>(1 + i % 251);
        return bytesOfPattern;
    }();
    std::memcpy(watched_, pattern, watchedSize_);
    std::memcpy(shadow_, pattern, watchedSize_);
    return start_;
}

void GuardedArea::put(const void* bytes, std::size_t count)
{
    if (count == 0)
        return;
    std::memcpy(start_, bytes, count);
    std::memcpy(shadow_ + (start_ - watched_), bytes, count);
}

bool GuardedArea::differs(const std::uint8_t* at, const std::uint8_t* expected, std::size_t count, Difference& difference) const
{
    if (count == 0 || std::memcmp(at, expected, count) == 0)
        return false;
    std::size_t i = 0;
    while (at[i] == expected[i])
        ++i;
    difference = {at + i - start_, expected[i], at[i]};
    return true;
}

bool GuardedArea::differs(const std::uint8_t* expected, std::size_t count, Difference& difference) const
{
    const std::size_t before = static_cast<std::size_t>(start_ - watched_);
    const std::size_t behind = watchedSize_ - before - count;
    return differs(watched_, shadow_, before, difference) || differs(start_, expected, count, difference) ||
           differs(start_ + count, shadow_ + before + count, behind, difference);
}

bool GuardedArea::covers(const void* address, std::ptrdiff_t& offset) const
{
    const auto* const byte = static_cast<const std::uint8_t*>(address);
    if (byte < mapping_ || byte >= mapping_ + mappingSize_)
        return false;
    offset = byte - start_;
    return true;
}

GuardedArea& sharedArea(std::size_t index)
{
    static std::vector<std::unique_ptr<GuardedArea>> areas;
    while (areas.size() <= index)
        areas.push_back(std::make_unique<GuardedArea>());
    return *areas[index];
}

} // namespace conformance
