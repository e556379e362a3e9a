#include "script.h"

#include "base/format.h"
#include "base/quote.h"
#include "layout/message.h"

#include <algorithm>
#include <cstring>

namespace tarn::mock
{

namespace
{

constexpr std::uint32_t kRowBytes = 16;
constexpr std::size_t kRowsShown = 8;

std::string quotedOrNull(const char* text)
{
    return text == nullptr ? "NULL" : base::inQuotes(text);
}

// The bytes that a script expects, and which of them it compares.
class ExpectedMessage
{
public:
    explicit ExpectedMessage(const KorIilMockCall& call)
        : bytes_(call.length), compared_(call.length, call.restZero), parts_(call.sent)
    {
        for (const Part& part : parts_)
            for (std::uint32_t i = 0; i < part.bytes.size(); ++i)
            {
                bytes_[part.offset + i] = part.bytes[i];
                compared_[part.offset + i] = true;
            }
    }

    bool differsAt(std::uint32_t offset, const std::uint8_t* message) const
    {
        return compared_[offset] && bytes_[offset] != message[offset];
    }

    std::vector<std::uint32_t> differences(const std::uint8_t* message) const
    {
        std::vector<std::uint32_t> offsets;
        for (std::uint32_t offset = 0; offset < bytes_.size(); ++offset)
            if (differsAt(offset, message))
                offsets.push_back(offset);
        return offsets;
    }

    bool compares(std::uint32_t offset) const
    {
        return compared_[offset];
    }

    // Whether the script gives the byte, and not only all the rest as zero.
    bool isScripted(std::uint32_t offset) const
    {
        const auto covers = [&](const Part& part) { return part.offset <= offset && offset < part.end(); };
        return std::any_of(parts_.begin(), parts_.end(), covers);
    }

    const std::vector<std::uint8_t>& bytes() const
    {
        return bytes_;
    }

    std::string labelAt(std::uint32_t offset) const
    {
        for (const Part& part : parts_)
            if (part.offset <= offset && offset < part.end())
                return part.label + " at " + std::to_string(part.offset);
        return "zero";
    }

    std::string byteAt(std::uint32_t offset) const
    {
        return compared_[offset] ? base::format("%02x", bytes_[offset]) : "..";
    }

