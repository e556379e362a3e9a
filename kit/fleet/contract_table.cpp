#include "contract_table.h"

#include <cstring>

namespace tarn::fleet
{

// The list is read three times, each time for one kind of its lines.
#define TARN_RECORD(...)
#define TARN_EVENT(...)
#define TARN_ARGUMENT(...)
#define TARN_CHECK(...)

#define TARN_SERVICE(name, tag, type, rejected, failed, timedOut, invalidCaller, records, events, functions) {name, events},
#define TARN_FUNCTION(...)
#define TARN_LAYOUT(...)
const ContractService kContractServices[kContractServiceCount] = {
#include "contract_list.inc"
};

#undef TARN_SERVICE
#define TARN_SERVICE(...)
#undef TARN_FUNCTION
#define TARN_FUNCTION(service, command, wait, length, name, effect, ...) {name, length, service, command, effect},
namespace
{
constexpr bool reads = true, changes = false; // NOLINT(readability-identifier-naming): the words of the list
} // namespace
const ContractFunction kContractFunctions[kContractFunctionCount] = {
#include "contract_list.inc"
};

#undef TARN_FUNCTION
#define TARN_FUNCTION(...)
#undef TARN_LAYOUT
#define TARN_LAYOUT(text) text
namespace
{
constexpr char kLayout[] =
#include "contract_list.inc"
    ;
constexpr std::uint64_t kHash = hashOf(kLayout, sizeof kLayout - 1);
} // namespace
const std::uint64_t kContractHash = kHash;

std::size_t findService(const char* service)
{
    std::size_t index = 0;
    while (index < kContractServiceCount && std::strcmp(kContractServices[index].name, service) != 0)
        ++index;
    return index;
}

std::size_t findCommand(const char* service, std::uint32_t command)
{
    const std::size_t index = findService(service);
    std::size_t at = 0;
    while (at < kContractFunctionCount &&
           (kContractFunctions[at].service != index || kContractFunctions[at].command != command))
        ++at;
    return at;
}

} // namespace tarn::fleet
