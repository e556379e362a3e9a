#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::base
{

// The names that somebody who typed `asked` may have meant, the closest first; none if nothing comes close.
std::vector<std::string> suggestions(std::string_view asked, const std::vector<std::string>& names, std::size_t most = 3);

} // namespace tarn::base
