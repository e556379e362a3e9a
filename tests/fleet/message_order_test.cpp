// Messages between machines of unlike byte orders, for every function. big_endian_vectors.txt has what a big-endian build
// sends, and what it makes of a reply of given bytes; this machine's has to become the same when it is turned round.
#include "fleet/contract_table.h"
#include "fleet/message_order.h"

#include "base/hexadecimal.h"
#include "base/join.h"
#include "calling/calling.h"
#include "contract/contract.h"
#include "contract/message.h"
#include "kor_iil_mock.h"
#include "layout/decode.h"
#include "support/samples.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <random>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fleet_test
{
namespace
{

using namespace tarn::fleet;
using tarn::contract::Argument;
using tarn::contract::Direction;
using tarn::contract::Encoding;
using tarn::contract::Row;
using tarn::contract::Type;
using Bytes = std::vector<std::uint8_t>;

constexpr bool kIsBigEndian = __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__;
constexpr std::uint32_t kCallersSize = 100; // where the caller says the size of a buffer
constexpr std::size_t kRowSize = 32;
constexpr std::size_t kLongestLine = 110;

const tarn::layout::Layout& layout()
{
    return tarn::layout::simulated();
}

// Bytes of every value, whatever the byte order of the machine.
Bytes givenReply(std::uint32_t length)
{
    Bytes reply(length);
    for (std::size_t at = 0; at < length; ++at)
        reply[at] = static_cast<std::uint8_t>(at * 151 + at / 256 + 7);
    return reply;
}

void fill(const std::vector<tarn::layout::Field>& fields, std::uint8_t* bytes)
{
    std::uint64_t number = 0x1122334455667788u;
    for (const tarn::layout::Field& field : fields)
    {
        if (field.isNumber())
            tarn::layout::storeNumber(bytes + field.offset, field.size, number += 0x0101010101010101u);
        else if (field.count == 0)
            std::copy_n(tarn::test::nonZeroBytes(field.size).begin(), field.size, bytes + field.offset);
        for (std::uint32_t element = 0; element < field.count; ++element)
            fill(field.elementFields, bytes + field.offset + element * field.stride);
    }
}

// One call of a function with inputs that tell all bytes of a number apart.
class SampleCall
{
public:
    explicit SampleCall(const Row& row) : row_(row)
    {
        for (const Argument& argument : row.command->arguments)
            prepare(argument, static_cast<std::uint32_t>(values_.size()));
    }

    // Makes it on a platform that answers so, and returns what was sent.
    Bytes make(const Bytes& reply)
    {
        reply_ = &reply;
        KorIilMockReset();
        KorIilMockOnExecute(&execute, this);
        tarn::calling::find(row_.command->function)->call("test", values_.data(), values_.size());
        KorIilMockReset();
        return sent_;
    }

    // What the caller received, as text: numbers are the same on all machines.
    std::string outputs() const
    {
        std::string text;
        for (std::size_t at = 0; at < values_.size(); ++at)
            if (const Argument& argument = row_.command->arguments[at]; argument.direction == Direction::kOut)
                text += (text.empty() ? "" : "; ") + argument.name + " " + output(argument, buffers_.at(at));
        return text;
    }

private:
    void prepare(const Argument& argument, std::uint32_t index)
    {
        tarn::calling::ArgumentValue value;
        if (argument.encoding == Encoding::kSize)
            value.number = kCallersSize;
        else if (argument.isNumber())
            value.number = 0x11223344u + index * 0x01010101u;
        else
        {
            Bytes& buffer = buffers_[index];
            buffer.resize(std::max(sizeOf(argument), kCallersSize));
            if (argument.direction == Direction::kIn)
                fillInput(argument, buffer);
            value.pointer = buffer.data();
        }
        values_.push_back(value);
    }

    void fillInput(const Argument& argument, Bytes& buffer) const
    {
        if (argument.type == Type::kText)
            std::copy_n("text", 4, buffer.begin());
        else if (const auto* const structure = layout().structureOf(*row_.command, argument))
            fill(structure->fields, buffer.data());
        else
            std::copy_n(tarn::test::nonZeroBytes(kRowSize).begin(), std::min<std::size_t>(kRowSize, argument.size),
                        buffer.begin());
    }

    std::uint32_t sizeOf(const Argument& argument) const
    {
        const auto* const record = argument.record.empty() ? nullptr : row_.contract->record(argument.record);
        return record != nullptr ? record->size : argument.size;
    }

    std::string output(const Argument& argument, const Bytes& buffer) const
    {
        const std::uint32_t size = sizeOf(argument) == 0 ? kCallersSize : sizeOf(argument);
        if (argument.encoding == Encoding::kNothing)
            return "-";
        if (argument.encoding == Encoding::kByte)
            return std::to_string(buffer[0]);
        if (argument.type == Type::kText)
            return tarn::base::hexText(buffer.data(),
                                       std::min<std::size_t>(size, std::strlen(reinterpret_cast<const char*>(buffer.data()))));
        if (const auto* const structure = layout().structureOf(*row_.command, argument))
            return tarn::base::join(tarn::layout::linesOf(tarn::layout::decode(*structure, buffer.data(), size)), " ",
                                    [](const tarn::layout::FieldLine& line) { return line.name + "=" + line.value; });
        if (argument.encoding == Encoding::kBlock || argument.encoding == Encoding::kRecord)
            return tarn::base::hexText(buffer.data(), size);
        std::string text;
        for (std::size_t at = 0; at < (argument.encoding == Encoding::kWords ? size : 4); at += 4)
        {
            std::uint32_t word = 0;
            std::memcpy(&word, buffer.data() + at, sizeof word);
            text += (at == 0 ? "" : " ") + std::to_string(word);
        }
        return text;
    }

    static std::uint32_t execute(void* self, const char* /*callerId*/, const char* /*serviceId*/, std::uint32_t /*wait*/,
                                 std::uint32_t /*cmdId*/, std::uint32_t msgLen, void* msg)
    {
        auto& that = *static_cast<SampleCall*>(self);
        auto* const bytes = static_cast<std::uint8_t*>(msg);
        that.sent_.assign(bytes, bytes + msgLen);
        std::copy_n(that.reply_->begin(), msgLen, bytes);
        return 0;
    }

    const Row row_;
    std::vector<tarn::calling::ArgumentValue> values_;
    std::map<std::size_t, Bytes> buffers_; // by the argument's index
    const Bytes* reply_ = nullptr;
    Bytes sent_;
};

// A text, or its hash where it is long.
std::string shortened(const std::string& text)
{
    if (text.size() <= kLongestLine)
        return text;
    char hash[32];
    std::snprintf(hash, sizeof hash, "#%016llx", static_cast<unsigned long long>(hashOf(text.data(), text.size())));
    return hash;
}

// The lines of one function: its name, what it sends but for rows of zeros, what it makes of the reply.
std::string linesOf(const Row& row, const Bytes& sent, const std::string& outputs)
{
    std::string lines = row.command->function + " " + std::to_string(sent.size()) + "\n";
    for (std::size_t at = 0; at < sent.size(); at += kRowSize)
    {
        const std::size_t size = std::min(kRowSize, sent.size() - at);
        if (std::any_of(sent.begin() + static_cast<std::ptrdiff_t>(at), sent.begin() + static_cast<std::ptrdiff_t>(at + size),
                        [](std::uint8_t byte) { return byte != 0; }))
            lines += " " + std::to_string(at) + " " + tarn::base::hexText(sent.data() + at, size) + "\n";
    }
    return lines + " = " + (outputs.empty() ? "nothing" : shortened(outputs)) + "\n";
}

std::string bigEndianLinesOf(const Row& row)
{
    const OrderTable table = orderTableOf(row.contract->service, row.command->command, &layout());
    Bytes reply = givenReply(row.command->length);
    if (!kIsBigEndian)
        turnRound(table, reply.data(), reply.size());
    SampleCall call(row);
    Bytes sent = call.make(reply);
    if (!kIsBigEndian)
        turnRound(table, sent.data(), sent.size());
    return linesOf(row, sent, call.outputs());
}

TEST(MessageOrderTest, WhatIsTurnedRoundIsWhatABigEndianMachineSendsAndUnderstands)
{
    std::string all =
        "# Made by a big-endian build, under emulation:\n"
        "#     TARN_VECTORS=tests/fleet/big_endian_vectors.txt build/mips/tests/fleet/fleet_order_test\n"
        "# For each function its name and length, what it sends in rows of 32 bytes without those that are zero,\n"
        "# and what its caller receives for a given reply: numbers, texts in hexadecimal, or a hash (FNV-1a) of that.\n";
    for (const Row& row : tarn::contract::rows())
        all += bigEndianLinesOf(row);
    if (const char* const file = std::getenv("TARN_VECTORS"))
    {
        ASSERT_TRUE(kIsBigEndian) << "vectors are made by a big-endian build";
        std::ofstream(file) << all;
    }
    std::ifstream file(VECTORS);
    ASSERT_TRUE(file.is_open()) << VECTORS;
    std::istringstream made(all);
    std::string expected, actual, function;
    std::size_t functions = 0;
    while (std::getline(file, expected))
    {
        if (expected.rfind("tarn", 0) == 0 || expected.rfind("Tarn", 0) == 0)
        {
            function = expected;
            ++functions;
        }
        std::getline(made, actual);
        ASSERT_EQ(actual, expected) << function;
    }
    EXPECT_FALSE(std::getline(made, actual)) << actual;
    EXPECT_EQ(functions, kContractFunctionCount);
}

TEST(MessageOrderTest, TurningRoundTwiceIsTheIdentityForAllFunctions)
{
    std::mt19937 random(20261122);
    std::size_t functions = 0;
    for (const Row& row : tarn::contract::rows())
    {
        for (const tarn::layout::Layout* known : {static_cast<const tarn::layout::Layout*>(nullptr), &layout()})
        {
            ++functions;
            const OrderTable table = orderTableOf(row.contract->service, row.command->command, known);
            Bytes message(row.command->length);
            for (std::uint8_t& byte : message)
                byte = static_cast<std::uint8_t>(random());
            const Bytes before = message;
            turnRound(table, message.data(), message.size());
            EXPECT_NE(message, before) << row.command->function << ": at least the status is a number";
            turnRound(table, message.data(), message.size());
            EXPECT_EQ(message, before) << row.command->function;
        }
    }
    EXPECT_EQ(functions, 2 * kContractFunctionCount);
}

TEST(MessageOrderTest, NoByteIsInTwoNumbersAndTextsAreInNone)
{
    for (const Row& row : tarn::contract::rows())
    {
        const tarn::contract::Command& command = *row.command;
        std::vector<int> uses(command.length, 0);
        for (const NumberPlace& place : orderTableOf(row.contract->service, command.command, &layout()).numbers)
            for (std::uint32_t at = 0; at < place.size; ++at)
                ++uses.at(place.offset + at);
        EXPECT_LE(*std::max_element(uses.begin(), uses.end()), 1) << command.function;
        for (const Argument& argument : command.arguments)
        {
            const bool isText = argument.encoding == Encoding::kText || argument.encoding == Encoding::kByte;
            for (std::uint32_t at = 0; isText && at < std::max(argument.size, 1u); ++at)
                EXPECT_EQ(uses.at(argument.offset + at), 0) << command.function << " " << argument.name;
        }
    }
}

TEST(MessageOrderTest, RecordsThatNoLayoutTellsOfAreNamed)
{
    const OrderTable set = orderTableOf("TARN", 9, nullptr);
    EXPECT_THAT(set.unknownInputs, ::testing::ElementsAre("TarnSetRadioCfg.cfg"));
    EXPECT_THAT(set.unknownOutputs, ::testing::IsEmpty());
    const OrderTable get = orderTableOf("TARN", 11, nullptr);
    EXPECT_THAT(get.unknownInputs, ::testing::IsEmpty());
    EXPECT_THAT(get.unknownOutputs, ::testing::ElementsAre("TarnGetRadioStats.stats"));
    EXPECT_THAT(orderTableOf("TARN", 9, &layout()).unknownInputs, ::testing::IsEmpty());
    EXPECT_THAT(orderTableOf("TARN", 11, &layout()).unknownOutputs, ::testing::IsEmpty());
}

TEST(MessageOrderTest, EventsAreTurnedRoundAsTheLayoutTells)
{
    for (const tarn::contract::Event& event : tarn::contract::findService("TARN")->events)
    {
        EXPECT_THAT(orderTableOfEvent("TARN", event.event, nullptr).unknownOutputs, ::testing::ElementsAre(event.name));
        const tarn::layout::Structure* const structure = layout().event(event.name);
        ASSERT_NE(structure, nullptr) << event.name;
        const OrderTable table = orderTableOfEvent("TARN", event.event, &layout());
        EXPECT_THAT(table.unknownOutputs, ::testing::IsEmpty());
        EXPECT_FALSE(table.numbers.empty()) << event.name;
        Bytes data(structure->size);
        fill(structure->fields, data.data());
        const auto before = tarn::layout::decode(*structure, data);
        turnRound(table, data.data(), data.size());
        turnRound(table, data.data(), 1); // nothing of one byte is there in full
        turnRound(table, data.data(), data.size());
        EXPECT_EQ(tarn::layout::decode(*structure, data).front().number, before.front().number);
    }
}

} // namespace
} // namespace fleet_test
