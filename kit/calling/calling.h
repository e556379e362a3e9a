/* Calling a function of the library by its name.
 *
 * The signatures are deduced from the prototypes in the public headers, so they are the compiler's and not a second opinion. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace tarn::calling
{

// One argument behind the caller id: `number` where the parameter is a number, `pointer` where it is a pointer, and for a
// record that is passed by value `pointer` to the record's bytes, at any alignment.
struct ArgumentValue
{
    std::uint32_t number = 0;
    void* pointer = nullptr;
};

enum class ParameterKind
{
    kNumber, // an unsigned integer
    kPointer,
    kRecord // by value
};

struct ParameterType
{
    ParameterKind kind = ParameterKind::kNumber;
    std::size_t size = 0;     // bytes of the number or record, or of what the pointer points to: 0 for void
    bool isConst = false;     // pointer to const
    bool isCharacter = false; // pointer to char
    bool isRecord = false;    // a struct, by value or behind the pointer
};

using AnyFunction = void (*)();

struct Callable
{
    const char* name = nullptr;
    const std::vector<ParameterType>* parameters = nullptr; // those behind the caller id
    bool signedResult = false;                              // int32_t instead of uint32_t
    AnyFunction address = nullptr;
    std::int64_t (*invoke)(AnyFunction function, const char* callerId, const ArgumentValue* values) = nullptr;

    // Numbers are cut to the parameter's width, as in any call in C. Throws std::invalid_argument if `count` is not the number
    // of parameters, or if a record's pointer is null.
    std::int64_t call(const char* callerId, const ArgumentValue* values, std::size_t count) const;
};

// Every command function, in the order in which the public headers declare them. The build takes the list from there.
const std::vector<Callable>& all();

// The function of exactly that name, or null.
const Callable* find(std::string_view name);

} // namespace tarn::calling
