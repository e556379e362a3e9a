// The same logical call in the library's encoding and in those of its peers.
#include "messages/exchange.h"

#include <cstdio>
#include <cstring>

namespace messages
{
namespace
{

std::array<unsigned char, bench::kRecordSize> numbered()
{
    std::array<unsigned char, bench::kRecordSize> result;
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = static_cast<unsigned char>(i * 7 + 1);
    return result;
}

std::size_t recordSizeOf(const bench::Case& tried)
{
    const std::size_t length = std::stoul(tried.name.substr(tried.name.find('/') + 1));
    if (length == 12)
        return 4;
    return length == 144 ? 128 : 9552;
}

// Whether the caller's record is the service's afterwards, and nothing behind it has changed.
bool isRight(const bench::Case& tried)
{
    std::array<unsigned char, bench::kRecordSize> record = {};
    const std::size_t size = recordSizeOf(tried);
    return tried.call(record.data()) == kStatus && std::memcmp(record.data(), serviceRecord.data(), size) == 0 &&
           record[size] == 0;
}

} // namespace

const std::array<unsigned char, bench::kRecordSize> serviceRecord = numbered();

} // namespace messages

int main(int argc, char** argv)
{
    std::vector<bench::Case> cases;
    messages::addTarn(cases);
    messages::addXdr(cases);
    messages::addFlatBuffers(cases);
    messages::addProtobuf(cases);
    messages::addNanopb(cases);
    messages::addCapnProto(cases);
    messages::addSdBus(cases);
    for (const bench::Case& each : cases)
        if (!messages::isRight(each))
        {
            std::fprintf(stderr, "%s: the caller did not get the service's record\n", each.name.c_str());
            return 1;
        }
    return bench::runCases(argc, argv, cases);
}
