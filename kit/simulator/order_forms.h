// The orders that a running gateway takes: for the gateway, which reads them, and for programs that explain and offer them.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::simulator
{

// Words in small letters are as they are, of those with | between them one; words in capitals are values. A word with a sign of
// equality is a key and its value, behind which more of them can follow, in any order, or none.
struct OrderForm
{
    std::string_view words;
    std::string_view meaning;
};

inline constexpr OrderForm kOrderForms[] = {
    {"state", "the state as JSON, which is a scenario"},
    {"state POINTER", "the part of it under a JSON pointer"},
    {"set POINTER VALUE", "changes the state; POINTER/- adds to a list"},
    {"station add address=MAC ssid=TEXT passphrase=TEXT pathLoss=DB KEY=VALUE", "a client comes"},
    {"station move ADDRESS PATHLOSS", "it goes to another place, so many dB away"},
    {"station remove ADDRESS", "it is not there any more"},
    {"neighbour add bssid=MAC band=BAND channel=NUMBER rssi=DBM load=PERCENT KEY=VALUE", "another network appears"},
    {"neighbour remove BSSID", "and goes"},
    {"radar CHANNEL", "radar appears on a channel of 20 MHz"},
    {"reboot", "as after a loss of power"},
    {"reboot without-settings", "as after a reset to the scenario"},
    {"faults", "what goes wrong"},
    {"faults add KIND function=NAME service=ID event=NAME count=NUMBER probability=PERCENT milliseconds=NUMBER status=NUMBER "
     "losesSettings=true",
     "lets something go wrong from now on"},
    {"faults clear", "lets nothing go wrong any more"},
    {"speed", "the time, and how fast it goes"},
    {"speed FACTOR", "sets how fast it goes: gateway seconds for each second of real time"},
    {"step SECONDS", "lets so much time pass at once"},
    {"step next", "lets time pass until the next thing that is due"},
    {"save FILE", "writes the state as a scenario"},
    {"log", "the last requests that were logged"},
    {"log on|off", "whether requests are logged"},
    {"shutdown", "ends the gateway"},
};

// "radar", "CHANNEL"
inline std::vector<std::string> wordsOf(const OrderForm& form)
{
    std::vector<std::string> words;
    for (std::string_view rest = form.words; !rest.empty();)
    {
        const std::size_t length = rest.find(' ');
        words.emplace_back(rest.substr(0, length));
        rest.remove_prefix(length == std::string_view::npos ? rest.size() : length + 1);
    }
    return words;
}

// The names of all orders, each once.
inline std::vector<std::string> orderNames()
{
    std::vector<std::string> names;
    for (const OrderForm& form : kOrderForms)
        if (const std::string name = wordsOf(form).front(); names.empty() || names.back() != name)
            names.push_back(name);
    return names;
}

inline bool isKey(const std::string& word)
{
    return word.find('=') != std::string::npos;
}

inline bool isValue(const std::string& word)
{
    return word.front() >= 'A' && word.front() <= 'Z';
}

// The alternatives of a word in small letters.
inline std::vector<std::string> alternativesOf(const std::string& word)
{
    const std::size_t bar = word.find('|');
    if (bar == std::string::npos)
        return {word};
    return {word.substr(0, bar), word.substr(bar + 1)};
}

// Whether an order of this form, given in its words, can begin with those.
inline bool canBegin(const std::vector<std::string>& form, const std::vector<std::string>& given)
{
    for (std::size_t i = 0; i < given.size(); ++i)
    {
        if (i == form.size())
            return false;
        if (isKey(form[i]))
            return true;
        const std::vector<std::string> alternatives = alternativesOf(form[i]);
        if (!isValue(form[i]) && std::find(alternatives.begin(), alternatives.end(), given[i]) == alternatives.end())
            return false;
    }
    return true;
}

} // namespace tarn::simulator
