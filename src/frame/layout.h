// What a service relies on in a message: its length, and where each of its fields lies. Asserted beside each message.
#pragma once

#include <cstddef>

#define TARN_LENGTH(message, length) static_assert(sizeof(message) == (length), #message " is not " #length " bytes long")

#define TARN_FIELD(message, field, offset, size)                                                                               \
    static_assert(offsetof(message, field) == (offset) && sizeof(message::field) == (size),                                    \
                  #message "::" #field " is not " #size " bytes at offset " #offset)
