#include "schema.h"

#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

namespace tarnctl_test
{

namespace
{

using Json = nlohmann::json;
using Adapter = valijson::adapters::NlohmannJsonAdapter;

// std::regex, with which patterns are checked, takes a piece of the stack for every digit it repeats over. So of a text of
// hexadecimal digits alone, pairs are left out until it is short.
void shortenHex(Json& document)
{
    constexpr std::size_t kShort = 1000;
    for (Json& member : document)
    {
        if (member.is_structured())
        {
            shortenHex(member);
            continue;
        }
        auto* const text = member.get_ptr<std::string*>();
        if (text != nullptr && text->size() > kShort && text->find_first_not_of("0123456789abcdef") == std::string::npos)
            text->resize(kShort + text->size() % 2);
    }
}

} // namespace

struct Schema::Parsed
{
    valijson::Schema schema;
};

Schema::Schema(const Json& schema) : parsed_(std::make_unique<Parsed>())
{
    valijson::SchemaParser().populateSchema(Adapter(schema), parsed_->schema);
}

Schema::~Schema() = default;

std::vector<std::string> Schema::violations(Json document) const
{
    shortenHex(document);
    valijson::ValidationResults results;
    valijson::Validator().validate(parsed_->schema, Adapter(document), &results);
    std::vector<std::string> violations;
    for (valijson::ValidationResults::Error error; results.popError(error);)
    {
        std::string where;
        for (const std::string& step : error.context)
            where += step;
        violations.push_back(where + ": " + error.description);
    }
    return violations;
}

} // namespace tarnctl_test
