// Texts on their way into and out of a message.
#pragma once

#include <cstddef>

namespace tarn
{

// Copies a text, cut to what the destination holds, and ends it with a NUL. Bytes behind that NUL stay as they were; a
// destination of size 0 stays untouched.
//
//   to        the destination, `size` bytes
//   from      the text; where it has no NUL, it ends behind `readable` bytes
void copyText(char* to, std::size_t size, const char* from, std::size_t readable);

// The same for a NUL-terminated text of the caller. No more than `size` - 1 characters of it are read.
template <std::size_t size>
void copyText(char (&to)[size], const char* from)
{
    copyText(to, size, from, size);
}

} // namespace tarn
