#include "document.h"

#include "base/join.h"
#include "base/json_reader.h"
#include "tarnctl/console.h"
#include "tarnctl/terminal_text.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/values.h"

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

constexpr char kWhatIsRead[] = "a report that tarnctl report --json FILE wrote";

std::string shownText(const Json& value)
{
    return value.is_string() ? printable(value.get<std::string>()) : value.dump();
}

std::string objectTitle(const Json& subject)
{
    std::string name = printable(subject.value("name", ""));
    if (subject.contains("interface"))
        return name;
    if (!subject.contains("radio"))
        return "gateway";
    return "radio " + subject["radio"].dump() + (name.empty() ? "" : " (" + name + ")");
}

// The keys that are read later, with their kinds.
void check(base::JsonObject answer)
{
    static_cast<void>(answer["function"].text());
    base::JsonObject subject = answer["subject"].object();
    for (const char* const key : {"radio", "interface", "index"})
        if (const base::JsonValue number = subject[key])
            static_cast<void>(number.number<std::uint32_t>());
    for (const char* const key : {"name", "station"})
        if (const base::JsonValue text = subject[key])
            static_cast<void>(text.text());
}

void checkField(const std::pair<std::string, base::JsonValue>& member)
{
    base::JsonObject field = member.second.object();
    if (!field["value"])
        field.fail("a value, which may be null");
    for (const char* const key : {"volatile", "hidden", "secret"})
        if (const base::JsonValue said = field[key])
            static_cast<void>(said.boolean());
    for (const char* const key : {"name", "unit", "hex"})
        if (const base::JsonValue said = field[key])
            static_cast<void>(said.text());
}

void check(const base::JsonDocument& document)
{
    base::JsonObject root = document.root().object();
    const base::JsonValue kind = root["kind"];
    const std::string* const found = kind.textOrNull();
    if (found == nullptr || *found != "report")
        kind.fail(std::string("\"report\", ") + kWhatIsRead);
    const base::JsonValue schema = root["schema"];
    if (const std::string* const version = schema.textOrNull(); version == nullptr || *version != kSchema)
        schema.fail(inQuotes(kSchema) + "; a report of another version cannot be compared");
    static_cast<void>(root["time"].text());
    for (base::JsonObject& service : root["services"].objects())
    {
        static_cast<void>(service["service"].text());
        static_cast<void>(service["answered"].boolean());
    }
    for (base::JsonObject& answer : root["answers"].objects())
    {
        check(answer);
        for (const auto& member : answer["fields"].members())
            checkField(member);
    }
    for (base::JsonObject& refusal : root["refused"].objects())
    {
        check(refusal);
        static_cast<void>(refusal["message"].text());
    }
}

} // namespace

std::string subjectTitle(const Json& subject)
{
    std::string title = objectTitle(subject);
    if (subject.contains("station"))
        title += ", station " + printable(subject["station"].get<std::string>());
    else if (subject.contains("index"))
        title += ", entry " + subject["index"].dump();
    return title;
}

Cell fieldCell(const Json& field)
{
    Cell cell;
    if (field.value("hidden", false))
    {
        cell.shown = field.contains("bytes") ? "(" + field["bytes"].dump() + " bytes, left out)" : "(hidden)";
        return cell;
    }
    cell.value = datumOf(field["value"]);
    cell.hasNames = field.contains("name") || field.contains("flags");
    cell.name = field.value("name", "");
    if (field.contains("flags"))
        cell.name = base::join(field["flags"], ", ", shownText);
    cell.unit = field.value("unit", "");
    if (field.contains("hex"))
        cell.shown = shownText(field["value"]) + " (" + field["hex"].get<std::string>() + ")";
    return cell;
}

Fields fieldsOf(const Json& answer)
{
    Fields fields;
    for (const auto& [path, field] : answer["fields"].items())
        if (path.find('[') == std::string::npos)
            fields.set(path.substr(path.rfind('.') + 1), fieldCell(field)); // the whole path if there is no dot
    return fields;
}

Json readReport(const std::string& path)
try
{
    const std::string text = base::readText(path, kWhatIsRead);
    check(base::parseJson(text, path));
    return Json::parse(text);
}
catch (const base::JsonError& error)
{
    throw UsageError(error.what());
}

} // namespace tarn::ctl
