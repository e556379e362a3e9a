#include "script.h"

#include "base/format.h"
#include "base/quote.h"

#include <algorithm>
#include <cstring>

namespace tarn::mock
{

namespace
{

constexpr std::uint32_t kRowBytes = 16;
constexpr std::size_t kRowsShown = 8;

std::string nameOrNull(const char* text)
{
    return text == nullptr ? "NULL" : base::inQuotes(text);
}

// What a script says about each byte of a message.
class Expected
{
public:
    explicit Expected(const KorIilMockCall& call) : bytes(call.length), compared(call.length, call.restZero), parts(call.sent)
    {
        for (const Part& part : parts)
            for (std::uint32_t i = 0; i < part.bytes.size(); ++i)
            {
                bytes[part.offset + i] = part.bytes[i];
                compared[part.offset + i] = true;
            }
    }

    bool differsAt(std::uint32_t offset, const std::uint8_t* message) const
    {
        return compared[offset] && bytes[offset] != message[offset];
    }

    std::vector<std::uint32_t> differences(const std::uint8_t* message) const
    {
        std::vector<std::uint32_t> offsets;
        for (std::uint32_t offset = 0; offset < bytes.size(); ++offset)
            if (differsAt(offset, message))
                offsets.push_back(offset);
        return offsets;
    }

    std::string labelAt(std::uint32_t offset) const
    {
        for (const Part& part : parts)
            if (part.offset <= offset && offset < part.end())
                return part.label + " at " + std::to_string(part.offset);
        return "zero";
    }

    std::string byteAt(std::uint32_t offset) const
    {
        return compared[offset] ? base::format("%02x", bytes[offset]) : "..";
    }

    std::uint32_t size() const
    {
        return static_cast<std::uint32_t>(bytes.size());
    }

private:
    std::vector<std::uint8_t> bytes;
    std::vector<bool> compared;
    const std::vector<Part>& parts;
};

// One row of the message twice, as expected and as it came, and below it a mark for each byte that differs.
std::string dumpRow(const Expected& expected, const std::uint8_t* message, std::uint32_t start)
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

std::string dump(const Expected& expected, const std::uint8_t* message, const std::vector<std::uint32_t>& differences)
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

std::string byteDifferences(const KorIilMockCall& call, const std::uint8_t* message)
{
    const Expected expected(call);
    const std::vector<std::uint32_t> differences = expected.differences(message);
    if (differences.empty())
        return "";
    const std::uint32_t first = differences.front();
    return "at offset " + std::to_string(first) + ": expected " + expected.byteAt(first) + " (" + expected.labelAt(first) +
           "), got " + base::format("%02x", message[first]) + "; " + std::to_string(differences.size()) +
           (differences.size() == 1 ? " byte differs\n" : " bytes differ\n") + dump(expected, message, differences);
}

} // namespace

std::string nameOf(Kind kind, const std::string& serviceId, std::uint32_t number)
{
    const std::string text = std::to_string(number);
    if (kind == Kind::kExecute)
        return serviceId + " command " + text;
    return (kind == Kind::kSubscribe ? "subscription to " : "cancellation of ") + serviceId + " event " + text;
}

} // namespace tarn::mock

std::string KorIilMockCall::name() const
{
    return tarn::mock::nameOf(kind, serviceId, number);
}

bool KorIilMockCall::isFor(const tarn::mock::ActualCall& actual) const
{
    return kind == actual.kind && number == actual.number && actual.serviceId != nullptr && serviceId == actual.serviceId;
}

std::string KorIilMockCall::differences(const tarn::mock::ActualCall& actual) const
{
    std::string text;
    if (callerId && (actual.callerId == nullptr || *callerId != actual.callerId))
        text +=
            "caller: expected " + tarn::base::inQuotes(*callerId) + ", got " + tarn::mock::nameOrNull(actual.callerId) + "\n";
    if (kind != tarn::mock::Kind::kExecute)
        return text;
    if (wait && *wait != actual.wait)
        text += "wait: expected " + std::to_string(*wait) + ", got " + std::to_string(actual.wait) + "\n";
    if (length != actual.length)
        return text + "length: expected " + std::to_string(length) + ", got " + std::to_string(actual.length) + "\n";
    return text + tarn::mock::byteDifferences(*this, actual.message);
}

void KorIilMockCall::answer(const tarn::mock::ActualCall& actual) const
{
    if (kind != tarn::mock::Kind::kExecute || ipcStatus != 0)
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
