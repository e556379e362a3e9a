#include "layout.h"

#include "base/embedded_files.h"
#include "base/json_reader.h"
#include "words.h"

#include <algorithm>
#include <charconv>

namespace tarn::layout
{

const std::vector<base::EmbeddedFile>& embeddedFiles();

namespace
{

constexpr char kSimulatedFile[] = "tarn-gateway.json";

template <typename Named>
const Named* findNamed(const std::vector<Named>& all, std::string_view name)
{
    const auto found = std::find_if(all.begin(), all.end(), [&](const Named& each) { return each.name == name; });
    return found == all.end() ? nullptr : &*found;
}

template <typename Item, typename Matches>
const Item* findWhere(const std::vector<Item>& all, Matches matches)
{
    const auto found = std::find_if(all.begin(), all.end(), matches);
    return found == all.end() ? nullptr : &*found;
}

std::string qualified(std::string_view function, std::string_view argument)
{
    return std::string(function) + "." + std::string(argument);
}

} // namespace

const NamedValue* ValueSet::find(std::int64_t value) const
{
    return findWhere(values, [&](const NamedValue& each) { return each.value == value; });
}

const NamedValue* ValueSet::find(std::string_view valueName) const
{
    return findNamed(values, valueName);
}

const Field* Structure::field(std::string_view fieldName) const
{
    return findNamed(fields, fieldName);
}

std::optional<FieldPlace> Structure::place(std::string_view path) const
{
    const std::size_t bracket = path.find('[');
    const Field* const outer = field(path.substr(0, bracket));
    if (outer == nullptr || bracket == std::string_view::npos)
        return outer == nullptr ? std::nullopt : std::optional<FieldPlace>({outer, outer->offset});

    std::uint32_t index = 0;
    const char* const end = path.data() + path.size();
    const auto [rest, error] = std::from_chars(path.data() + bracket + 1, end, index);
    if (outer->type != FieldType::kArray || error != std::errc() || rest == end || *rest != ']' || index >= outer->count)
        return std::nullopt;
    std::string_view nested(rest + 1, static_cast<std::size_t>(end - rest - 1));
    if (nested.empty() != outer->hasPlainElements() || (!nested.empty() && nested.front() != '.'))
        return std::nullopt;
    if (!nested.empty())
        nested.remove_prefix(1);
    const Field* const inner = findNamed(outer->elementFields, nested);
    if (inner == nullptr)
        return std::nullopt;
    return FieldPlace{inner, outer->offset + index * outer->stride + inner->offset};
}

std::optional<std::uint32_t> Selection::bit(std::string_view field) const
{
    const Flag* const flag = findNamed(fields, field);
    return flag == nullptr ? std::nullopt : std::optional<std::uint32_t>(flag->bit);
}

bool Status::isOf(std::string_view service) const
{
    return services.empty() || std::find(services.begin(), services.end(), service) != services.end();
}

const Structure* Layout::record(std::string_view recordName) const
{
    return findNamed(records, recordName);
}

const Structure* Layout::block(std::string_view functionAndArgument) const
{
    return findNamed(blocks, functionAndArgument);
}

const Structure* Layout::event(std::string_view eventName) const
{
    return findNamed(events, eventName);
}

const Structure* Layout::structureOf(const contract::Command& command, const contract::Argument& argument) const
{
    return argument.record.empty() ? block(qualified(command.function, argument.name)) : record(argument.record);
}

const Meaning* Layout::meaningOf(std::string_view function, std::string_view argument) const
{
    const auto found = arguments.find(qualified(function, argument));
    return found == arguments.end() ? nullptr : &found->second;
}

const Selection* Layout::selectionOf(std::string_view function, std::string_view selected) const
{
    return findWhere(selections, [&](const Selection& each) { return each.function == function && each.selected == selected; });
}

const Status* Layout::status(std::string_view service, std::uint32_t number) const
{
    return findWhere(statuses, [&](const Status& each) { return each.number == number && each.isOf(service); });
}

const Status* Layout::statusNamed(std::string_view service, std::string_view statusName) const
{
    return findWhere(statuses, [&](const Status& each) { return each.name == statusName && each.isOf(service); });
}

std::string Layout::title() const
{
    return name + " " + version + " (" + owner + ")";
}

const Layout& simulated()
{
    static const Layout kLayout = parse(simulatedText(), kSimulatedFile);
    return kLayout;
}

std::string_view simulatedText()
{
    return base::embeddedText(embeddedFiles(), kSimulatedFile);
}

const char* toString(FieldType type)
{
    return kFieldTypeWords[static_cast<std::size_t>(type)];
}

} // namespace tarn::layout
