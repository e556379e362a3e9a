/* First in, first out, of items that say themselves which is the next. Neither makes items nor ends them. */
#pragma once

#include <cstdint>

namespace tarn::fleet
{

template <typename Item>
struct Queue
{
    Item* first = nullptr;
    Item* last = nullptr;
    std::uint32_t count = 0;

    void add(Item* item)
    {
        item->next = nullptr;
        (last == nullptr ? first : last->next) = item;
        last = item;
        ++count;
    }
    // Null if it is empty.
    Item* take()
    {
        Item* item = first;
        if (item == nullptr)
            return nullptr;
        first = item->next;
        if (first == nullptr)
            last = nullptr;
        --count;
        return item;
    }
};

} // namespace tarn::fleet
