#include "order_words.h"

#include "reply_status.h"

namespace tarn::simulator
{

std::vector<std::string> wordsOf(std::string_view line)
{
    std::vector<std::string> words;
    bool isInWord = false;
    char quote = '\0';
    for (std::size_t i = 0; i < line.size(); ++i)
    {
        const char character = line[i];
        const bool isBlank = character == ' ' || character == '\t' || character == '\r' || character == '\n';
        if (quote == '\0' && isBlank)
        {
            isInWord = false;
            continue;
        }
        if (!isInWord)
            words.emplace_back();
        isInWord = true;
        if (quote != '\0' && character == quote)
            quote = '\0';
        else if (quote == '\0' && (character == '\'' || character == '"'))
            quote = character;
        else if (quote == '\0' && character == '\\' && i + 1 < line.size())
            words.back() += line[++i];
        else
            words.back() += character;
    }
    if (quote != '\0')
        throw Refused{ReplyStatus::kInvalidValue, std::string("expected another ") + quote + " behind the one that is there"};
    return words;
}

} // namespace tarn::simulator
