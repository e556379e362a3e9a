// Bytes and texts whose every place can be told from its neighbours, and marks that show what a call has written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tarn::test
{

// What a buffer or a word holds before the call, to see whether it was written.
inline constexpr std::uint8_t kUntouchedByte = 0xEE;
inline constexpr std::uint32_t kUntouched = 0xEEEEEEEE;

// "abc...zabc...", so that a text is seen to be cut behind the right character.
inline std::string letters(std::size_t length)
{
    std::string text;
    for (std::size_t i = 0; i != length; ++i)
        text += static_cast<char>('a' + i % 26);
    return text;
}

// Bytes of which none is zero and neighbours differ.
inline std::vector<std::uint8_t> nonZeroBytes(std::size_t size)
{
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i != size; ++i)
        bytes.push_back(static_cast<std::uint8_t>(1 + i % 233)); // below kUntouchedByte
    return bytes;
}

} // namespace tarn::test
