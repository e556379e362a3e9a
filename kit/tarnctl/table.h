// Rows of cells, each column as wide as its widest cell.
#pragma once

#include "terminal_text.h"

#include <cstddef>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace tarn::ctl
{

struct TableCell
{
    TableCell(std::string words, Tone ofText = Tone::kPlain, bool atRight = false) // NOLINT(google-explicit-constructor)
        : text(std::move(words)), tone(ofText), isRight(atRight)
    {
    }

    TableCell(const char* words) : text(words) // NOLINT(google-explicit-constructor)
    {
    }

    std::string text;
    Tone tone = Tone::kPlain;
    bool isRight = false; // in its column
};

class Table
{
public:
    explicit Table(std::string leftMargin = "") : margin_(std::move(leftMargin))
    {
    }

    void add(std::vector<TableCell> cells);
    void write(std::ostream& out, bool hasColours = false) const;

    // Leaves out columns from the right until the table is no wider than that; at least one remains. Returns the first cells of
    // those left out.
    std::vector<std::string> fit(std::size_t width);

private:
    std::vector<std::size_t> widths() const;
    std::string line(const std::vector<TableCell>& row, const std::vector<std::size_t>& widths, bool hasColours) const;

    std::string margin_;
    std::vector<std::vector<TableCell>> rows_;
};

} // namespace tarn::ctl
