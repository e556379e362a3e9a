// The elements of lists: how many there are, whether one is among them, and the one at an index.
#pragma once

#include "reply_status.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>

namespace tarn::simulator
{

template <typename List>
std::uint32_t count(const List& list)
{
    return static_cast<std::uint32_t>(std::size(list));
}

template <typename List, typename Element>
bool contains(const List& list, const Element& element)
{
    return std::find(std::begin(list), std::end(list), element) != std::end(list);
}

// The element at an index that counts from 0. Throws Refused beyond the end.
template <typename List>
auto& elementAt(List& list, std::uint32_t index)
{
    if (index >= std::size(list))
        throw Refused{ReplyStatus::kNoSuchObject,
                      "index " + std::to_string(index) + "; there are " + std::to_string(std::size(list)) + ", from 0"};
    return list[index];
}

} // namespace tarn::simulator
