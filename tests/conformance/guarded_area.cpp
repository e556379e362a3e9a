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
    accessible = (kMost + kMargin + pageSize() - 1) / pageSize() * pageSize();
    mappingSize = accessible + 2 * pageSize();
    void* const mapped = mmap(nullptr, mappingSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED)
        throw std::runtime_error("no memory for a guarded area");
    mapping = static_cast<std::uint8_t*>(mapped);
    first = mapping + pageSize();
    if (mprotect(first, accessible, PROT_READ | PROT_WRITE) != 0)
        throw std::runtime_error("a guarded area cannot be made accessible");
    shadow = static_cast<std::uint8_t*>(std::malloc(accessible));
    if (shadow == nullptr)
        throw std::runtime_error("no memory for a guarded area");
}

GuardedArea::~GuardedArea()
{
    munmap(mapping, mappingSize);
    std::free(shadow);
}

std::uint8_t* GuardedArea::place(std::size_t bytes, Placement placement)
{
    if (bytes > kMost)
        throw std::runtime_error("a run larger than a guarded area");
    size = bytes;
    watchedSize = size + kMargin;
    watched = placement == Placement::kFront ? first : first + accessible - watchedSize;
    start = placement == Placement::kFront ? watched : watched + kMargin;

    // 251 is prime, so that no two places at a distance of a power of two look the same.
    static const auto* const pattern = []
    {
        static std::uint8_t bytesOfPattern[kMost + kMargin];
        for (std::size_t i = 0; i < sizeof bytesOfPattern; ++i)
            bytesOfPattern[i] = static_cast<std::uint8_t>(1 + i % 251);
        return bytesOfPattern;
    }();
    std::memcpy(watched, pattern, watchedSize);
    std::memcpy(shadow, pattern, watchedSize);
    return start;
}

void GuardedArea::put(const void* bytes, std::size_t count)
{
    if (count == 0)
        return;
    std::memcpy(start, bytes, count);
    std::memcpy(shadow + (start - watched), bytes, count);
}

bool GuardedArea::differs(const std::uint8_t* at, const std::uint8_t* expected, std::size_t count, Difference& difference) const
{
    if (count == 0 || std::memcmp(at, expected, count) == 0)
        return false;
    std::size_t i = 0;
    while (at[i] == expected[i])
        ++i;
    difference = {at + i - start, expected[i], at[i]};
    return true;
}

bool GuardedArea::differs(const std::uint8_t* expected, std::size_t count, Difference& difference) const
{
    const std::size_t before = static_cast<std::size_t>(start - watched);
    const std::size_t behind = watchedSize - before - count;
    return differs(watched, shadow, before, difference) || differs(start, expected, count, difference) ||
           differs(start + count, shadow + before + count, behind, difference);
}

bool GuardedArea::covers(const void* address, std::ptrdiff_t& offset) const
{
    const auto* const byte = static_cast<const std::uint8_t*>(address);
    if (byte < mapping || byte >= mapping + mappingSize)
        return false;
    offset = byte - start;
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
