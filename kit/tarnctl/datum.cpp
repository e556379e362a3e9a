#include "datum.h"

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

std::int64_t Datum::number() const
{
    if (const double* number = std::get_if<double>(&value_))
        return static_cast<std::int64_t>(*number);
    const std::int64_t* number = std::get_if<std::int64_t>(&value_);
    return number == nullptr ? 0 : *number;
}

std::string Datum::plain() const
{
    return text() == nullptr ? json().dump() : *text();
}

Json Datum::json() const
{
    if (list() == nullptr)
        return std::visit(
            [](const auto& value) -> Json
            {
                using Value = std::decay_t<decltype(value)>;
                if constexpr (std::is_same_v<Value, std::monostate> || std::is_same_v<Value, List>)
                    return nullptr;
                else
                    return value;
            },
            value_);
    Json array = Json::array();
    for (const Datum& item : *list())
        array.push_back(item.json());
    return array;
}

Datum datumOf(const Json& json)
{
    if (json.is_number_integer())
        return json.get<std::int64_t>();
    if (json.is_number())
        return json.get<double>();
    if (json.is_string())
        return json.get<std::string>();
    if (!json.is_array())
        return {};
    Datum::List list;
    for (const Json& item : json)
        list.push_back(datumOf(item));
    return list;
}

} // namespace tarn::ctl
