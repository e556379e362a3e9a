// The words of the files, in the order of the enumerators; those of a result, of Result::isSigned.
#pragma once

namespace tarn::contract
{

inline constexpr const char* kResultWords[] = {"u32", "i32"};
inline constexpr const char* kTypeWords[] = {"u32", "u16", "u8", "text", "bytes", "record"};
inline constexpr const char* kDirectionWords[] = {"in", "out"};
inline constexpr const char* kEncodingWords[] = {"id",    "word",  "byte",   "inverted", "text",
                                                 "block", "words", "record", "size",     "nothing"};
inline constexpr const char* kEffectWords[] = {"reads", "changes"};
inline constexpr const char* kWhenWords[] = {"null", "null or empty", "zero"};

} // namespace tarn::contract
