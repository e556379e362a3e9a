#include "contract_table.h"

#include <cstring>

namespace tarn::fleet
{

// The list is read three times, each time for one kind of its lines.
#define TARN_SERVICE(name, events) {name, events},
#define TARN_COMMAND(service, command, length)
#define TARN_LAYOUT(text)
const ContractService kContractServices[] = {
#include "contract_list.inc"
};
const std::size_t kContractServiceCount = sizeof kContractServices / sizeof kContractServices[0];

#undef TARN_SERVICE
#define TARN_SERVICE(name, events)
#undef TARN_COMMAND
#define TARN_COMMAND(service, command, length) {service, command, length},
const ContractCommand kContractCommands[] = {
#include "contract_list.inc"
};
const std::size_t kContractCommandCount = sizeof kContractCommands / sizeof kContractCommands[0];

#undef TARN_COMMAND
#define TARN_COMMAND(service, command, length)
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

const ContractCommand* findCommand(const char* service, std::uint32_t command)
{
    const std::size_t index = findService(service);
    for (const ContractCommand& each : kContractCommands)
        if (each.service == index && each.command == command)
            return &each;
    return nullptr;
}

} // namespace tarn::fleet
