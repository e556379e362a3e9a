// The caller id: the first argument of every function but the local utilities.
#pragma once

namespace tarn
{

// A text of 1 to 31 characters, the first from 0x20 to 0x7F. Reads no byte behind the NUL, and at most 32. `id` is not null.
bool isCallerId(const char* id);

} // namespace tarn
