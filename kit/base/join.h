#pragma once

#include <string>
#include <string_view>

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

template <typename Items>
std::string join(const Items& items, std::string_view separator = ", ")
{
    return join(
        items, separator, [](const auto& item) -> const auto& { return item; });
}

} // namespace tarn::base
