#include "letter_case.h"

namespace tarn::base
{

std::string lowerCase(std::string_view text)
{
    std::string result(text);
    for (char& character : result)
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character - 'A' + 'a');
    return result;
}

} // namespace tarn::base
