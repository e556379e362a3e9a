// A command line that is not valid.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace tarn::ctl
{

// The text says what was expected and what was given. `suggestions` are names the user may have meant, the closest first.
class UsageError : public std::runtime_error
{
public:
    explicit UsageError(const std::string& text, std::vector<std::string> near = {})
        : std::runtime_error(text), suggestions(std::move(near))
    {
    }

    const std::vector<std::string> suggestions;
};

} // namespace tarn::ctl
