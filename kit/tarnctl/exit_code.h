// The exit codes of the program.
#pragma once

namespace tarn::ctl
{

enum class ExitCode
{
    kSuccess = 0,
    kOther = 1,         // anything else: nothing found, a file not written, the answer "no" of a local utility
    kUsage = 2,         // the command line is not valid
    kRejected = 3,      // the library refused an argument; nothing was sent
    kNoService = 4,     // the service is not running
    kTimedOut = 5,      // no reply, or fewer events than asked for, in time
    kIpcFailed = 6,     // another failure on the way to the service or back
    kServiceStatus = 7, // the service answered with a status other than 0
};

} // namespace tarn::ctl
