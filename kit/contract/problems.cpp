#include "contract.h"

#include "base/join.h"

#include <algorithm>
#include <cstdint>
#include <set>

namespace tarn::contract
{

namespace
{

std::string span(std::uint32_t offset, std::uint32_t size)
{
    return std::to_string(size) + " bytes at " + std::to_string(offset);
}

// Which encodings go with an argument's type and direction, as a text for the error; empty if this one does.
std::string misfit(const Argument& argument)
{
    const auto goesWith = [&](std::initializer_list<Encoding> encodings)
    {
        if (std::find(encodings.begin(), encodings.end(), argument.encoding) != encodings.end())
            return std::string();
        const std::string expected = base::join(encodings, ", ", [](Encoding encoding) { return toString(encoding); });
        return std::string("the encoding ") + toString(argument.encoding) + " does not go with " + toString(argument.type) +
               " " + toString(argument.direction) + "; expected one of " + expected;
    };

    if (argument.direction == Direction::kIn)
        switch (argument.type)
        {
        case Type::kU32:
            return goesWith({Encoding::kId, Encoding::kWord, Encoding::kInverted, Encoding::kSize});
        case Type::kU16:
            return goesWith({Encoding::kWord});
        case Type::kU8:
            return goesWith({Encoding::kWord, Encoding::kByte});
        case Type::kText:
            return goesWith({Encoding::kText, Encoding::kBlock});
        case Type::kBytes:
            return goesWith({Encoding::kBlock});
        case Type::kRecord:
            return goesWith({Encoding::kRecord});
        }
    switch (argument.type)
    {
    case Type::kU32:
        return goesWith({Encoding::kWord, Encoding::kWords, Encoding::kNothing});
    case Type::kU16:
        return "an output of type u16 is not known";
    case Type::kU8:
        return goesWith({Encoding::kByte, Encoding::kNothing});
    case Type::kText:
        return goesWith({Encoding::kText, Encoding::kBlock, Encoding::kNothing});
    case Type::kBytes:
        return goesWith({Encoding::kBlock, Encoding::kWords, Encoding::kNothing});
    case Type::kRecord:
        return goesWith({Encoding::kRecord, Encoding::kWords, Encoding::kNothing});
    }
    return "the type is not known";
}

// Collects what is wrong with one command.
class CommandProblems
{
public:
    CommandProblems(const Contract& contract, const Command& command, std::vector<std::string>& found)
        : contract_(contract), command_(command), found_(found)
    {
    }

    void find()
    {
        if (command_.length < 8 || command_.length % 4 != 0)
            add("length: expected a multiple of 4, 8 or more, not " + std::to_string(command_.length));
        if (command_.wait == 0)
            add("wait: expected 1 or more");
        for (const Argument& argument : command_.arguments)
            verifyArgument(argument);
        verifyOverlaps();
        verifySizeArguments();
        for (const Check& check : command_.checks)
            verifyCheck(check);
    }

private:
    void add(const std::string& text)
    {
        found_.push_back(command_.function + ": " + text);
    }

    void verifyArgument(const Argument& argument)
    {
        const auto sameName = [&](const Argument& other) { return other.name == argument.name; };
        if (&*std::find_if(command_.arguments.begin(), command_.arguments.end(), sameName) != &argument)
            add(argument.name + ": an earlier argument has this name already");
        if (const std::string text = misfit(argument); !text.empty())
            add(argument.name + ": " + text);
        if (argument.isSigned && (argument.type != Type::kU32 || argument.direction != Direction::kOut))
            add(argument.name + ": only an output of words can be signed");
        if (argument.optional && !argument.isPointer())
            add(argument.name + ": only a pointer can be optional");
        verifyPlace(argument);
        verifyRecord(argument);
    }

    void verifyPlace(const Argument& argument)
    {
        if (argument.encoding == Encoding::kSize || argument.encoding == Encoding::kNothing)
            return;
        const std::uint32_t implied = impliedSize(argument.encoding);
        if (implied != 0 && (argument.size != implied || !argument.sizeArgument.empty()))
            add(argument.name + ": expected a size of " + std::to_string(implied) + " for the encoding " +
                toString(argument.encoding));
        if (implied == 0 && (argument.size == 0) == argument.sizeArgument.empty())
            add(argument.name + ": expected either a size or a size_argument");
        // 64 bits, as offset and size may be anything here.
        const std::uint64_t end = std::uint64_t{argument.offset} + std::max<std::uint32_t>(argument.size, 1);
        if (end > command_.length)
            add(argument.name + ": " + span(argument.offset, argument.size) + " run out of the message of " +
                std::to_string(command_.length));
        else if (end > command_.statusOffset())
            add(argument.name + ": " + span(argument.offset, argument.size) + " run into the reply status at " +
                std::to_string(command_.statusOffset()));

        const bool isWord = argument.encoding == Encoding::kId || argument.encoding == Encoding::kWord ||
                            argument.encoding == Encoding::kInverted || argument.encoding == Encoding::kWords;
        if (isWord && (argument.offset % 4 != 0 || argument.size % 4 != 0))
            add(argument.name + ": " + span(argument.offset, argument.size) + " are no words; expected multiples of 4");
    }

