// A line on a terminal that says how far something is; nothing where standard error is no terminal.
#pragma once

#include "console.h"

#include <chrono>
#include <cstddef>
#include <string>

namespace tarn::ctl
{

class Progress
{
public:
    Progress(const Console& console, std::string what);
    ~Progress(); // clears the line
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // "scanning  [#######.......] 1 of 2 radios  3 s"
    void show(std::size_t done, std::size_t total, const std::string& unit);

private:
    const Console& console_;
    const std::string what_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::size_t shown_ = 0; // times
};

} // namespace tarn::ctl
