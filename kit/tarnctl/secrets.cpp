#include "secrets.h"

#include "base/letter_case.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <vector>

namespace tarn::ctl
{

namespace
{

constexpr std::array<std::string_view, 11> kSecretWords = {"passphrase", "password", "secret", "psk",         "pin", "key",
                                                           "pmk",        "wep",      "token",  "credentials", "sae"};

bool isSecretWord(const std::string& word)
{
    return std::find(kSecretWords.begin(), kSecretWords.end(), base::lowerCase(word)) != kSecretWords.end();
}

// "wpsApPin" and "wps_ap_pin" are three.
std::vector<std::string> wordsOf(std::string_view name)
{
    std::vector<std::string> words;
    bool isInWord = false;
    bool wasLarge = false;
    for (const char character : name)
    {
        const auto byte = static_cast<unsigned char>(character);
        const bool isLarge = std::isupper(byte) != 0;
        if (std::isalpha(byte) == 0)
        {
            isInWord = false;
            continue;
        }
        if (!isInWord || (isLarge && !wasLarge))
            words.emplace_back();
        words.back() += character;
        isInWord = true;
        wasLarge = isLarge;
    }
    return words;
}

} // namespace

bool isSecret(std::string_view name, bool isNumber)
{
    const std::vector<std::string> words = wordsOf(name);
    if (isNumber)
        return !words.empty() && isSecretWord(words.back());
    return std::any_of(words.begin(), words.end(), isSecretWord);
}

} // namespace tarn::ctl
