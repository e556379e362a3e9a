// Numbers in a message: what an argument's encoding makes of them, on the way there and back.
#pragma once

#include "contract.h"

#include <cstdint>

namespace tarn::contract
{

// Bytes that an argument has in the message: its size, or what there is up to the reply status where the caller says the size.
std::uint32_t roomOf(const Command& command, const Argument& argument);

// Whether the argument is one number in the message: encoded as an id, a word, a byte or inverted.
bool isOneNumber(const Argument& argument);

// `bytes` are the argument's own in the message, at its offset; the number is the one that the caller passes or receives.
// Only for arguments that are one number: std::logic_error for others.
void storeNumber(const Argument& argument, std::uint32_t number, std::uint8_t* bytes);
std::uint32_t loadNumber(const Argument& argument, const std::uint8_t* bytes);

} // namespace tarn::contract
