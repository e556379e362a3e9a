#include "markup.h"

#include "tarnctl/terminal_text.h"

namespace tarn::ctl
{

namespace
{

// What is not UTF-8, and characters that change the text around them, are shown by their numbers.
std::string escaped(std::string_view words)
{
    std::string result;
    for (const char character : printable(words))
        switch (character)
        {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        case '\'':
            result += "&#39;";
            break;
        default:
            result += character;
        }
    return result;
}

} // namespace

Markup& Markup::operator+=(const Markup& other)
{
    source_ += other.source_;
    return *this;
}

Markup text(std::string_view words)
{
    Markup markup;
    markup.source_ = escaped(words);
    return markup;
}

Markup element(const char* name, const std::vector<Attribute>& attributes, const Markup& content)
{
    Markup markup;
    markup.source_ = std::string("<") + name;
    for (const Attribute& attribute : attributes)
        markup.source_ += std::string(" ") + attribute.name + "=\"" + escaped(attribute.value) + '"';
    markup.source_ += '>' + content.source() + "</" + name + '>';
    return markup;
}

Markup element(const char* name, const std::vector<Attribute>& attributes, std::string_view words)
{
    return element(name, attributes, text(words));
}

Markup element(const char* name, const Markup& content)
{
    return element(name, {}, content);
}

Markup element(const char* name, std::string_view words)
{
    return element(name, {}, text(words));
}

} // namespace tarn::ctl
