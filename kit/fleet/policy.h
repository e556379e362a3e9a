/* What may be asked of this gateway from afar: the functions, and how many calls in how long a time. Needs no C++ run-time
 * library. docs/fleet-policy.md describes the file. */
#pragma once

#include "contract_table.h"
#include "rate.h"

#include <cstddef>
#include <cstdint>

namespace tarn::fleet
{

class Policy
{
public:
    // Nothing is allowed.
    Policy() = default;

    // What only reads, as often as it is asked: what holds where there is no file.
    static Policy ofReading();

    // Adds one line of a file, without its line feed: a rule, a comment, or nothing. Later lines override earlier ones. If the
    // line is wrong, returns false and writes what was expected to `problem`.
    bool add(const char* line, char* problem, std::size_t size);

    // Reads a file of such lines. If it cannot be read or a line is wrong, returns false and writes "file:line: problem".
    bool read(const char* fileName, char* problem, std::size_t size);

    bool allows(std::size_t function) const
    {
        return allowed_[function];
    }
    Rate rate() const
    {
        return rate_;
    }
    Rate rateOfChanges() const
    {
        return rateOfChanges_;
    }

private:
    class Line;

    bool addRule(bool isAllowed, const Line& line);
    bool addRate(const Line& line);

    bool allowed_[kContractFunctionCount] = {};
    Rate rate_; // of all calls, those that change something included
    Rate rateOfChanges_;
};

} // namespace tarn::fleet
