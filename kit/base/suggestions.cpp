#include "suggestions.h"

#include "letter_case.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace tarn::base
{

namespace
{

// How many characters have to be put in, taken out or replaced to turn one text into the other.
std::size_t editDistance(const std::string& from, const std::string& to)
{
    std::vector<std::size_t> costs(to.size() + 1);
    std::iota(costs.begin(), costs.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i)
    {
        std::size_t diagonal = costs[0];
        costs[0] = i + 1;
        for (std::size_t j = 0; j < to.size(); ++j)
        {
            const std::size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = costs[j + 1];
            costs[j + 1] = std::min({replaced, costs[j] + 1, costs[j + 1] + 1});
        }
    }
    return costs.back();
}

struct Candidate
{
    std::size_t distance;
    std::string name;

    bool operator<(const Candidate& other) const
    {
        return std::make_tuple(distance, name.size()) < std::make_tuple(other.distance, other.name.size());
    }
};

} // namespace

std::vector<std::string> suggestions(std::string_view asked, const std::vector<std::string>& names, std::size_t most)
{
    const std::string wanted = lowerCase(asked);
    if (wanted.empty())
        return {};

    // A name that contains the whole text is what a user most likely meant; beyond that, a third of the letters may be wrong.
    std::vector<Candidate> candidates;
    for (const std::string& name : names)
    {
        const std::string lowered = lowerCase(name);
        const bool contains = wanted.size() >= 3 && lowered.find(wanted) != std::string::npos;
        const std::size_t distance = contains ? 0 : editDistance(wanted, lowered);
        if (distance <= std::max<std::size_t>(2, wanted.size() / 3))
            candidates.push_back({distance, name});
    }
    std::stable_sort(candidates.begin(), candidates.end());

    std::vector<std::string> closest;
    for (std::size_t i = 0; i < std::min(most, candidates.size()); ++i)
        closest.push_back(candidates[i].name);
    return closest;
}

} // namespace tarn::base
