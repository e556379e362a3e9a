#include "report_support.h"

#include <fstream>
#include <iterator>

namespace tarnctl_test
{

void ReportTest::start(const Words& arguments)
{
    gateways_.push_back(std::make_unique<Program>(arguments, TARN_GATEWAY_PROGRAM));
    ASSERT_EQ(gateways_.back()->nextLine(), "ready");
}

Json ReportTest::report(const Words& more)
{
    Words words = {"report"};
    words.insert(words.end(), more.begin(), more.end());
    return runJson(words).document;
}

std::string ReportTest::read(const std::string& file) const
{
    std::ifstream stream(path(file), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

void ReportTest::write(const std::string& file, const std::string& text) const
{
    std::ofstream(path(file), std::ios::binary) << text;
}

Json answerOf(const Json& report, const std::string& function, const Json& subject)
{
    for (const Json& answer : report["answers"])
        if (answer["function"] == function && answer["subject"] == subject)
            return answer["fields"];
    return Json::object();
}

} // namespace tarnctl_test
