// A file descriptor that closes itself, and the status of a system call that failed.
#pragma once

#include "kor_iil_service.h"

#include <cerrno>
#include <cstdint>
#include <utility>

#include <unistd.h>

namespace koriil
{

class Descriptor
{
public:
    Descriptor() = default;
    // Takes over a new descriptor; -1 and errno where there is none. Never 0, 1 or 2, which are free where a program has closed
    // them: whatever the program prints would go to the other end.
    explicit Descriptor(int number);
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1))
    {
    }
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(number_, other.number_);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor()
    {
        if (number_ >= 0)
            close(number_);
    }

    explicit operator bool() const
    {
        return number_ >= 0;
    }
    int get() const
    {
        return number_;
    }
    int release()
    {
        return std::exchange(number_, -1);
    }

private:
    int number_ = -1;
};

// KOR_IIL_NO_MEM if errno says that the system is out of descriptors or memory, otherwise KOR_IIL_ERR.
inline std::uint32_t statusOfErrno()
{
    for (const int shortage : {EMFILE, ENFILE, ENOMEM, ENOBUFS, ENOSPC})
        if (errno == shortage)
            return KOR_IIL_NO_MEM;
    return KOR_IIL_ERR;
}

} // namespace koriil
