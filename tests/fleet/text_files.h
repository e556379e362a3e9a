// What tests do with texts and the files that hold them.
#pragma once

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace fleet_test
{

inline std::string contents(const std::string& path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// With the other piece in each place of this one, of which there has to be one.
inline std::string replaced(std::string text, const std::string& piece, const std::string& other)
{
    if (text.find(piece) == std::string::npos)
        throw std::logic_error("the text has no " + piece);
    for (std::size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + other.size()))
        text.replace(at, piece.size(), other);
    return text;
}

} // namespace fleet_test
