// One call of one function, and its outcome.
#pragma once

#include "arguments.h"
#include "catalogue.h"
#include "console.h"
#include "exit_code.h"
#include "observer.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarn::ctl
{

inline constexpr char kOwnCallerId[] = "tarnctl";

enum class CallOutcome
{
    kDone,
    kRejected,
    kNoService,
    kTimedOut,
    kIpcFailed,
    kServiceStatus,
    kNo // a local utility's answer
};

// No value is a null pointer.
using CallerId = std::optional<std::string>;

struct Report
{
    const LibraryFunction* function = nullptr;
    CallerId callerId;
    PreparedArguments arguments; // outputs as they are after the call
    LocalResult result;          // for a command function the number alone
    Observation seen;
    CallOutcome outcome = CallOutcome::kDone;

    // Whether the service's reply, and with it every output, is there.
    bool hasReply() const;
    // What an argument holds after the call; of an output that is one number, or a text, that.
    const PreparedArgument& argument(const std::string& name) const;
    std::int64_t number(const std::string& output) const;
    std::string text(const std::string& output) const;
};

// Ends a verb: the report is written, and its exit code is that of the program.
class CallFailure : public std::runtime_error
{
public:
    explicit CallFailure(Report failed);

    const Report report;
};

Report perform(const LibraryFunction& function, PreparedArguments arguments, const CallerId& callerId = kOwnCallerId,
               Passage passage = Passage::kSend);

// The same for a call that is not made with the platform.
Report perform(const LibraryFunction& function, PreparedArguments arguments, const CallerId& callerId, Sender sender);

// The same for arguments as they are written on the command line.
Report perform(const std::string& function, const std::vector<std::string>& assignments = {});

// The same for a call that the verb cannot do without: throws CallFailure unless the outcome is kDone.
Report performOrFail(const std::string& function, const std::vector<std::string>& assignments = {});

// The outcome of a call, and that of a request that was sent without the library.
CallOutcome outcomeOf(const Report& report);
CallOutcome outcomeOf(std::uint32_t ipcStatus);

ExitCode exitCodeOf(CallOutcome outcome);
const char* toString(CallOutcome outcome);

// Where the IPC library looks for services, and the same as " in DIRECTORY"; empty if it has no such directory.
std::string runtimeDirectory();
std::string inRuntimeDirectory();

// One sentence about a call that failed; empty for one that succeeded.
std::string failureText(const Report& report);

} // namespace tarn::ctl
