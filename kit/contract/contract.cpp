#include "contract.h"

#include "embedded.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <set>
#include <unordered_map>
#include <utility>

namespace tarn::contract
{

namespace
{

std::vector<Contract> readEmbedded()
{
    std::vector<Contract> contracts;
    std::set<std::string> functions;
    for (std::size_t i = 0; i < kEmbeddedFileCount; ++i)
    {
        const EmbeddedFile& file = kEmbeddedFiles[i];
        contracts.push_back(parse(std::string_view(file.text, file.length), file.name));
        for (const Command& command : contracts.back().commands)
            if (!functions.insert(command.function).second)
                throw ContractError(std::string(file.name) + ": " + command.function +
                                    ": an earlier file has this function already");
    }
    return contracts;
}

const std::unordered_map<std::string_view, Row>& rowsByName()
{
    static const std::unordered_map<std::string_view, Row> byName = []
    {
        std::unordered_map<std::string_view, Row> result;
        for (const Row& row : rows())
            result.emplace(row.command->function, row);
        return result;
    }();
    return byName;
}

std::string lowered(std::string_view text)
{
    std::string result(text);
    for (char& character : result)
        character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    return result;
}

// How many characters have to be put in, taken out or replaced to turn one text into the other.
std::size_t editDistance(const std::string& from, const std::string& to)
{
    std::vector<std::size_t> costs(to.size() + 1);
    std::iota(costs.begin(), costs.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i)
    {
        std::size_t diagonal = costs[0];
        costs[0] = i + 1;
        for (std::size_t j = 0; j < to.size(); ++j)
        {
            const std::size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = costs[j + 1];
            costs[j + 1] = std::min({replaced, costs[j] + 1, costs[j + 1] + 1});
        }
    }
    return costs.back();
}

template <typename Enumeration, std::size_t Count>
const char* wordOf(const char* const (&words)[Count], Enumeration value)
{
    return words[static_cast<std::size_t>(value)];
}

} // namespace

bool Argument::isNumber() const
{
    return direction == Direction::kIn && (type == Type::kU32 || type == Type::kU16 || type == Type::kU8);
}

bool Argument::isPointer() const
{
    return direction == Direction::kOut || type == Type::kText || type == Type::kBytes;
}

const Argument* Command::argument(std::string_view name) const
{
    const auto found =
        std::find_if(arguments.begin(), arguments.end(), [&](const Argument& each) { return each.name == name; });
    return found == arguments.end() ? nullptr : &*found;
}

const Record* Contract::record(std::string_view name) const
{
    const auto found = std::find_if(records.begin(), records.end(), [&](const Record& each) { return each.name == name; });
    return found == records.end() ? nullptr : &*found;
}

const std::vector<Contract>& all()
{
    static const std::vector<Contract> contracts = readEmbedded();
    return contracts;
}

const std::vector<Row>& rows()
{
    static const std::vector<Row> everyRow = []
    {
        std::vector<Row> result;
        for (const Contract& contract : all())
            for (const Command& command : contract.commands)
                result.push_back({&contract, &command});
        return result;
    }();
    return everyRow;
}

Row find(std::string_view function)
{
    const auto found = rowsByName().find(function);
    return found == rowsByName().end() ? Row{} : found->second;
}

const Contract* findService(std::string_view service)
{
    for (const Contract& contract : all())
        if (contract.service == service)
            return &contract;
    return nullptr;
}

std::vector<std::string> suggestions(std::string_view function, std::size_t most)
{
    std::vector<std::string> names;
    for (const Row& row : rows())
        names.push_back(row.command->function);
    return suggestions(function, names, most);
}

std::vector<std::string> suggestions(std::string_view asked, const std::vector<std::string>& names, std::size_t most)
{
    const std::string wanted = lowered(asked);
    if (wanted.empty())
        return {};

    // A name that holds the whole text is what a user most likely meant; beyond that, a third of the letters may be wrong.
    std::vector<std::pair<std::size_t, std::string>> close;
    for (const std::string& name : names)
    {
        const std::string candidate = lowered(name);
        const std::size_t distance = editDistance(wanted, candidate);
        if (wanted.size() >= 3 && candidate.find(wanted) != std::string::npos)
            close.emplace_back(0, name);
        else if (distance <= std::max<std::size_t>(2, wanted.size() / 3))
            close.emplace_back(distance, name);
    }
    std::stable_sort(
        close.begin(), close.end(),
        [](const auto& left, const auto& right)
        { return std::make_pair(left.first, left.second.size()) < std::make_pair(right.first, right.second.size()); });

    std::vector<std::string> closest;
    for (std::size_t i = 0; i < std::min(most, close.size()); ++i)
        closest.push_back(close[i].second);
    return closest;
}

std::uint32_t impliedSize(Encoding encoding)
{
    switch (encoding)
    {
    case Encoding::kId:
    case Encoding::kWord:
    case Encoding::kInverted:
        return 4;
    case Encoding::kByte:
        return 1;
    default:
        return 0;
    }
}

const char* toString(Type type)
{
    static const char* const words[] = {"u32", "u16", "u8", "text", "bytes", "record"};
    return wordOf(words, type);
}

const char* toString(Direction direction)
{
    static const char* const words[] = {"in", "out"};
    return wordOf(words, direction);
}

const char* toString(Encoding encoding)
{
    static const char* const words[] = {"id",    "word",  "byte",   "inverted", "text",
                                        "block", "words", "record", "size",     "nothing"};
    return wordOf(words, encoding);
}

const char* toString(When when)
{
    static const char* const words[] = {"null", "null or empty", "zero"};
    return wordOf(words, when);
}

} // namespace tarn::contract