    std::uint32_t size() const
    {
        return static_cast<std::uint32_t>(bytes_.size());
    }

private:
    std::vector<std::uint8_t> bytes_;
    std::vector<bool> compared_;
    const std::vector<Part>& parts_;
};

// One row of the message as expected and as sent, and below it a mark under every byte that differs.
std::string dumpRow(const ExpectedMessage& expected, const std::uint8_t* message, std::uint32_t start)
{
    std::string left;
    std::string right;
    std::string marks;
    for (std::uint32_t offset = start; offset < std::min(start + kRowBytes, expected.size()); ++offset)
    {
        left += expected.byteAt(offset) + " ";
        right += base::format("%02x ", message[offset]);
        marks += expected.differsAt(offset, message) ? "^^ " : "   ";
    }
    const std::string margin = "  " + base::format("0x%04x", start) + "  ";
    left.resize(kRowBytes * 3 + 1, ' ');
    marks.resize(kRowBytes * 3 + 1, ' ');
    const std::string line = std::string(margin.size(), ' ') + marks + marks;
    return margin + left + right + "\n" + line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
}

std::string dump(const ExpectedMessage& expected, const std::uint8_t* message, const std::vector<std::uint32_t>& differences)
{
    std::vector<std::uint32_t> rows;
    for (const std::uint32_t offset : differences)
        if (rows.empty() || rows.back() != offset / kRowBytes * kRowBytes)
            rows.push_back(offset / kRowBytes * kRowBytes);

    std::string text = "  offset  expected (.. is not compared)";
    text.resize(10 + kRowBytes * 3 + 1, ' ');
    text += "sent\n";
    for (std::size_t i = 0; i < std::min(rows.size(), kRowsShown); ++i)
        text += dumpRow(expected, message, rows[i]);
    if (rows.size() > kRowsShown)
        text += "  and " + std::to_string(rows.size() - kRowsShown) + " more rows that differ\n";
    return text;
}

// Whether the whole part is compared: of a text, what there is up to its NUL.
bool isCompared(const ExpectedMessage& expected, const layout::Field& field)
{
    for (std::uint32_t offset = field.offset; offset < field.offset + field.size; ++offset)
    {
        if (!expected.compares(offset))
            return false;
        if (field.type == layout::FieldType::kText && expected.bytes()[offset] == 0)
            break;
    }
    return true;
}

// Whether it is more readable by its name than in the dump.
bool isShort(const layout::Field& field)
{
    return field.type != layout::FieldType::kBytes || field.size <= kRowBytes;
}

// What differs in arguments and fields, a line each, and takes their bytes out of the list.
std::string namedDifferences(const KorIilMockCall& call, const ExpectedMessage& expected, const std::uint8_t* message,
                             std::vector<std::uint32_t>& differences)
{
    std::string text;
    for (const layout::NamedPart& part : layout::inputsOf(*call.layout, *call.command))
    {
        const layout::Field& field = part.field;
        const auto isInside = [&](std::uint32_t offset)
        { return field.offset <= offset && offset < field.offset + field.size; };
        const auto first = std::find_if(differences.begin(), differences.end(), isInside);
        if (first == differences.end() || !isShort(field) || !isCompared(expected, field))
            continue;
        const std::string wanted =
            expected.isScripted(*first) ? part.valueIn(expected.bytes().data()) : "zero, as all the rest";
        text += part.name + ": expected " + wanted + ", got " + part.valueIn(message) + "\n";
        differences.erase(std::remove_if(differences.begin(), differences.end(), isInside), differences.end());
    }
    return text;
}

std::string messageDifferences(const KorIilMockCall& call, const std::uint8_t* message)
{
    const ExpectedMessage expected(call);
    std::vector<std::uint32_t> differences = expected.differences(message);
    std::string text;
    if (call.command != nullptr && !differences.empty())
        text = namedDifferences(call, expected, message, differences);
    if (differences.empty())
        return text;
    const std::uint32_t first = differences.front();
    return text + "at offset " + std::to_string(first) + ": expected " + expected.byteAt(first) + " (" +
           expected.labelAt(first) + "), got " + base::format("%02x", message[first]) + "; " +
           std::to_string(differences.size()) + (differences.size() == 1 ? " byte differs\n" : " bytes differ\n") +
           dump(expected, message, differences);
}

} // namespace

std::string nameOf(CallKind kind, const std::string& serviceId, std::uint32_t number)
{
    const std::string text = std::to_string(number);
    if (kind == CallKind::kExecute)
        return serviceId + " command " + text;
    return (kind == CallKind::kSubscribe ? "subscription to " : "cancellation of ") + serviceId + " event " + text;
}

} // namespace tarn::mock

std::string KorIilMockCall::name() const
{
    return command != nullptr ? command->function : tarn::mock::nameOf(kind, serviceId, number);
}

bool KorIilMockCall::isOpen() const
{
    return made < most || most == tarn::mock::kAnyTimes;
}

bool KorIilMockCall::isFor(const tarn::mock::ActualCall& actual) const
{
    return kind == actual.kind && number == actual.number && actual.serviceId != nullptr && serviceId == actual.serviceId;
}

bool KorIilMockCall::fits(const tarn::mock::ActualCall& actual) const
{
    return isFor(actual) && differences(actual).empty();
}

std::string KorIilMockCall::differences(const tarn::mock::ActualCall& actual) const
{
    std::string text;
    if (callerId && (actual.callerId == nullptr || *callerId != actual.callerId))
    {
        const std::string got = tarn::mock::quotedOrNull(actual.callerId);
        text += "caller: expected " + tarn::base::inQuotes(*callerId) + ", got " + got + "\n";
    }
    if (kind != tarn::mock::CallKind::kExecute)
        return text;
    if (wait && *wait != actual.wait)
        text += "wait: expected " + std::to_string(*wait) + ", got " + std::to_string(actual.wait) + "\n";
    if (length != actual.length)
        return text + "length: expected " + std::to_string(length) + ", got " + std::to_string(actual.length) + "\n";
    return text + tarn::mock::messageDifferences(*this, actual.message);
}

void KorIilMockCall::answer(const tarn::mock::ActualCall& actual) const
{
    if (kind != tarn::mock::CallKind::kExecute || ipcStatus != 0)
        return;
    const auto write = [&](std::uint32_t offset, const void* bytes, std::size_t size)
    {
        if (offset <= actual.length && size <= actual.length - offset && size > 0)
            std::memcpy(actual.message + offset, bytes, size);
    };
    if (actual.length >= sizeof status)
        write(actual.length - static_cast<std::uint32_t>(sizeof status), &status, sizeof status);
    for (const tarn::mock::Part& part : reply)
        write(part.offset, part.bytes.data(), part.bytes.size());
}
