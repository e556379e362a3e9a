#include "settings.h"

#include "base/join.h"
#include "mobility_domain.h"
#include "reply_status.h"

#include <algorithm>
#include <stdexcept>

namespace tarn::simulator
{

namespace
{

Property number(std::string name, std::uint32_t minimum, std::uint32_t maximum, std::uint32_t initial)
{
    Property property;
    property.name = std::move(name);
    property.initial = initial;
    property.accepts = [=](const Value& value)
    {
        const std::uint32_t given = std::get<std::uint32_t>(value);
        return given >= minimum && given <= maximum;
    };
    property.expected = "an integer from " + std::to_string(minimum) + " to " + std::to_string(maximum);
    return property;
}

Property flag(std::string name, std::uint32_t initial)
{
    return number(std::move(name), 0, 1, initial);
}

template <typename Kind>
std::function<bool(const Value&)> amongThese(std::vector<Kind> choices)
{
    return [choices = std::move(choices)](const Value& value)
    { return std::find(choices.begin(), choices.end(), std::get<Kind>(value)) != choices.end(); };
}

Property oneNumberOf(std::string name, const std::vector<std::uint32_t>& choices, std::uint32_t initial)
{
    Property property;
    property.name = std::move(name);
    property.initial = initial;
    property.expected = "one of " + base::join(choices);
    property.accepts = amongThese(choices);
    return property;
}

Property oneTextOf(std::string name, const std::vector<std::string>& choices, std::string initial)
{
    Property property;
    property.name = std::move(name);
    property.initial = std::move(initial);
    property.expected = "one of " + base::join(choices);
    property.accepts = amongThese(choices);
    return property;
}

Property text(std::string name, std::size_t minimum, std::size_t maximum, std::string initial)
{
    Property property;
    property.name = std::move(name);
    property.initial = std::move(initial);
    property.accepts = [=](const Value& value)
    {
        const std::size_t length = std::get<std::string>(value).size();
        return length >= minimum && length <= maximum;
    };
    property.expected = "a text of " + std::to_string(minimum) + " to " + std::to_string(maximum) + " characters";
    return property;
}

Property textThat(std::string name, bool (*accepts)(const std::string&), std::string expected, std::string initial)
{
    Property property;
    property.name = std::move(name);
    property.initial = std::move(initial);
    property.accepts = [accepts](const Value& value) { return accepts(std::get<std::string>(value)); };
    property.expected = std::move(expected);
    return property;
}

bool isMobilityDomain(const std::string& text)
{
    return parseMobilityDomain(text).has_value();
}

} // namespace

bool isWpsPin(const std::string& text)
{
    if (text.size() != 8 || text.find_first_not_of("0123456789") != std::string::npos)
        return false;
    int sum = 0;
    for (std::size_t i = 0; i < text.size(); ++i)
        sum += (text[i] - '0') * (i % 2 == 0 ? 3 : 1);
    return sum % 10 == 0;
}

const Properties& serviceProperties()
{
    static const Properties kProperties = {
        number("logLevel", 0, 7, 3),
    };
    return kProperties;
}

const Properties& moduleProperties()
{
    static const Properties kProperties = {
        number("carrierId", 0, 255, 1),
        flag("carrierIdKept", 0),
        flag("debug", 0),
        number("powerMode", 0, 4, 0),
        flag("atm", 0),
        flag("atmActuate", 0),
        flag("dfsDaemon", 1),
        flag("mauiEnabled", 1),
        flag("webServer", 1),
        flag("mirror", 0),
        flag("transmitPowerCap", 0),
        number("thermalLevel", 0, 3, 0),
        flag("smartWiFiEnabled", 1),
        text("smartWiFiInterface", 0, 64, ""),
        flag("qslCfgSyncing", 0),
        flag("qcommEnabled", 1),
        number("qcommRole", 0, 2, 0),
        number("qcommPort", 1, 65535, 7777),
        number("qcommIntervalSeconds", 1, 3600, 10),
        text("qcommKey", 0, 32, ""),
    };
    return kProperties;
}

const Properties& radioProperties()
{
    static const Properties kProperties = {
        flag("enabled", 1),
        number("channel", 1, 233, 36),
        flag("autoChannel", 0),
        oneNumberOf("bandwidth", {20, 40, 80, 160}, 80),
        oneNumberOf("transmitPower", {100, 75, 50, 25, 12}, 100),
        oneTextOf("country", {"us", "eu", "jp"}, "eu"),
        oneTextOf("phyMode", {"11a", "11b", "11g", "11n", "11ac", "11ax"}, "11ac"),
        flag("shortGuardInterval", 1),
        flag("beamforming", 1),
        flag("multiUser", 1),
        flag("stbc", 1),
        flag("ldpc", 1),
        flag("legacyBaseband", 0),
        flag("disable11b", 0),
        flag("qhop", 0),
        flag("tdwrChannels", 0),
        flag("scs", 0),
        flag("nacMonitor", 0),
        number("nacMonitorPeriod", 0, 60000, 1000),
        number("nacMonitorOnTime", 0, 100, 10),
        flag("weatherCac", 1),
    };
    return kProperties;
}

const Properties& interfaceProperties()
{
    static const Properties kProperties = {
        flag("enabled", 1),
        text("ssid", 1, 32, "tarn"),
        flag("hidden", 0),
        number("priority", 0, 3, 0),
        number("ssidGroupId", 0, 15, 0),
        number("assocLimit", 0, 128, 0), // 0: no limit
        flag("intraBssIsolate", 0),
        flag("bssIsolate", 0),
        number("beaconInterval", 20, 1000, 100),
        number("dtim", 1, 255, 2),
        number("rtsThreshold", 0, 2347, 2347),
        flag("txAmsdu", 1),
        flag("airfair", 0),
        text("mcsRate", 1, 8, "auto"),
        number("macFilterMode", 0, 2, 0),
        oneTextOf("beaconType", {"open", "wpa", "wpa2", "wpa-wpa2", "wpa3"}, "wpa2"),
        oneTextOf("authenticationMode", {"open", "psk", "sae", "eap"}, "psk"),
        oneTextOf("encryptionModes", {"none", "tkip", "aes", "tkip-aes"}, "aes"),
        text("passphrase", 8, 63, "passphrase"),
        number("groupKeyInterval", 0, 86400, 3600),
        number("pmf", 0, 2, 1),
        flag("securityDeferMode", 0),
        text("radiusAddress", 0, 63, ""),
        number("radiusPort", 0, 65535, 1812),
        text("radiusSecret", 0, 63, ""),
        flag("wpsEnabled", 1),
        number("wpsConfigured", 0, 2, 2),
        flag("wpsUpnp", 0),
        flag("wpsApPinEnabled", 0),
        textThat("wpsApPin", isWpsPin, "a WPS PIN: eight digits, the last of which is the check digit", "12345670"),
        flag("roaming", 0),
        textThat("mobilityDomain", isMobilityDomain, "a mobility domain: four hexadecimal digits", "a1b2"),
        number("vlanCommand", 0, 2, 0),
        number("vlanId", 0, 4094, 0),
        number("thermalStart", 0, 150, 0),
        number("thermalStop", 0, 150, 0),
    };
    return kProperties;
}

const Properties& steeringProperties()
{
    static const Properties kProperties = {
        flag("steering", 1),
        number("rssiThreshold", 0, 100, 75), // dBm below zero
        number("rssiHysteresis", 0, 40, 5),
        number("loadThreshold", 0, 100, 60),
        number("holdSeconds", 0, 3600, 30),
        text("name", 0, 32, "home"),
        flag("bandSteering", 1),
        number("bandThreshold", 0, 100, 65), // dBm below zero
        number("kickSeconds", 0, 3600, 10),
        number("retryLimit", 0, 10, 3),
        text("uplink", 0, 32, ""),
    };
    return kProperties;
}

Settings::Settings(const Properties& properties) : properties_(&properties)
{
    for (const Property& property : properties)
        values_.emplace(property.name, property.initial);
}

const Property* Settings::property(std::string_view name) const
{
    const auto found =
        std::find_if(properties_->begin(), properties_->end(), [&](const Property& property) { return property.name == name; });
    return found == properties_->end() ? nullptr : &*found;
}

const Value& Settings::value(std::string_view name) const
{
    const auto found = values_.find(name);
    if (found == values_.end())
        throw std::logic_error("no setting " + std::string(name));
    return found->second;
}

std::uint32_t Settings::number(std::string_view name) const
{
    return std::get<std::uint32_t>(value(name));
}

const std::string& Settings::text(std::string_view name) const
{
    return std::get<std::string>(value(name));
}

void Settings::set(std::string_view name, const Value& value)
{
    const Property* known = property(name);
    if (known == nullptr)
        throw std::logic_error("no setting " + std::string(name));
    if (value.index() != known->initial.index() || !known->accepts(value))
        throw Refused{ReplyStatus::kInvalidValue};
    values_.find(name)->second = value;
}

} // namespace tarn::simulator