    void verifyRecord(const Argument& argument)
    {
        if (argument.type != Type::kRecord)
            return;
        const RecordType* const record = contract_.record(argument.record);
        if (record == nullptr)
            add(argument.name + ": the record " + argument.record + " is not in \"records\"");
        else if (argument.encoding != Encoding::kNothing && record->size != argument.size)
            add(argument.name + ": the record " + argument.record + " has " + std::to_string(record->size) + " bytes, not " +
                std::to_string(argument.size));
    }

    void verifyOverlaps()
    {
        const auto isSent = [](const Argument& argument)
        { return argument.direction == Direction::kIn && argument.encoding != Encoding::kSize; };
        for (std::size_t i = 0; i < command_.arguments.size(); ++i)
            for (std::size_t j = i + 1; j < command_.arguments.size(); ++j)
            {
                const Argument& left = command_.arguments[i];
                const Argument& right = command_.arguments[j];
                if (isSent(left) && isSent(right) && left.offset < std::uint64_t{right.offset} + right.size &&
                    right.offset < std::uint64_t{left.offset} + left.size)
                    add(right.name + ": " + span(right.offset, right.size) + " overlap " + left.name + ", " +
                        span(left.offset, left.size));
            }
    }

    void verifySizeArguments()
    {
        std::set<std::string> used;
        for (const Argument& argument : command_.arguments)
        {
            if (argument.sizeArgument.empty())
                continue;
            used.insert(argument.sizeArgument);
            const Argument* const size = command_.argument(argument.sizeArgument);
            if (size == nullptr || size->encoding != Encoding::kSize)
                add(argument.name + ": size_argument: expected the name of an argument with the encoding size, not " +
                    argument.sizeArgument);
            if (argument.direction != Direction::kOut ||
                (argument.encoding != Encoding::kText && argument.encoding != Encoding::kBlock))
                add(argument.name + ": size_argument: expected at a text or block that is written only");
        }
        for (const Argument& argument : command_.arguments)
            if (argument.encoding == Encoding::kSize && used.count(argument.name) == 0)
                add(argument.name + ": no argument names it as its size_argument");
    }

    void verifyCheck(const Check& check)
    {
        const Argument* const argument = command_.argument(check.argument);
        if (argument == nullptr)
        {
            add("checks: there is no argument " + check.argument);
            return;
        }
        if (check.when == When::kNull && !argument->isPointer())
            add("checks: " + check.argument + " is no pointer, so it cannot be null");
        if (check.when == When::kNullOrEmpty && (argument->type != Type::kText || argument->direction != Direction::kIn))
            add("checks: " + check.argument + " is no text that is sent, so it cannot be empty");
        if (check.when == When::kZero && !argument->isNumber())
            add("checks: " + check.argument + " is no number, so it cannot be zero");
        if (argument->optional)
            add("checks: " + check.argument + " is optional, so it is not refused");
        if (check.message.find('%') != std::string::npos)
            add("checks: the message \"" + check.message + "\" holds a %, and it is traced as a format");
        const auto sameArgument = [&](const Check& other) { return other.argument == check.argument; };
        if (&*std::find_if(command_.checks.begin(), command_.checks.end(), sameArgument) != &check)
            add("checks: " + check.argument + " is checked twice");
    }

    const Contract& contract_;
    const Command& command_;
    std::vector<std::string>& found_;
};

void verifyEvents(const Contract& contract, std::vector<std::string>& found)
{
    std::set<std::uint32_t> numbers;
    std::set<std::string> names;
    for (const Event& event : contract.events)
    {
        if (!numbers.insert(event.event).second)
            found.push_back("events: the number " + std::to_string(event.event) + " is given twice");
        if (!names.insert(event.name).second)
            found.push_back("events: the name " + event.name + " is given twice");
    }
}

} // namespace

std::vector<std::string> problems(const Contract& contract)
{
    std::vector<std::string> found;
    if (contract.service.empty() || contract.service.size() > 31)
        found.push_back("service: expected 1 to 31 characters");
    if (contract.commands.empty())
        found.push_back("commands: expected one or more");
    verifyEvents(contract, found);

    std::set<std::string> functions;
    const Command* previous = nullptr;
    for (const Command& command : contract.commands)
    {
        if (!functions.insert(command.function).second)
            found.push_back(command.function + ": an earlier command has this function already");
        if (previous != nullptr && command.command < previous->command)
            found.push_back(command.function + ": command " + std::to_string(command.command) + " comes after command " +
                            std::to_string(previous->command) + "; expected ascending order");
        if (previous != nullptr && command.command == previous->command && command.effect != previous->effect)
            found.push_back(command.function + ": effect: " + previous->function + " has the same command and another effect");
        previous = &command;
        CommandProblems(contract, command, found).find();
    }
    return found;
}

} // namespace tarn::contract
