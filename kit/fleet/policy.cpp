#include "policy.h"
#include "lines.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace tarn::fleet
{

namespace
{

constexpr std::size_t kLongestRule = 255;
constexpr std::uint32_t kMostCalls = 1000000;

// 0 if it is no unit.
std::uint32_t millisecondsOf(const char* unit)
{
    if (isEqual(unit, "s"))
        return 1000;
    if (isEqual(unit, "min"))
        return 60 * 1000;
    return isEqual(unit, "h") ? 60 * 60 * 1000 : 0;
}

bool parseRate(const char* text, Rate& rate)
{
    if (std::isdigit(static_cast<unsigned char>(*text)) == 0)
        return false;
    char* end = nullptr;
    errno = 0;
    const unsigned long calls = std::strtoul(text, &end, 10);
    if (errno != 0 || calls == 0 || calls > kMostCalls || *end != '/')
        return false;
    rate.calls = static_cast<std::uint32_t>(calls);
    rate.milliseconds = millisecondsOf(end + 1);
    return rate.milliseconds != 0;
}

// Which functions a rule is about.
struct Selection
{
    std::size_t service = kContractServiceCount; // all services
    bool reads = true;
    bool changes = true;
    std::size_t function = kContractFunctionCount; // any

    bool matches(std::size_t at) const
    {
        const ContractFunction& each = kContractFunctions[at];
        if (service != kContractServiceCount && each.service != service)
            return false;
        // A command may have several functions, and the gateway sees the command.
        if (function != kContractFunctionCount)
            return each.command == kContractFunctions[function].command;
        return each.reads ? reads : changes;
    }
};

// `reads`, `changes` and `*` say which of the functions.
bool selectKind(const char* word, Selection& selection)
{
    selection.reads = isEqual(word, "reads") || isEqual(word, "*");
    selection.changes = isEqual(word, "changes") || isEqual(word, "*");
    return selection.reads || selection.changes;
}

bool selectFunction(const char* name, Selection& selection)
{
    for (std::size_t at = 0; at < kContractFunctionCount; ++at)
        if (kContractFunctions[at].service == selection.service && isEqual(kContractFunctions[at].name, name))
            selection.function = at;
    return selection.function != kContractFunctionCount;
}

} // namespace

// The words of a line, and the place for what is wrong with it.
class Policy::Line
{
public:
    static constexpr std::size_t kMostWords = 4; // one more than any rule has

    explicit Line(const char* text, const Problem& wrong) : problem(wrong)
    {
        std::snprintf(text_, sizeof text_, "%s", text);
        text_[std::strcspn(text_, "#")] = '\0';
        char* rest = nullptr;
        for (char* word = strtok_r(text_, " \t\r", &rest); word != nullptr && count_ < kMostWords;
             word = strtok_r(nullptr, " \t\r", &rest))
            words_[count_++] = word;
    }

    std::size_t count() const
    {
        return count_;
    }
    const char* word(std::size_t at) const
    {
        return words_[at];
    }

    const Problem problem;

private:
    char text_[kLongestRule + 1];
    const char* words_[kMostWords] = {};
    std::size_t count_ = 0;
};

Policy Policy::ofReading()
{
    Policy policy;
    for (std::size_t at = 0; at < kContractFunctionCount; ++at)
        policy.allowed_[at] = kContractFunctions[at].reads;
    return policy;
}

bool Policy::add(const char* line, char* problem, std::size_t size)
{
    const Line words(line, Problem{problem, size});
    if (std::strlen(line) > kLongestRule)
        return words.problem.say("expected at most %u characters in a line", static_cast<unsigned>(kLongestRule));
    if (words.count() == 0)
        return true;
    if (isEqual(words.word(0), "allow"))
        return addRule(true, words);
    if (isEqual(words.word(0), "deny"))
        return addRule(false, words);
    if (isEqual(words.word(0), "rate"))
        return addRate(words);
    return words.problem.say("expected allow, deny or rate, not %s", words.word(0));
}

bool Policy::addRule(bool isAllowed, const Line& line)
{
    Selection selection;
    const char* action = line.word(0);
    if (line.count() != 2 && line.count() != 3)
        return line.problem.say("expected %s reads, %s changes, %s *, or %s SERVICE and one of these or a function", action,
                                action, action, action);
    if (line.count() == 2 && !selectKind(line.word(1), selection))
        return line.problem.say("expected reads, changes, *, or a service and a function, not %s alone", line.word(1));
    if (line.count() == 3)
    {
        selection.service = findService(line.word(1));
        if (selection.service == kContractServiceCount)
            return line.problem.say("expected the service TARN, QTN_RPC_PROXY or QTN_MIRROR, not %s", line.word(1));
        if (!selectKind(line.word(2), selection) && !selectFunction(line.word(2), selection))
            return line.problem.say("expected reads, changes, * or a function of %s, not %s", line.word(1), line.word(2));
    }
    for (std::size_t at = 0; at < kContractFunctionCount; ++at)
        if (selection.matches(at))
            allowed_[at] = isAllowed;
    return true;
}

bool Policy::addRate(const Line& line)
{
    const bool isOfChanges = line.count() == 3 && isEqual(line.word(1), "changes");
    Rate rate;
    if ((line.count() != 2 && !isOfChanges) || !parseRate(line.word(line.count() - 1), rate))
        return line.problem.say("expected rate NUMBER/s or rate changes NUMBER/s, with 1 to %u, and s, min or h",
                                unsigned{kMostCalls});
    (isOfChanges ? rateOfChanges_ : rate_) = rate;
    return true;
}

bool Policy::read(const char* fileName, char* problem, std::size_t size)
{
    const auto take = [](void* self, char* line, const Problem& wrong)
    { return static_cast<Policy*>(self)->add(line, wrong.text, wrong.size); };
    return readLines(fileName, "a file of a policy", kLongestRule, take, this, Problem{problem, size});
}

} // namespace tarn::fleet
