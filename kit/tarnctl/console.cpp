#include "console.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

constexpr int kIndentation = 2;
constexpr int kNoLineBreaks = -1;

} // namespace

Json Console::document(const char* kind)
{
    return Json{{"schema", kSchema}, {"kind", kind}};
}

Json Console::errorDocument(ExitCode exit, const std::string& message, const std::vector<std::string>& suggestions)
{
    Json error = document("error");
    error["exit"] = static_cast<int>(exit);
    error["message"] = message;
    error["suggestions"] = suggestions;
    return error;
}

void Console::write(const Json& document) const
{
    // Texts of services need not be UTF-8. What is not is replaced here; their bytes are also there in hexadecimal.
    out << document.dump(oneLine ? kNoLineBreaks : kIndentation, ' ', false, Json::error_handler_t::replace) << '\n'
        << std::flush;
}

void Console::remark(const std::string& text) const
{
    err << program << ": " << text << '\n';
}

ExitCode Console::fail(ExitCode exit, const std::string& message, const std::vector<std::string>& suggestions) const
{
    remark(message);
    if (!suggestions.empty())
    {
        err << "Did you mean " << suggestions.front();
        for (std::size_t i = 1; i < suggestions.size(); ++i)
            err << (i + 1 == suggestions.size() ? " or " : ", ") << suggestions[i];
        err << "?\n";
    }
    if (json)
        write(errorDocument(exit, message, suggestions));
    return exit;
}

ExitCode Console::fail(const UsageError& error) const
{
    return fail(ExitCode::kUsage, error.what(), error.suggestions);
}

} // namespace tarn::ctl
