// The simulated gateway's own layout: complete, and the same bytes back after decoding and encoding.
#include "layout/decode.h"
#include "layout/encode.h"

#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace
{

using namespace tarn::layout;
using tarn::base::Bytes;

std::vector<Structure> everyStructure()
{
    std::vector<Structure> all = simulated().records;
    all.insert(all.end(), simulated().blocks.begin(), simulated().blocks.end());
    all.insert(all.end(), simulated().events.begin(), simulated().events.end());
    return all;
}

// Bytes that differ from one another and are never zero, so that every element of an array is in use.
Bytes pattern(std::size_t size, std::size_t seed)
{
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<std::uint8_t>(1 + (i * 7 + seed * 31) % 255);
    return bytes;
}

// A value that `encode` makes the same bytes of.
std::string writtenValue(const Decoded& decoded)
{
    switch (decoded.field->type)
    {
    case FieldType::kNumber:
    case FieldType::kSigned:
        return decoded.meaning.valueName.empty() ? decoded.numberText() : decoded.meaning.valueName;
    case FieldType::kBytes:
    {
        std::string hex;
        for (const std::uint8_t byte : decoded.bytes)
            hex += std::string(1, "0123456789abcdef"[byte >> 4]) + "0123456789abcdef"[byte & 15];
        return hex;
    }
    default:
        return decoded.text;
    }
}

void encodeAll(const Structure& structure, const std::vector<Decoded>& fields, const std::string& prefix, Bytes& bytes)
{
    for (const Decoded& decoded : fields)
        if (decoded.field->type != FieldType::kArray)
            encode(structure, prefix + decoded.field->name, writtenValue(decoded), bytes);
        else
            for (std::size_t i = 0; i < decoded.elements.size(); ++i)
                encodeAll(structure, decoded.elements[i],
                          prefix + decoded.field->name + "[" + std::to_string(i) + "]" +
                              (decoded.field->hasPlainElements() ? "" : "."),
                          bytes);
}

std::vector<std::string> shown(const std::vector<FieldLine>& lines)
{
    std::vector<std::string> texts;
    texts.reserve(lines.size());
    for (const FieldLine& line : lines)
        texts.push_back(line.name + "=" + line.value);
    return texts;
}

// The last byte of a text stays zero: encode leaves room for the NUL.
void endTexts(const std::vector<Field>& fields, std::size_t offset, Bytes& bytes)
{
    for (const Field& field : fields)
        if (field.type == FieldType::kText)
            bytes[offset + field.offset + field.size - 1] = 0;
        else
            for (std::uint32_t i = 0; i < field.count; ++i)
                endTexts(field.elementFields, offset + field.offset + std::size_t{i} * field.stride, bytes);
}

TEST(SimulatedLayout, GivesTheSameBytesBackForEveryRecordBlockAndEvent)
{
    for (const Structure& structure : everyStructure())
        for (std::size_t seed = 0; seed < 4; ++seed)
        {
            Bytes bytes = pattern(structure.size, seed);
            endTexts(structure.fields, 0, bytes);
            const std::vector<Decoded> fields = decode(structure, bytes);
            ASSERT_EQ(fields.size(), structure.fields.size()) << structure.name;
            Bytes again(structure.size);
            encodeAll(structure, fields, "", again);
            const std::vector<Decoded> fieldsAgain = decode(structure, again);
            EXPECT_EQ(shown(linesOf(fieldsAgain)), shown(linesOf(fields))) << structure.name;
            for (std::size_t i = 0; i < fields.size(); ++i)
            {
                // Of an array only the elements in use are encoded, and of a text what is in front of its NUL.
                const FieldType type = fields[i].field->type;
                EXPECT_TRUE(type == FieldType::kArray || type == FieldType::kText || fieldsAgain[i].bytes == fields[i].bytes)
                    << structure.name << "." << fields[i].field->name;
            }
        }
}

TEST(SimulatedLayout, TellsWhatIsInEveryRecordAndEvent)
{
    for (const tarn::contract::Contract& contract : tarn::contract::all())
    {
        for (const tarn::contract::RecordType& record : contract.records)
            EXPECT_NE(simulated().record(record.name), nullptr) << record.name;
        for (const tarn::contract::Event& event : contract.events)
            EXPECT_NE(simulated().event(event.name), nullptr) << event.name;
    }
}

// Bytes that are no list of fields: an address, a mobility domain, a table that is not of a fixed size.
TEST(SimulatedLayout, TellsWhatIsInEveryBlock)
{
    const std::set<std::uint32_t> plainSizes = {0, 2, 6};
    for (const tarn::contract::Row& row : tarn::contract::rows())
        for (const tarn::contract::Argument& argument : row.command->arguments)
        {
            const bool isPlain = argument.type != tarn::contract::Type::kBytes || plainSizes.count(argument.size) != 0;
            EXPECT_TRUE(isPlain || simulated().structureOf(*row.command, argument) != nullptr)
                << row.command->function << "." << argument.name;
        }
}

TEST(SimulatedLayout, NamesTheStatusesOfEveryService)
{
    for (const tarn::contract::Contract& contract : tarn::contract::all())
        for (const char* name :
             {"DONE", "NO_SUCH_OBJECT", "INVALID_VALUE", "BUSY", "FULL", "ALREADY_THERE", "NOT_THERE", "SWITCHED_OFF"})
            EXPECT_NE(simulated().statusNamed(contract.service, name), nullptr) << contract.service << " " << name;
    EXPECT_EQ(simulated().status("TARN", 18)->name, "BUSY");
    EXPECT_EQ(simulated().status("QTN_RPC_PROXY", static_cast<std::uint32_t>(-202))->name, "INVALID_VALUE");
}

} // namespace
