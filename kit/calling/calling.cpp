#include "calling.h"

#include "tarn_api.h"
#include "tarn_qtn_monitor_api.h"

#include <cstring>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <utility>

namespace tarn::calling
{

namespace
{

template <typename Pointee>
constexpr std::size_t pointeeSize()
{
    if constexpr (std::is_void_v<Pointee>)
        return 0;
    else
        return sizeof(Pointee);
}

template <typename T>
ParameterType describe()
{
    ParameterType parameter;
    if constexpr (std::is_pointer_v<T>)
    {
        using Pointee = std::remove_pointer_t<T>;
        parameter.kind = ParameterKind::kPointer;
        parameter.size = pointeeSize<Pointee>();
        parameter.isConst = std::is_const_v<Pointee>;
        parameter.isCharacter = std::is_same_v<std::remove_cv_t<Pointee>, char>;
        parameter.isRecord = std::is_class_v<Pointee>;
    }
    else
    {
        static_assert(std::is_class_v<T> || std::is_unsigned_v<T>, "an argument is a pointer, a record or an unsigned number");
        parameter.kind = std::is_class_v<T> ? ParameterKind::kRecord : ParameterKind::kNumber;
        parameter.size = sizeof(T);
        parameter.isRecord = std::is_class_v<T>;
    }
    return parameter;
}

template <typename T>
T unpack(const ArgumentValue& value)
{
    if constexpr (std::is_pointer_v<T>)
    {
        return static_cast<T>(value.pointer);
    }
    else if constexpr (std::is_class_v<T>)
    {
        T record;
        std::memcpy(&record, value.pointer, sizeof record);
        return record;
    }
    else
    {
        return static_cast<T>(value.number);
    }
}

// What is instantiated once for each distinct signature, however many functions have it.
template <typename Result, typename... Arguments>
struct Signature
{
    static const std::vector<ParameterType>& parameters()
    {
        static const std::vector<ParameterType> kDescribed = {describe<Arguments>()...};
        return kDescribed;
    }

    static std::int64_t invoke(AnyFunction function, const char* callerId, const ArgumentValue* values)
    {
        return spread(function, callerId, values, std::index_sequence_for<Arguments...>());
    }

private:
    template <std::size_t... index>
    static std::int64_t spread(AnyFunction function, const char* callerId, [[maybe_unused]] const ArgumentValue* values,
                               std::index_sequence<index...>)
    {
        const auto typed = reinterpret_cast<Result (*)(const char*, Arguments...)>(function);
        return typed(callerId, unpack<Arguments>(values[index])...);
    }
};

template <typename Result, typename... Arguments>
Callable entry(const char* name, Result (*function)(const char*, Arguments...))
{
    static_assert(std::is_same_v<Result, std::uint32_t> || std::is_same_v<Result, std::int32_t>, "a result is 32 bits");
    using Known = Signature<Result, Arguments...>;
    return {name, &Known::parameters(), std::is_signed_v<Result>, reinterpret_cast<AnyFunction>(function), &Known::invoke};
}

} // namespace

std::int64_t Callable::call(const char* callerId, const ArgumentValue* values, std::size_t count) const
{
    if (count != parameters->size())
        throw std::invalid_argument(std::string(name) + " takes " + std::to_string(parameters->size()) +
                                    " arguments behind the caller id, not " + std::to_string(count));
    for (std::size_t i = 0; i < count; ++i)
        if ((*parameters)[i].kind == ParameterKind::kRecord && values[i].pointer == nullptr)
            throw std::invalid_argument(std::string(name) + ": argument " + std::to_string(i + 1) +
                                        " behind the caller id is a record of " + std::to_string((*parameters)[i].size) +
                                        " bytes, not a null pointer");
    return invoke(address, callerId, values);
}

const std::vector<Callable>& all()
{
    static const std::vector<Callable> kCallables = {
#define TARN_FUNCTION(name) entry(#name, &(name)),
#include "exported_functions.inc"
#undef TARN_FUNCTION
    };
    return kCallables;
}

const Callable* find(std::string_view name)
{
    static const std::unordered_map<std::string_view, const Callable*> kByName = []
    {
        std::unordered_map<std::string_view, const Callable*> result;
        for (const Callable& function : all())
            result.emplace(function.name, &function);
        return result;
    }();
    const auto found = kByName.find(name);
    return found == kByName.end() ? nullptr : found->second;
}

} // namespace tarn::calling
