// The two streams that are written to: results to one, remarks for a person to the other.
#pragma once

#include "datum.h"
#include "exit_code.h"
#include "table.h"
#include "terminal.h"
#include "usage_error.h"

#include <ostream>
#include <string>
#include <vector>

namespace tarn::ctl
{

// Version of the documents: another one when a key changes its meaning or is dropped.
inline constexpr char kSchema[] = "tarnctl/1";

class Console
{
public:
    Console(std::ostream& results, std::ostream& remarks) : out(results), err(remarks)
    {
    }

    std::ostream& out;
    std::ostream& err;
    bool json = false;    // results are JSON documents
    bool oneLine = false; // each of them on one line
    bool csv = false;     // results are rows of comma-separated values
    bool colours = false; // results may be coloured
    bool repeats = false; // the results have been written before, and are written again
    Terminal terminal;
    const char* program = "tarnctl"; // in front of remarks

    // A JSON document of that kind, still to be filled.
    static Json document(const char* kind);

    // The one of kind "error".
    static Json errorDocument(ExitCode exit, const std::string& message, const std::vector<std::string>& suggestions);

    void write(const Json& document) const;

    // An error, or another remark for a person.
    void remark(const std::string& text) const;

    // Ends in failure: a remark, and with JSON a document of kind "error".
    ExitCode fail(ExitCode exit, const std::string& message, const std::vector<std::string>& suggestions = {}) const;
    ExitCode fail(const UsageError& error) const;
};

} // namespace tarn::ctl
