// Messages and events of a gateway whose processor has the other byte order: which of their bytes are numbers, and turning
// these round. Where numbers are follows from the contract, and inside records and blocks from a layout. Texts, addresses and
// other bytes stay as they are.
#pragma once

#include "layout/layout.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::fleet
{

struct NumberPlace
{
    std::uint32_t offset = 0;
    std::uint32_t size = 0; // 2, 4 or 8 bytes
};

// Of one message, the same for request and reply, or of an event's data.
struct OrderTable
{
    std::vector<NumberPlace> numbers; // no byte is in two of them
    // What may have numbers inside that no layout tells of: records that are sent; records and blocks that come back, or the
    // event.
    std::vector<std::string> unknownInputs;
    std::vector<std::string> unknownOutputs;
};

// Functions that share a command share its table. Of a command that the contract does not have, nothing is a number. `layout`
// may be null.
OrderTable orderTableOf(std::string_view service, std::uint32_t command, const layout::Layout* layout);
OrderTable orderTableOfEvent(std::string_view service, std::uint32_t event, const layout::Layout* layout);

// Turns the numbers round; those that are not there in full stay as they are. Twice is as if it had not been done.
void turnRound(const OrderTable& table, void* bytes, std::size_t length);

} // namespace tarn::fleet
