// What the tests of reports and of their comparison share.
#pragma once

#include "support.h"

#include <memory>
#include <string>

namespace tarnctl_test
{

class ReportTest : public TarnctlTest
{
protected:
    // A simulated gateway in the test's own directory, or in another one.
    void start(const Words& arguments = {});

    // A report of it that watches no counters, unless it is to.
    static Json report(const Words& more = {"--seconds", "0"});

    std::string read(const std::string& file) const;
    void write(const std::string& file, const std::string& text) const;

private:
    std::vector<std::unique_ptr<Program>> gateways_;
};

// The answer of a function about that radio, interface or entry; an empty object if there is none.
Json answerOf(const Json& report, const std::string& function, const Json& subject = Json::object());

} // namespace tarnctl_test
