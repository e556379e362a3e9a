// Memory between two pages that must not be touched, for what a function reads from or writes to its caller.
#pragma once

#include <cstddef>
#include <cstdint>

namespace conformance
{

// Where a run of bytes lies in its area: right behind the page in front, or right before the page behind.
enum class Placement
{
    kFront,
    kBack
};

class GuardedArea
{
public:
    // Bytes a run can have at most, the margin not counted.
    static constexpr std::size_t kMost = 12288;

    // Bytes beside the run that are watched as well.
    static constexpr std::size_t kMargin = 256;

    GuardedArea();
    ~GuardedArea();
    GuardedArea(const GuardedArea&) = delete;
    GuardedArea& operator=(const GuardedArea&) = delete;

    // Makes room for a run and fills it and its margin with a pattern, which is returned to be compared later. The pattern
    // differs from byte to byte and holds no zero.
    std::uint8_t* place(std::size_t bytes, Placement placement);

    // Puts the bytes of the run; the margin stays.
    void put(const void* bytes, std::size_t count);

    std::uint8_t* run() const
    {
        return start_;
    }

    std::size_t runSize() const
    {
        return size_;
    }

    // Whether run and margin hold anything but `expected` at the run's start and what `place` and `put` left everywhere else;
    // and then the first byte that differs.
    struct Difference
    {
        std::ptrdiff_t offset; // from the run's start
        std::uint8_t expected;
        std::uint8_t got;
    };
    bool differs(const std::uint8_t* expected, std::size_t count, Difference& difference) const;

    // How far an address lies from the run, if it lies in this area or one of its two pages.
    bool covers(const void* address, std::ptrdiff_t& offset) const;

private:
    bool differs(const std::uint8_t* at, const std::uint8_t* expected, std::size_t count, Difference& difference) const;

    std::uint8_t* mapping_;
    std::size_t mappingSize_;
    std::uint8_t* first_; // of the accessible bytes
    std::size_t accessible_;
    std::uint8_t* watched_ = nullptr;
    std::size_t watchedSize_ = 0;
    std::uint8_t* start_ = nullptr;
    std::size_t size_ = 0;
    std::uint8_t* shadow_; // what watched bytes should hold, same size as the accessible ones
};

// The index-th of the areas that all calls share, one after the other: making one takes a while.
GuardedArea& sharedArea(std::size_t index);

} // namespace conformance
