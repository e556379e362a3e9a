// `tarnctl layout`: the layout by which records are shown, as a list, as a C header, and whether a file is sound.
#include "base/join.h"
#include "base/json_reader.h"
#include "base/suggestions.h"
#include "layout/c_header.h"
#include "tarnctl/fields.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/values.h"
#include "tarnctl/verbs/verbs.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

constexpr char kLayoutHelp[] = R"(Actions:
  show [NAME]   what the layout describes; with the name of a record, of a block
                (FUNCTION.ARGUMENT) or of an event, its fields
  check FILE    whether a layout file is sound: it is read, and errors name the
                place and what was expected
  header        a header for C and C++ that reads and writes the fields

Examples:
  tarnctl layout show TarnRadioData
  tarnctl --layout gateway.json layout header > gateway_records.h)";

struct LayoutOptions
{
    std::string action;
    std::optional<std::string> name;
};

std::vector<std::string> layoutActions()
{
    return {"show", "check", "header"};
}

void declareLayout(Syntax& syntax, LayoutOptions& options)
{
    syntax.text("ACTION", options.action, "show, check or header");
    syntax.text("NAME", options.name, "What to show; the file to check");
    syntax.footer(kLayoutHelp);
}

const LayoutInUse& neededLayout()
{
    const LayoutInUse* const inUse = layoutInUse();
    if (inUse == nullptr)
        throw UsageError(std::string("there is no layout; ") + kHowToGiveALayout);
    return *inUse;
}

Json documentOf(const std::string& action, const LayoutInUse& inUse)
{
    Json document = Console::document("layout");
    document["action"] = action;
    document["layout"] = layoutDocument(&inUse);
    document["source"] = inUse.source;
    return document;
}

// --- show -------------------------------------------------------------------------------------------------------------------

std::string meaningText(const layout::Meaning& meaning)
{
    std::vector<std::string> parts;
    if (!meaning.unit.empty())
        parts.push_back(meaning.unit);
    if (meaning.values != nullptr)
        parts.push_back(base::join(meaning.values->values, ", ",
                                   [](const layout::NamedValue& value)
                                   { return std::to_string(value.value) + " " + value.name; }));
    if (!meaning.flags.empty())
        parts.push_back(base::join(
            meaning.flags, ", ", [](const layout::Flag& flag) { return "bit " + std::to_string(flag.bit) + " " + flag.name; }));
    if (!meaning.texts.empty())
        parts.push_back(base::join(meaning.texts));
    if (!meaning.description.empty())
        parts.push_back(meaning.description);
    return base::join(parts, "; ");
}

void addFields(Table& table, const std::vector<layout::Field>& fields, const std::string& prefix)
{
    for (const layout::Field& field : fields)
    {
        const bool isArray = field.type == layout::FieldType::kArray;
        const std::string type = toString(field.type) + (isArray ? " of " + std::to_string(field.count) : std::string());
        table.add(
            {std::to_string(field.offset), std::to_string(field.size), prefix + field.name, type, meaningText(field.meaning)});
        if (isArray)
            addFields(table, field.elementFields, prefix + field.name + "[]" + (field.hasPlainElements() ? "" : "."));
    }
}

std::vector<const layout::Structure*> structuresOf(const layout::Layout& layout)
{
    std::vector<const layout::Structure*> all;
    for (const std::vector<layout::Structure>* kind : {&layout.records, &layout.blocks, &layout.events})
        for (const layout::Structure& structure : *kind)
            all.push_back(&structure);
    return all;
}

void writeStructure(const Console& console, const layout::Layout& layout, const std::string& name)
{
    std::vector<std::string> names;
    for (const layout::Structure* structure : structuresOf(layout))
    {
        names.push_back(structure->name);
        if (structure->name != name)
            continue;
        console.out << name << ", " << structure->size << " bytes\n";
        Table table("  ");
        table.add({"offset", "bytes", "field", "type", "meaning"});
        addFields(table, structure->fields, "");
        table.write(console.out);
        console.out << "layout: " << layout.title() << '\n';
        return;
    }
    throw UsageError("the layout " + layout.title() + " has no record, block or event " + inQuotes(name),
                     base::suggestions(name, names));
}

void writeOverview(const Console& console, const LayoutInUse& inUse)
{
    console.out << "layout: " << inUse.layout.title() << "\nsource: " << inUse.source << "\n\n";
    Table table;
    table.add({"bytes", "fields", "name"});
    for (const layout::Structure* structure : structuresOf(inUse.layout))
        table.add({std::to_string(structure->size), std::to_string(structure->fields.size()), structure->name});
    table.write(console.out);
    console.out << "\narguments that are words or texts: " << inUse.layout.arguments.size() << '\n';
    Table statuses;
    statuses.add({"", "status", "name", "text", "services"});
    for (const layout::Status& status : inUse.layout.statuses)
        statuses.add({"", std::to_string(static_cast<std::int32_t>(status.number)), status.name, status.text,
                      status.services.empty() ? "all" : base::join(status.services)});
    statuses.write(console.out);
}

ExitCode show(const Console& console, const std::string& name)
{
    const LayoutInUse& inUse = neededLayout();
    if (console.json)
    {
        Json document = documentOf("show", inUse);
        document["file"] = Json::parse(inUse.text);
        console.write(document);
    }
    else if (name.empty())
        writeOverview(console, inUse);
    else
        writeStructure(console, inUse.layout, name);
    return ExitCode::kSuccess;
}

// --- check and header -------------------------------------------------------------------------------------------------------

ExitCode check(const Console& console, const std::string& file)
{
    if (file.empty())
        throw UsageError("layout check: expected the name of a layout file");
    LayoutInUse checked;
    checked.source = file;
    try
    {
        checked.layout = layout::read(file);
    }
    catch (const base::JsonError& error)
    {
        return console.fail(ExitCode::kOther, error.what());
    }
    if (console.json)
        console.write(documentOf("check", checked));
    else
        console.out << file << ": sound: " << checked.layout.title() << '\n';
    return ExitCode::kSuccess;
}

ExitCode header(const Console& console)
{
    const LayoutInUse& inUse = neededLayout();
    const std::string text = layout::cHeader(inUse.layout);
    if (!console.json)
    {
        console.out << text;
        return ExitCode::kSuccess;
    }
    Json document = documentOf("header", inUse);
    document["header"] = text;
    console.write(document);
    return ExitCode::kSuccess;
}

ExitCode layoutAction(const Console& console, const LayoutOptions& options)
{
    if (options.action == "show")
        return show(console, options.name.value_or(""));
    if (options.action == "check")
        return check(console, options.name.value_or(""));
    if (options.action == "header" && options.name)
        throw UsageError("layout header: expected no name, and the file by --layout; got " + inQuotes(*options.name));
    if (options.action == "header")
        return header(console);
    throw UsageError("layout: expected one of " + base::join(layoutActions()) + "; got " + inQuotes(options.action),
                     base::suggestions(options.action, layoutActions()));
}

} // namespace

void addLayout(Verbs& verbs)
{
    verbs.add("layout", "Shows, checks and converts layouts", &declareLayout, &layoutAction, &layoutActions);
}

} // namespace tarn::ctl
