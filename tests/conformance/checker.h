// Holds one function against its row of the contract.
//
// Each check drives the function through all of its cases and reports the first deviation from the contract, or returns an
// empty text. It asserts nothing, so that it can itself be tested against rows and functions that are wrong.
#pragma once

#include "calling/calling.h"
#include "contract/contract.h"
#include "function_lines.h"
#include "prepared_call.h"
#include "recorder.h"

#include <cstdint>
#include <string>
#include <vector>

namespace conformance
{

class Checker
{
public:
    Checker(const tarn::contract::Contract& contract, const tarn::contract::Command& command,
            const tarn::calling::Callable& function);

    // The prototype takes and returns what the row says. If it does not, none of the others may be run.
    std::string signature();

    // Every byte sent, where it is sent to, with what wait and length; and nothing read beyond the inputs.
    std::string requests();

    // Every output, the bytes around it, and the result, whatever bytes the service writes.
    std::string replies();

    // Every IPC status: result, trace, outputs left alone.
    std::string ipcFailures();

    // Every set of arguments to be refused: the first check that fails decides, and nothing is sent.
    std::string refusals();

    // Every set of optional pointers left out.
    std::string optionalPointers();

    // Every kind of caller id.
    std::string callerIds();

    // All of the above, in that order, up to the first deviation.
    std::string everything();

    // Source unit and line of the trace that an IPC failure writes.
    struct Site
    {
        std::string tag;
        std::uint32_t line;
    };
    Site failureSite();

private:
    struct Deviation
    {
        std::string text;
    };

    template <typename Action>
    std::string deviationIn(Action action);
    [[noreturn]] void fail(const std::string& text) const;
    void require(bool holds, const std::string& expected, const std::string& got) const;

    PreparedCall prepare(const Style& style, Placement placement) const;
    std::int64_t call(const char* callerId, const PreparedCall& prepared);

    void requireSent(const char* callerId, const PreparedCall& prepared) const;
    void requireTrace(const std::string& format) const;
    void requireNoTrace() const;
    void requireResult(std::int64_t result, std::int64_t expected) const;
    void requireMemory(const PreparedCall& prepared, const std::vector<std::uint8_t>* reply) const;

    std::int64_t resultOf(std::uint32_t status) const;
    void checkReply(const std::vector<std::uint8_t>& reply, Placement placement, std::uint32_t callerSize,
                    std::uint32_t bufferSize);
    void checkReplyTexts(std::uint32_t callerSize, std::uint32_t bufferSize);
    void checkStatuses();
    void checkHugeSizes();
    void checkRefusal(std::uint32_t failing, bool empty);
    void checkCallerId(const std::vector<std::uint8_t>& bytes, Placement placement, bool valid);
    void checkRefusedCallerId(const char* callerId, const std::string& format, bool othersWrong);
    bool hasSizeArgument(tarn::contract::Encoding encoding) const;

    const tarn::contract::Contract& contract_;
    const tarn::contract::Command& command_;
    const tarn::calling::Callable& function_;
    const FunctionLines& lines_;
    std::string case_; // the one at hand, for the report
    Recorder recorder_;
    GuardedArea& callerArea_;
};

} // namespace conformance
