#include "offers.h"

#include "field_arguments.h"
#include "fields.h"
#include "survey.h"

#include <algorithm>
#include <optional>

namespace tarn::ctl
{

namespace
{

std::string nameOf(const std::string& assignment)
{
    return assignment.substr(0, assignment.find('='));
}

bool isGiven(const std::vector<std::string>& given, const std::string& name)
{
    return std::any_of(given.begin(), given.end(), [&](const std::string& assignment) { return nameOf(assignment) == name; });
}

// "1" of "radioId=1"; none if there is no such assignment.
std::optional<std::string> valueIn(const std::vector<std::string>& given, const std::string& name)
{
    for (const std::string& assignment : given)
        if (nameOf(assignment) == name && assignment.size() > name.size())
            return assignment.substr(name.size() + 1);
    return std::nullopt;
}

// --- Names ------------------------------------------------------------------------------------------------------------------

std::string withUnit(const layout::Meaning& meaning)
{
    return meaning.unit.empty() || meaning.description.empty() ? meaning.unit + meaning.description
                                                               : meaning.unit + ", " + meaning.description;
}

void offerFields(Offers& offers, const FunctionParameter& parameter, const layout::Structure& structure,
                 const std::vector<std::string>& given)
{
    for (const layout::Field& field : structure.fields)
    {
        const std::string path = parameter.name + "." + field.name;
        if (!isGiven(given, path))
            offers.push_back({path + (field.type == layout::FieldType::kArray ? "[" : "="), withUnit(field.meaning)});
    }
}

// Inputs wait for their value; of outputs only null can be given.
void offerName(Offers& offers, const LibraryFunction& function, const FunctionParameter& parameter,
               const std::vector<std::string>& given, const std::string& present)
{
    const bool isInput = parameter.isInput && parameter.form != Form::kAddress;
    const layout::Structure* const structure = isInput ? structureOf(function, parameter) : nullptr;
    const std::string dotted = parameter.name + ".";
    if (structure != nullptr && present.compare(0, dotted.size(), dotted) == 0)
        return offerFields(offers, parameter, *structure, given);
    if (isGiven(given, parameter.name))
        return;
    if (structure != nullptr)
        offers.push_back({dotted, "a field of it"});
    offers.push_back({parameter.name + (isInput ? "=" : "=null"), parameter.content});
}

// --- Values -----------------------------------------------------------------------------------------------------------------

void offerMeaning(Offers& offers, const layout::Meaning& meaning)
{
    if (meaning.values != nullptr)
        for (const layout::NamedValue& value : meaning.values->values)
            offers.push_back({value.name, std::to_string(value.value)});
    for (const layout::Flag& flag : meaning.flags)
        offers.push_back({flag.name, "bit " + std::to_string(flag.bit)});
    for (const std::string& text : meaning.texts)
        offers.push_back({text, ""});
}

std::string descriptionOf(const Interface& interface)
{
    return interface.data["ssid"].isKnown() ? "SSID " + interface.data["ssid"].text() : "";
}

std::string descriptionOf(const Radio& radio)
{
    std::string description = radio.name;
    for (const char* const field : {"band", "channel"})
        if (radio.data[field].isKnown())
            description += (description.empty() ? "" : ", ") + std::string(field) + " " + radio.data[field].text();
    return description;
}

// Whether what is given names another radio or interface.
bool isElsewhere(const Interface& interface, const std::vector<std::string>& given)
{
    const auto differs = [&](const char* argument, const std::string& own)
    { return valueIn(given, argument).value_or(own) != own; };
    const std::string id = std::to_string(interface.id);
    return differs("radioId", std::to_string(interface.radioId)) || differs("apId", id) || differs("ssidId", id) ||
           differs("ifname", interface.name) || differs("intf_name", interface.name);
}

void offerStations(Offers& offers, Survey& survey, const Interface& interface)
{
    for (const Fields& station : survey.stations(interface))
        if (station["macAddress"].isKnown())
            offers.push_back({station["macAddress"].text(), station["name"].isKnown() ? station["name"].text() : ""});
}

// What the gateway has under an argument of that name.
void offerGateway(Offers& offers, const FunctionParameter& parameter, const std::vector<std::string>& given)
{
    const std::string& name = parameter.name;
    const bool isRadio = name == "radioId";
    const bool isId = name == "ssidId" || name == "apId";
    const bool isInterface = name == "ifname" || name == "intf_name";
    const bool isStation = parameter.form == Form::kBytes && parameter.size == kMacAddressSize;
    if (!isRadio && !isId && !isInterface && !isStation)
        return;
    Survey survey;
    for (const Radio& radio : survey.radios())
    {
        if (isRadio)
            offers.push_back({std::to_string(radio.id), descriptionOf(radio)});
        for (const Interface& interface : radio.interfaces)
        {
            if (isElsewhere(interface, given))
                continue;
            if (isId)
                offers.push_back({std::to_string(interface.id), descriptionOf(interface)});
            if (isInterface && interface.onModule)
                offers.push_back({interface.name, descriptionOf(interface)});
            if (isStation)
                offerStations(offers, survey, interface);
        }
    }
}

Offers valueOffers(const LibraryFunction& function, const std::vector<std::string>& given, const std::string& path,
                   bool asksGateway)
{
    Offers offers;
    const FunctionParameter* const parameter = function.parameter(argumentOf(path));
    if (parameter == nullptr || !parameter->isInput)
        return offers;
    if (path == parameter->name)
    {
        if (const layout::Meaning* const meaning = meaningOf(function, *parameter))
            offerMeaning(offers, *meaning);
        if (asksGateway)
            offerGateway(offers, *parameter, given);
        return offers;
    }
    const layout::Structure* const structure = structureOf(function, *parameter);
    const std::optional<layout::FieldPlace> place =
        structure == nullptr ? std::nullopt : structure->place(path.substr(parameter->name.size() + 1));
    if (place)
        offerMeaning(offers, place->field->meaning);
    return offers;
}

} // namespace

Offers argumentOffers(const LibraryFunction& function, const std::vector<std::string>& given, const std::string& present,
                      bool asksGateway)
{
    Offers offers;
    if (present.find('=') == std::string::npos)
    {
        for (const FunctionParameter& parameter : function.parameters)
            offerName(offers, function, parameter, given, present);
        return offers;
    }
    const std::string name = nameOf(present);
    offers = valueOffers(function, given, name, asksGateway);
    for (Offer& offer : offers)
        offer.word.insert(0, name + "=");
    return offers;
}

Offers targetOffers()
{
    Offers offers;
    Survey survey;
    for (const Radio& radio : survey.radios())
    {
        offers.push_back({std::to_string(radio.id), descriptionOf(radio)});
        if (!radio.name.empty())
            offers.push_back({radio.name, descriptionOf(radio)});
        for (const Interface& interface : radio.interfaces)
            offers.push_back({interface.name, descriptionOf(interface)});
    }
    return offers;
}

Offers stationOffers()
{
    Offers offers;
    Survey survey;
    for (const Interface& interface : survey.interfaces())
        offerStations(offers, survey, interface);
    return offers;
}

} // namespace tarn::ctl
