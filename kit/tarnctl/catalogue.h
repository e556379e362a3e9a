// Every function that the library exports, in one form: the command functions as the contract describes them, and the few
// that carry no command, which are described here.
#pragma once

#include "calling/calling.h"
#include "contract/contract.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::ctl
{

enum class Form
{
    kNumber,
    kText,
    kBytes,
    kRecord,
    kAddress // of something that has no form on a command line
};

// What the library does with a null pointer.
enum class Null
{
    kImpossible, // it is no pointer
    kRefused,
    kAllowed,
    kUnguarded // the library would read or write through it
};

struct Parameter
{
    std::string name;
    Form form = Form::kNumber;
    bool isInput = false;
    bool isOutput = false;
    std::uint32_t width = 4; // bytes of one number
    std::uint32_t size = 0;  // bytes of everything that the library may read or write; 0 if another argument says
    std::string sizeArgument;
    bool saysSize = false; // it is the size argument of another one
    std::string record;
    Null null = Null::kImpossible;
    std::string content;                      // what it is, in a few words
    const contract::Argument* wire = nullptr; // how it stands in the message; null for a function without one
};

// What went on behind a result of a function that carries no command.
enum class Answer
{
    kYes,
    kNo,
    kRefused
};

// What such a function returns: a number or a text, and what that means.
struct LocalResult
{
    std::int64_t number = 0;
    std::string text;
    Answer answer = Answer::kYes;
    std::string meaning;
};

enum class Kind
{
    kCommand, // sends one command to a service
    kEvent,   // registers with the platform
    kLocal    // works in the caller's process alone
};

struct Function
{
    Kind kind = Kind::kCommand;
    std::string name;
    std::string service; // empty for Kind::kLocal
    std::string group;
    std::string description;
    std::string note;
    std::vector<Parameter> parameters; // those behind the caller id
    contract::Row row;                 // for Kind::kCommand
    LocalResult (*local)(const char* callerId, const std::vector<calling::ArgumentValue>& values) = nullptr; // for the others

    const Parameter* parameter(std::string_view parameterName) const;
};

// In the order of the contract, the others behind.
const std::vector<Function>& catalogue();

// Throws UsageError with names that come close.
const Function& functionNamed(const std::string& name);

} // namespace tarn::ctl
