#include "questions.h"

#include "tarnctl/values.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tarn::ctl
{

namespace
{

bool endsWith(std::string_view text, std::string_view end)
{
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// A command with an output reads; the contract has none that also changes what it reads.
bool reads(const LibraryFunction& function)
{
    return function.kind == FunctionKind::kCommand && std::any_of(function.parameters.begin(), function.parameters.end(),
                                                                  [](const FunctionParameter& each) { return each.isOutput; });
}

const LibraryFunction* functionOrNull(const std::string& name)
{
    for (const LibraryFunction& function : catalogue())
        if (function.name == name)
            return &function;
    return nullptr;
}

// Where the input belongs in the question; null if it is of another kind.
const FunctionParameter** placeOf(Question& question, const FunctionParameter& input)
{
    if (input.wire == nullptr)
        return nullptr;
    if (input.wire->encoding == contract::Encoding::kId)
        return input.name == "radioId" ? &question.radio : &question.object;
    if (input.form == Form::kText && (input.name == "ifname" || input.name == "intf_name"))
        return &question.interface;
    if (input.form == Form::kBytes && input.size == kMacAddressSize)
        return &question.station;
    const bool isIndex = endsWith(input.name, "index") || endsWith(input.name, "Index");
    return input.form == Form::kNumber && isIndex ? &question.index : nullptr;
}

Scope scopeOf(const Question& question)
{
    if (question.station != nullptr)
        return Scope::kStation;
    if (question.object != nullptr || question.interface != nullptr)
        return Scope::kInterface;
    return question.radio != nullptr ? Scope::kRadio : Scope::kGateway;
}

// How many radio chains there are tells TarnGetRadioChainNumber for TarnGetRadioChainRssiAt: the same name up to a word's end.
const LibraryFunction* numberFunction(const std::string& name)
{
    if (!endsWith(name, "At"))
        return nullptr;
    for (std::size_t length = name.size() - 2; length > 0; --length)
    {
        const bool isWordEnd = name[length] >= 'A' && name[length] <= 'Z';
        for (const char* const ending : {"Num", "Number"})
            if (const LibraryFunction* const found = isWordEnd ? functionOrNull(name.substr(0, length) + ending) : nullptr)
                return found;
    }
    return nullptr;
}

} // namespace

Questions allQuestions()
{
    Questions all;
    for (const LibraryFunction& function : catalogue())
    {
        if (!reads(function))
            continue;
        Question question;
        question.function = &function;
        std::vector<std::string> needs;
        for (const FunctionParameter& parameter : function.parameters)
        {
            if (!parameter.isInput || parameter.saysSize || parameter.null == Null::kAllowed)
                continue;
            if (const FunctionParameter** const place = placeOf(question, parameter))
                *place = &parameter;
            else
                needs.push_back(parameter.name);
        }
        question.scope = scopeOf(question);
        question.isOfModule = question.interface != nullptr;
        question.number = numberFunction(function.name);
        if (needs.empty())
            all.questions.push_back(question);
        else
            all.unasked.push_back({&function, std::move(needs)});
    }
    return all;
}

} // namespace tarn::ctl
