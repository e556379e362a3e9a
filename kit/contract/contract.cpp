#include "contract.h"

#include "words.h"

#include <algorithm>
#include <unordered_map>

namespace tarn::contract
{

namespace
{

const std::unordered_map<std::string_view, Row>& rowsByName()
{
    static const std::unordered_map<std::string_view, Row> kByName = []
    {
        std::unordered_map<std::string_view, Row> result;
        for (const Row& row : rows())
            result.emplace(row.command->function, row);
        return result;
    }();
    return kByName;
}

template <typename Enumeration, std::size_t count>
const char* wordOf(const char* const (&words)[count], Enumeration value)
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
        std::find_if(arguments.begin(), arguments.end(), [&](const Argument& argument) { return argument.name == name; });
    return found == arguments.end() ? nullptr : &*found;
}

const RecordType* Contract::record(std::string_view name) const
{
    const auto found =
        std::find_if(records.begin(), records.end(), [&](const RecordType& record) { return record.name == name; });
    return found == records.end() ? nullptr : &*found;
}

const std::vector<Row>& rows()
{
    static const std::vector<Row> kRows = []
    {
        std::vector<Row> result;
        for (const Contract& contract : all())
            for (const Command& command : contract.commands)
                result.push_back({&contract, &command});
        return result;
    }();
    return kRows;
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
    return wordOf(kTypeWords, type);
}

const char* toString(Direction direction)
{
    return wordOf(kDirectionWords, direction);
}

const char* toString(Encoding encoding)
{
    return wordOf(kEncodingWords, encoding);
}

const char* toString(When when)
{
    return wordOf(kWhenWords, when);
}

const char* toString(Effect effect)
{
    return wordOf(kEffectWords, effect);
}

} // namespace tarn::contract
