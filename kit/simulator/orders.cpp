#include "orders.h"

#include "base/join.h"
#include "base/json_reader.h"
#include "base/quote.h"
#include "base/replace_file.h"
#include "description.h"
#include "lists.h"
#include "order_forms.h"
#include "order_words.h"
#include "scenario.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <stdexcept>

#include <nlohmann/json.hpp>

namespace tarn::simulator
{

namespace
{

using Words = std::vector<std::string>;

struct Context
{
    Model& model;
    const Surroundings& surroundings;
};

[[noreturn]] void refuse(const std::string& reason)
{
    throw Refused{ReplyStatus::kInvalidValue, reason};
}

// --- Words -------------------------------------------------------------------------------------------------------------------

double numberIn(const std::string& word, double least, double most, const std::string& expected)
{
    double number = 0;
    const char* const wordEnd = word.data() + word.size();
    const auto [end, error] = std::from_chars(word.data(), wordEnd, number);
    const bool isInRange = number >= least && number <= most;
    if (error != std::errc() || end != wordEnd || !isInRange)
        refuse("expected " + expected + "; got " + base::inQuotes(word));
    return number;
}

std::uint32_t wholeNumberIn(const std::string& word, std::uint32_t most, const std::string& expected)
{
    const double number = numberIn(word, 0, most, expected);
    if (number != std::floor(number))
        refuse("expected " + expected + "; got " + base::inQuotes(word));
    return static_cast<std::uint32_t>(number);
}

MacAddress addressIn(const std::string& word)
{
    const std::optional<MacAddress> address = base::parseMacAddress(word);
    if (!address)
        refuse("expected a MAC address; got " + base::inQuotes(word));
    return *address;
}

bool isUtf8(const std::string& text)
{
    try
    {
        Json(text).dump();
        return true;
    }
    catch (const Json::exception&)
    {
        return false;
    }
}

// A text may do without its quotation marks where one is expected. `place` says whose value it is.
Json jsonIn(const std::string& word, bool isText, const std::string& place)
{
    if (!isUtf8(word))
        refuse(place + "expected UTF-8, in which any other byte is written as \\xe4; got " + base::inQuotes(word));
    if (isText && word.compare(0, 1, "\"") != 0)
        return word;
    try
    {
        return Json::parse(word);
    }
    catch (const Json::exception&)
    {
        refuse(place + "expected a JSON value, in which texts are in quotation marks; got " + base::inQuotes(word));
    }
}

Json::json_pointer pointerIn(const std::string& word)
{
    try
    {
        return Json::json_pointer(word);
    }
    catch (const Json::exception&)
    {
        refuse("expected a JSON pointer such as /radios/0/channel; got " + base::inQuotes(word));
    }
}

bool isTextKind(const Json& schema)
{
    if (schema.contains("enum"))
        return schema["enum"].front().is_string();
    return schema.value("type", "") == "string";
}

// An object from words KEY=VALUE.
template <typename Object>
Json objectFrom(Words::const_iterator begin, Words::const_iterator end)
{
    const Json properties = object<Object>()->schema()["properties"];
    Json result = Json::object();
    for (auto word = begin; word != end; ++word)
    {
        const std::size_t sign = word->find('=');
        const std::string key = word->substr(0, sign);
        Words keys;
        for (const auto& property : properties.items())
            keys.push_back(property.key());
        if (sign == std::string::npos || !properties.contains(key))
            refuse("expected KEY=VALUE, with one of the keys " + base::join(keys) + "; got " + base::inQuotes(*word));
        if (result.contains(key))
            refuse("expected each key once; got " + base::inQuotes(*word));
        result[key] = jsonIn(word->substr(sign + 1), isTextKind(properties[key]), key + ": ");
    }
    return result;
}

// --- The state ---------------------------------------------------------------------------------------------------------------

// The state is a scenario: what it is changed to is checked like one.
template <typename Change>
void edit(const Context& context, Change change)
{
    Json state = scenarioOf(context.model);
    change(state);
    Model changed(context.model.layout);
    try
    {
        readScenario(state.dump(), "the state", changed);
    }
    catch (const base::JsonError& error)
    {
        refuse(error.what());
    }
    const bool isOtherTime = changed.time != context.model.time;
    context.model.replaceBy(changed);
    if (isOtherTime)
        context.surroundings.clock.set(changed.time);
}

Json state(const Context& context, const Words& words)
{
    Json whole = scenarioOf(context.model);
    if (words.empty())
        return whole;
    const Json::json_pointer pointer = pointerIn(words[0]);
    try
    {
        return whole.at(pointer);
    }
    catch (const Json::exception&)
    {
        throw Refused{ReplyStatus::kNoSuchObject, "the state has no " + words[0]};
    }
}

Json set(const Context& context, const Words& words)
{
    const Json::json_pointer pointer = pointerIn(words[0]);
    edit(context,
         [&](Json& state)
         {
             try
             {
                 if (!pointer.empty())
                     state.at(pointer.parent_pointer()); // it does not make what is missing on the way
                 Json& value = state[pointer];
                 value = jsonIn(words[1], value.is_string(), "");
             }
             catch (const Json::exception&)
             {
                 throw Refused{ReplyStatus::kNoSuchObject, "the state has no " + words[0]};
             }
         });
    return nullptr;
}

Json save(const Context& context, const Words& words)
{
    try
    {
        base::replaceFile(words[0], scenarioOf(context.model).dump(1) + '\n', base::Readers::kAsUsual);
    }
    catch (const std::runtime_error& error)
    {
        refuse(error.what());
    }
    return nullptr;
}

// --- The environment ---------------------------------------------------------------------------------------------------------

Json station(const Context& context, const Words& words)
{
    if (words[0] == "add")
        edit(context, [&](Json& state) { state["clients"].push_back(objectFrom<Client>(words.begin() + 1, words.end())); });
    else if (words[0] == "move")
        context.model.moveClient(addressIn(words[1]), wholeNumberIn(words[2], 1000, "a path loss in dB"));
    else
        context.model.removeClient(addressIn(words[1]));
    return nullptr;
}

void removeNeighbour(Json& state, const MacAddress& bssid)
{
    Json& all = state["air"]["neighbours"];
    for (std::size_t i = 0; i < all.size(); ++i)
        if (base::parseMacAddress(all[i]["bssid"].get<std::string>()) == bssid)
            return all.erase(i);
    throw Refused{ReplyStatus::kNoSuchObject, "there is no neighbour " + base::macText(bssid)};
}

Json neighbour(const Context& context, const Words& words)
{
    if (words[0] == "add")
        edit(context,
             [&](Json& state) { state["air"]["neighbours"].push_back(objectFrom<Neighbour>(words.begin() + 1, words.end())); });
    else
        edit(context, [&](Json& state) { removeNeighbour(state, addressIn(words[1])); });
    return nullptr;
}

Json radar(const Context& context, const Words& words)
{
    const std::string expected = "a channel of 20 MHz on which there can be radar, from 52 to 144";
    const std::uint32_t channel = wholeNumberIn(words[0], 144, expected);
    if (!isRadarChannel(Band::k5, channel))
        refuse("expected " + expected + "; got " + words[0]);
    context.model.radarAppears(channel);
    return nullptr;
}

// --- The gateway -------------------------------------------------------------------------------------------------------------

Json reboot(const Context& context, const Words& words)
{
    if (!words.empty())
        context.surroundings.loseSettings();
    context.model.reboot();
    context.surroundings.restartServices();
    return nullptr;
}

Json faults(const Context& context, const Words& words)
{
    if (words.empty())
        return state(context, {"/faults"});
    if (words[0] == "clear")
        context.model.faults.clear();
    else
        edit(context,
             [&](Json& state)
             {
                 Json fault = objectFrom<Fault>(words.begin() + 2, words.end());
                 fault["kind"] = words[1];
                 state["faults"].push_back(std::move(fault));
             });
    return nullptr;
}

Json log(const Context& context, const Words& words)
{
    RequestLog& requests = context.surroundings.log;
    if (words.empty())
        return requests.lines();
    requests.switchTo(words[0] == "on");
    return nullptr;
}

Json shutDown(const Context& context, const Words& /*words*/)
{
    context.surroundings.shutDown();
    return nullptr;
}

// --- Time --------------------------------------------------------------------------------------------------------------------

Json timeOf(const Context& context)
{
    return {{"seconds", static_cast<double>(context.model.time) / 1000}, {"speed", context.surroundings.clock.speed()}};
}

Json speed(const Context& context, const Words& words)
{
    if (!words.empty())
        context.surroundings.clock.setSpeed(numberIn(words[0], 0, 1e6, "a factor from 0 to 1000000"));
    return timeOf(context);
}

Json step(const Context& context, const Words& words)
{
    const Milliseconds now = context.model.time;
    if (words[0] != "next")
        context.surroundings.passTo(
            now + static_cast<Milliseconds>(std::llround(1000 * numberIn(words[0], 0, 1e9, "a number of seconds, or next"))));
    else if (const std::optional<Milliseconds> next = context.surroundings.nextDue())
        context.surroundings.passTo(*next);
    else
        throw Refused{ReplyStatus::kNotThere, "nothing is due"};
    return timeOf(context);
}

// --- Orders ------------------------------------------------------------------------------------------------------------------

struct Order
{
    const char* name;
    Json (*carryOut)(const Context& context, const Words& words); // those behind the name, in one of its forms
};

constexpr Order kOrders[] = {
    {"state", state}, {"set", set},       {"station", station}, {"neighbour", neighbour},
    {"radar", radar}, {"reboot", reboot}, {"faults", faults},   {"speed", speed},
    {"step", step},   {"save", save},     {"log", log},         {"shutdown", shutDown},
};

// The keys may be left out, the words before them may not.
bool fits(const OrderForm& form, const Words& words)
{
    const Words expected = wordsOf(form);
    const auto firstKey = std::find_if(expected.begin(), expected.end(), isKey);
    return canBegin(expected, words) && words.size() >= static_cast<std::size_t>(firstKey - expected.begin());
}

void requireForm(const Words& words)
{
    Words forms;
    for (const OrderForm& form : kOrderForms)
    {
        if (fits(form, words))
            return;
        if (wordsOf(form).front() == words.front())
            forms.emplace_back(form.words);
    }
    refuse("expected " + base::join(forms, " or ") + "; got " + base::inQuotes(base::join(words, " ")));
}

} // namespace

Json carryOut(Model& model, const Surroundings& surroundings, std::string_view order)
{
    const Words words = wordsOf(order);
    for (const Order& each : kOrders)
        if (!words.empty() && words[0] == each.name)
        {
            requireForm(words);
            return each.carryOut({model, surroundings}, Words(words.begin() + 1, words.end()));
        }
    refuse("expected one of " + base::join(orderNames()) + "; got " + base::inQuotes(order));
}

} // namespace tarn::simulator
