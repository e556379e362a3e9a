#pragma once

#include <string>
#include <string_view>
#include <type_traits>

namespace tarn::base
{

// The texts of the items with the separator between them: "one, two, three".
template <typename Items, typename TextOf>
std::string join(const Items& items, std::string_view separator, TextOf textOf)
{
    std::string text;
    bool isFirst = true;
    for (const auto& item : items)
    {
        if (!isFirst)
            text += separator;
        text += textOf(item);
        isFirst = false;
    }
    return text;
}

// The same of items that are texts or numbers.
template <typename Items>
std::string join(const Items& items, std::string_view separator = ", ")
{
    const auto textOf = [](const auto& item)
    {
        if constexpr (std::is_arithmetic_v<std::decay_t<decltype(item)>>)
            return std::to_string(item);
        else
            return std::string_view(item);
    };
    return join(items, separator, textOf);
}

} // namespace tarn::base
