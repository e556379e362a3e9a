// The layout that the gateway answers by, beside the one that the model is written for.
//
// The model knows the fields, named values and statuses of the simulator's own layout, by their names. Where the layout in use
// has the same name, the field, value or status goes where that one says. What it does not have is left out, and what only it
// has stays zero.
#pragma once

#include "layout/layout.h"
#include "reply_status.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tarn::simulator
{

// What is in one record, block or event: as the model knows it, and as it is on the wire.
struct RecordLayout
{
    const layout::Structure* own = nullptr;
    const layout::Structure* used = nullptr; // null if the layout in use does not describe it
    std::uint32_t size = 0;                  // bytes on the wire
};

class GatewayLayout
{
public:
    // The simulator's own.
    GatewayLayout();
    // Reads a layout file. Throws base::JsonError for one that is not sound.
    explicit GatewayLayout(const std::string& path);

    const layout::Layout& used() const
    {
        return *used_;
    }

    // The text that it was read from.
    const std::string& text() const
    {
        return text_;
    }

    // By the name of the record's type, FUNCTION.ARGUMENT, or the event's name. Throws std::logic_error if the model has none.
    // It points into the layouts, and must not outlive this.
    RecordLayout record(std::string_view name) const;

    // An argument that is a number: as it goes on the wire, and as the model knows it. The latter throws Refused for a value
    // that the layout in use names and the model does not know.
    std::uint32_t numberToWire(std::string_view function, std::string_view argument, std::uint32_t number) const;
    std::uint32_t numberFromWire(std::string_view function, std::string_view argument, std::uint32_t number) const;

    // The number of a status in a service's replies. One that the layout does not have is -1 or, if that has another meaning,
    // the next number below that has none.
    std::uint32_t status(std::string_view service, ReplyStatus status) const;

    // What of the model's the layout in use does not have, one line each.
    std::vector<std::string> missing() const;

private:
    void findRecords();
    void findStatuses();

    std::string text_;
    std::shared_ptr<const layout::Layout> used_;
    std::unordered_map<std::string_view, RecordLayout> records_;
    std::map<std::pair<std::string, ReplyStatus>, std::uint32_t, std::less<>> statuses_;
};

// Whether what the model writes as the one field can be written as the other.
bool isAlike(const layout::Field& own, const layout::Field& used);

// A number of the model's as the layout in use has it, by the names of its values and flags; and the reverse, which throws
// Refused for a value that has a name there and is unknown to the model.
std::uint64_t toWire(const layout::Meaning& own, const layout::Meaning& used, std::uint64_t number);
std::uint64_t fromWire(const layout::Meaning& own, const layout::Meaning& used, std::uint64_t number);

} // namespace tarn::simulator
