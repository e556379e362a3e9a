// Every function that the library exports, in one form: the command functions as the contract describes them, and the few
// without a command, which local_functions.cpp describes.
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
    kAddress // of something that cannot be written on a command line
};

// What the library does with a null pointer.
enum class Null
{
    kImpossible, // it is no pointer
    kRefused,
    kAllowed,
    kUnguarded // the library would read or write through it
};

struct FunctionParameter
{
    std::string name;
    Form form = Form::kNumber;
    bool isInput = false;
    bool isOutput = false;
    std::uint32_t width = 4; // bytes of one number
    bool isSigned = false;   // it may be negative
    std::uint32_t size = 0;  // bytes of everything that the library may read or write; 0 if another argument says
    std::string sizeArgument;
    bool saysSize = false; // it is the size argument of another one
    std::string record;
    Null null = Null::kImpossible;
    std::string content;                      // a short description
    const contract::Argument* wire = nullptr; // its place in the message; null for a function without one
};

// What the result of a function without a command amounts to.
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

enum class FunctionKind
{
    kCommand, // sends one command to a service
    kEvent,   // registers with the platform
    kLocal    // works in the caller's process alone
};

struct LibraryFunction
{
    FunctionKind kind = FunctionKind::kCommand;
    std::string name;
    std::string service; // empty for FunctionKind::kLocal
    std::string group;
    std::string description;
    std::string note;
    std::vector<FunctionParameter> parameters; // those after the caller id
    contract::Row row;                         // for FunctionKind::kCommand
    LocalResult (*local)(const char* callerId, const std::vector<calling::ArgumentValue>& values) = nullptr; // for the others

    const FunctionParameter* parameter(std::string_view parameterName) const;
};

// In the order of the contract, the others after them.
const std::vector<LibraryFunction>& catalogue();

std::vector<std::string> functionNames();
std::vector<std::string> serviceNames(); // sorted

// Throws UsageError, which suggests similar names.
const LibraryFunction& functionNamed(const std::string& name);

} // namespace tarn::ctl
