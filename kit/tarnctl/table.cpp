#include "table.h"

#include <algorithm>
#include <numeric>

namespace tarn::ctl
{

namespace
{

constexpr std::size_t kGap = 2; // columns between two cells

} // namespace

void Table::add(std::vector<TableCell> cells)
{
    rows_.push_back(std::move(cells));
}

void Table::write(std::ostream& out, bool hasColours) const
{
    const std::vector<std::size_t> width = widths();
    for (const std::vector<TableCell>& row : rows_)
        out << line(row, width, hasColours) << '\n';
}

std::vector<std::string> Table::fit(std::size_t width)
{
    const std::vector<std::size_t> all = widths();
    std::size_t kept = all.size();
    std::size_t total = std::accumulate(all.begin(), all.end(), margin_.size() + kGap * (std::max<std::size_t>(kept, 1) - 1));
    while (kept > 1 && total > width)
        total -= all[--kept] + kGap;

    std::vector<std::string> left;
    if (!rows_.empty())
        for (std::size_t i = kept; i < rows_.front().size(); ++i)
            left.push_back(rows_.front()[i].text);
    for (std::vector<TableCell>& row : rows_)
        row.erase(row.begin() + static_cast<std::ptrdiff_t>(std::min(kept, row.size())), row.end());
    return left;
}

std::vector<std::size_t> Table::widths() const
{
    std::vector<std::size_t> widths;
    for (const std::vector<TableCell>& row : rows_)
    {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], columnsOf(row[i].text));
    }
    return widths;
}

std::string Table::line(const std::vector<TableCell>& row, const std::vector<std::size_t>& widths, bool hasColours) const
{
    std::string line = margin_;
    std::string gap; // to be written if something follows
    for (std::size_t i = 0; i < row.size(); ++i)
    {
        const TableCell& cell = row[i];
        const std::string padding(widths[i] - columnsOf(cell.text), ' ');
        if (cell.text.empty())
            gap += padding;
        else
        {
            line += gap;
            if (cell.isRight)
                line += padding;
            line += hasColours ? toned(cell.text, cell.tone) : cell.text;
            gap = cell.isRight ? "" : padding;
        }
        gap.append(kGap, ' ');
    }
    return line;
}

} // namespace tarn::ctl
