// What a gateway can be asked: the functions that read, by what they have to be told. All of it follows from the contract.
#pragma once

#include "tarnctl/catalogue.h"

#include <string>
#include <vector>

namespace tarn::ctl
{

// How often a function is asked, which is by what its inputs name.
enum class Scope
{
    kGateway,   // once
    kRadio,     // of each radio
    kInterface, // of each SSID interface, or the access point on it
    kStation    // of each station
};

struct Question
{
    const LibraryFunction* function = nullptr;
    Scope scope = Scope::kGateway;
    bool isOfModule = false;                      // interfaces are named as the module knows them
    const FunctionParameter* radio = nullptr;     // the inputs, null for those that it does not take
    const FunctionParameter* object = nullptr;    // the id of an SSID or an access point
    const FunctionParameter* interface = nullptr; // the name of one
    const FunctionParameter* station = nullptr;
    const FunctionParameter* index = nullptr;
    const LibraryFunction* number = nullptr; // says how many there are for `index`; null if nothing does
};

// A function that reads, but has to be told more than that.
struct Unasked
{
    const LibraryFunction* function = nullptr;
    std::vector<std::string> needs; // the other inputs
};

struct Questions
{
    std::vector<Question> questions; // in the order of the contract
    std::vector<Unasked> unasked;
};

Questions allQuestions();

} // namespace tarn::ctl
