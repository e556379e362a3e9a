// One call of one function, and what came of it.
#pragma once

#include "arguments.h"
#include "catalogue.h"
#include "console.h"
#include "exit_code.h"
#include "observer.h"

#include <optional>
#include <string>
#include <vector>

namespace tarn::ctl
{

inline constexpr char kOwnCallerId[] = "tarnctl";

enum class Outcome
{
    kDone,
    kRejected,
    kNoService,
    kTimedOut,
    kIpcFailed,
    kServiceStatus,
    kNo // a local utility's answer
};

// Nothing stands for a null pointer.
using CallerId = std::optional<std::string>;

struct Report
{
    const Function* function = nullptr;
    CallerId callerId;
    Arguments arguments; // outputs as they are after the call
    LocalResult result;  // for a command function the number alone
    Observation seen;
    Outcome outcome = Outcome::kDone;

    // Whether the service's reply, and with it every output, is there.
    bool hasReply() const;
    // What an argument holds after the call.
    const Argument& argument(const std::string& name) const;
};

Report perform(const Function& function, Arguments arguments, const CallerId& callerId = kOwnCallerId,
               Passage passage = Passage::kSend);

// The same for arguments as they would stand on the command line.
Report perform(const std::string& function, const std::vector<std::string>& assignments = {});

// What became of a call, and of a request that was sent without the library.
Outcome outcomeOf(const Report& report);
Outcome outcomeOf(std::uint32_t ipcStatus);

ExitCode exitCodeOf(Outcome outcome);
const char* toString(Outcome outcome);

// One sentence about a call that did not do; empty for one that did.
std::string failureText(const Report& report);

} // namespace tarn::ctl
