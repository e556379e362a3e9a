// One value of the gateway: what a program gets of it, and what a person reads.
#pragma once

#include "datum.h"
#include "layout/decode.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn::ctl
{

struct Cell
{
    Datum value;            // nothing if the gateway does not tell
    std::string name;       // of the number, by the layout; empty if it has none
    bool hasNames = false;  // the layout names numbers of this kind, so that programs get the name beside the number
    std::string unit;       // by the layout
    std::uint32_t size = 0; // of a number: bytes in which the gateway counts it, 0 if unknown
    std::string shown;      // what a person reads instead of the value; usually empty

    bool isKnown() const
    {
        return !value.isNothing();
    }

    bool isNumber() const
    {
        return value.isNumber();
    }

    // 0 if it is no number.
    std::int64_t number() const
    {
        return value.number();
    }

    // As a person reads it: "running", "-48 dBm", "36 40 44"; "-" if it is not known.
    std::string text() const;
};

Cell numberCell(std::int64_t number, std::string unit = "");
Cell textCell(std::string text);
Cell listCell(Datum::List list);
// A number of seconds shown as "1 h 02 min"; any other cell as it is.
Cell withDuration(Cell cell);
// The number by a meaning of the layout; null for none.
Cell cellOf(std::int64_t number, const layout::Meaning* meaning);

// What one object of the gateway consists of, by the names of the layout's fields, and names of the tool's own beside them.
class Fields
{
public:
    Fields() = default;
    explicit Fields(const std::vector<layout::Decoded>& decoded);

    // A cell that is not known, if there is no such field.
    const Cell& operator[](std::string_view name) const;
    // Those of an array of structures; none if there is no such field.
    const std::vector<Fields>& elements(std::string_view name) const&;
    const std::vector<Fields>& elements(std::string_view name) const&& = delete; // they go with this

    // Adds a field, or replaces it.
    void set(const std::string& name, Cell cell);
    // Adds the other's.
    void add(const Fields& other);

    const std::vector<std::pair<std::string, Cell>>& all() const&& = delete;
    const std::vector<std::pair<std::string, Cell>>& all() const&
    {
        return cells_;
    }

private:
    std::vector<std::pair<std::string, Cell>> cells_;
    std::vector<std::pair<std::string, std::vector<Fields>>> arrays_;
};

} // namespace tarn::ctl
