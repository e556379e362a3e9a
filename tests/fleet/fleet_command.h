// A run of tarn-fleet, with the settings in `fleet.conf` of a directory, where its output goes too.
#pragma once

#include "text_files.h"

#include <cstdlib>
#include <future>
#include <string>

#include <sys/wait.h>

namespace fleet_test
{

struct FleetRun
{
    int exit = -1;
    std::string out, err;
};

// `arguments` as a shell takes them.
inline FleetRun runFleet(const std::string& directory, const std::string& arguments)
{
    const std::string command = "TARN_FLEET=" + directory + "/fleet.conf TARN_LAYOUT= " TARN_FLEET_PROGRAM " " + arguments +
                                " > " + directory + "/out 2> " + directory + "/err";
    const int state = std::system(command.c_str());
    return {WIFEXITED(state) ? WEXITSTATUS(state) : -1, contents(directory + "/out"), contents(directory + "/err")};
}

inline std::future<FleetRun> beginFleet(const std::string& directory, const std::string& arguments)
{
    return std::async(std::launch::async, runFleet, directory, arguments);
}

} // namespace fleet_test
