// Checks of an option's value, for CLI11. Their errors say what was expected and what was given, as all errors of the kit do.
#pragma once

#include "base/join.h"
#include "base/quote.h"

#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace tarn::base
{

// The parser's own check with such an error; `shown` is what the help says of the value.
inline CLI::Validator expecting(const CLI::Validator& check, const std::string& expected, const std::string& shown)
{
    const auto errorOf = [check, expected](std::string& given)
    { return check(given).empty() ? std::string() : "expected " + expected + "; got " + inQuotes(given); };
    return {errorOf, shown};
}

// "expected one of table, csv, json; got "xml"".
inline CLI::Validator oneOf(const std::vector<std::string>& words)
{
    return expecting(CLI::IsMember(words), "one of " + join(words), "{" + join(words, ",") + "}");
}

// "expected 1 to 4294967295; got "0"".
template <typename Number>
CLI::Validator between(Number least, Number most)
{
    constexpr int kDigits = 10;
    std::ostringstream range;
    range << std::setprecision(kDigits) << least << " to " << most;
    return expecting(CLI::Range(least, most), range.str(), range.str());
}

} // namespace tarn::base
