// The byte order of this machine, by name: messages are in it.
#pragma once

namespace tarn::base
{

#if __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
inline constexpr char kByteOrder[] = "big";
#else
inline constexpr char kByteOrder[] = "little";
#endif

} // namespace tarn::base
