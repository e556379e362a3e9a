// Takes the place of the C library's functions in the whole program, the libraries that it is linked with included.
#include "harness/allocations.h"

#include <atomic>

namespace
{

std::atomic<std::size_t> allocationCount{0};

} // namespace

extern "C" {

// The names that glibc has for its own.
void* __libc_malloc(std::size_t size);                    // NOLINT
void* __libc_calloc(std::size_t count, std::size_t size); // NOLINT
void* __libc_realloc(void* memory, std::size_t size);     // NOLINT

void* malloc(std::size_t size)
{
    ++allocationCount;
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size)
{
    ++allocationCount;
    return __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size)
{
    ++allocationCount;
    return __libc_realloc(memory, size);
}

} // extern "C"

std::size_t bench::allocations()
{
    return allocationCount;
}
