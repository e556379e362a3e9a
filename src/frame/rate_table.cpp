#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "tarn_frame.h"

static_assert(sizeof(TarnRateTable) == 4336, "the table has no padding");
static_assert(offsetof(TarnRateTable, rates) == 1, "slots follow the count");

namespace
{

double valueOf(const char* rate)
{
    return std::strtod(rate, nullptr);
}

// A text of 17 characters or more fills its slot without a NUL, so a slot is read through a copy that has one.
double slotValue(const char (&slot)[TARN_RATE_TEXT_SIZE])
{
    char text[TARN_RATE_TEXT_SIZE + 1];
    std::memcpy(text, slot, TARN_RATE_TEXT_SIZE);
    text[TARN_RATE_TEXT_SIZE] = '\0';
    return std::strtod(text, nullptr);
}

// The first slot in use with this value, or the table's count.
std::uint32_t find(const TarnRateTable& table, double value)
{
    std::uint32_t slot = 0;
    while (slot < table.count && slotValue(table.rates[slot]) != value)
        ++slot;
    return slot;
}

} // namespace

uint32_t tarnAddRateEntries(TarnRateTable* table, const char* rate)
{
    if (table == nullptr || rate == nullptr)
        return TARN_RATE_REJECTED;
    if (table->count == TARN_RATE_TABLE_SLOTS)
        return TARN_RATE_TABLE_FULL;

    const double value = valueOf(rate);
    if (value <= 0) // false for "nan", which is accepted
        return TARN_RATE_REJECTED;
    if (find(*table, value) != table->count)
        return TARN_RATE_ADDED;

    std::memcpy(table->rates[table->count], rate, TARN_RATE_TEXT_SIZE); // the whole slot, however long the text
    ++table->count;
    return TARN_RATE_ADDED;
}

uint32_t tarnDelRatesEntries(TarnRateTable* table, const char* rate)
{
    if (table == nullptr || rate == nullptr)
        return TARN_RATE_REJECTED;

    const uint32_t slot = find(*table, valueOf(rate));
    if (slot == table->count)
        return TARN_RATE_NOT_FOUND;

    const uint32_t last = table->count - 1u;
    std::memmove(table->rates[slot], table->rates[slot + 1], std::size_t{last - slot} * TARN_RATE_TEXT_SIZE);
    std::memset(table->rates[last], 0, TARN_RATE_TEXT_SIZE);
    table->count = static_cast<uint8_t>(last);
    return TARN_RATE_DELETED;
}
