#include "order_offers.h"

#include "event_names.h"
#include "simulator/fault_kind.h"
#include "simulator/order_forms.h"

#include <algorithm>

namespace tarn::ctl
{

namespace
{

using Words = std::vector<std::string>;

void add(Offers& offers, const Words& words, const std::string& prefix = "")
{
    for (const std::string& word : words)
        offers.push_back({prefix + word, ""});
}

void offerKeyValues(Offers& offers, const std::string& key)
{
    if (key == "function=")
        for (const LibraryFunction& function : catalogue())
            offers.push_back({key + function.name, function.description});
    else if (key == "service=")
        add(offers, serviceNames(), key);
    else if (key == "event=")
        add(offers, eventNames(), key);
}

// The keys from that word of the form on, but those that are given; or the values of the key that is typed.
void offerKeys(Offers& offers, Words::const_iterator begin, Words::const_iterator end, const Words& given,
               const std::string& present)
{
    if (const std::size_t sign = present.find('='); sign != std::string::npos)
        return offerKeyValues(offers, present.substr(0, sign + 1));
    for (auto word = begin; word != end; ++word)
    {
        const std::string key = word->substr(0, word->find('=') + 1);
        const auto isIt = [&](const std::string& each) { return each.compare(0, key.size(), key) == 0; };
        if (!simulator::isValue(key) && std::none_of(given.begin(), given.end(), isIt))
            offers.push_back({key, word->substr(key.size())});
    }
}

void offerValues(Offers& offers, const std::string& value)
{
    if (value == "ADDRESS")
    {
        const Offers stations = stationOffers();
        offers.insert(offers.end(), stations.begin(), stations.end());
    }
    else if (value == "KIND")
        add(offers, Words(std::begin(simulator::kFaultKindNames), std::end(simulator::kFaultKindNames)));
    else if (value == "FILE")
        offers.push_back({"<file>", ""});
}

} // namespace

Offers orderOffers(const std::vector<std::string>& given, const std::string& present)
{
    Offers offers;
    for (const simulator::OrderForm& form : simulator::kOrderForms)
    {
        const Words words = wordsOf(form);
        if (!simulator::canBegin(words, given))
            continue;
        const auto key = std::find_if(words.begin(), words.end(), &simulator::isKey);
        if (words.begin() + static_cast<std::ptrdiff_t>(std::min(given.size(), words.size())) >= key && key != words.end())
            offerKeys(offers, key, words.end(), given, present);
        else if (given.size() < words.size() && simulator::isValue(words[given.size()]))
            offerValues(offers, words[given.size()]);
        else if (given.size() < words.size())
            for (const std::string& word : simulator::alternativesOf(words[given.size()]))
                offers.push_back({word, std::string(form.meaning)});
    }
    return offers;
}

} // namespace tarn::ctl
