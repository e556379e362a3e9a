// tarn-fleet as a process, with the settings in `fleet.conf` of a directory, where its output goes too.
#pragma once

#include "support/process.h"
#include "support/temporary_directory.h"

#include <string>
#include <vector>

namespace fleet_test
{

struct FleetRun
{
    int exit = -1; // its code; 128 and the signal that ended it
    std::string out, err;
};

class FleetProcess
{
public:
    // One at a time in a directory. `program`, if it is another one, starts tarn-fleet or does without.
    FleetProcess(const tarn::test::TemporaryDirectory& directory, const std::vector<std::string>& words,
                 const std::string& program = TARN_FLEET_PROGRAM);

    void signal(int number) const;
    // What it has written so far.
    std::string out() const;
    std::string err() const;
    // Waits for its end.
    FleetRun finish();

private:
    std::string outPath_, errPath_;
    tarn::test::Process process_;
};

} // namespace fleet_test
