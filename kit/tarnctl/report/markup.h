// Pieces of HTML and SVG. Texts get into one only by text() and as attributes' values, and both are escaped, so that no name
// that a gateway tells becomes markup.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn::ctl
{

class Markup;

struct Attribute
{
    const char* name;
    std::string value;
};

Markup text(std::string_view words);
Markup element(const char* name, const std::vector<Attribute>& attributes, const Markup& content);

class Markup
{
public:
    Markup() = default;

    Markup& operator+=(const Markup& other);

    bool isEmpty() const
    {
        return source_.empty();
    }

    const std::string& source() const
    {
        return source_;
    }

private:
    friend Markup text(std::string_view words);
    friend Markup element(const char* name, const std::vector<Attribute>& attributes, const Markup& content);

    std::string source_;
};

// The same of an element that has only a text in it, and of one that has no attributes.
Markup element(const char* name, const std::vector<Attribute>& attributes, std::string_view words);
Markup element(const char* name, const Markup& content);
Markup element(const char* name, std::string_view words);

} // namespace tarn::ctl
