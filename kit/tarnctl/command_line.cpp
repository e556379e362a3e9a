#include "command_line.h"

#include "program.h"
#include "remote_gateway.h"
#include "verbs/verbs.h"

#include <CLI/CLI.hpp>

#include <cstdlib>

namespace tarn::ctl
{

namespace
{

constexpr char kHelp[] = R"(Exit codes:
  0  success
  1  anything else: nothing found, a difference, a file not written, the "no" of a local utility
  2  usage: the command line cannot be carried out
  3  the library refused an argument; nothing was sent
  4  no such service is running
  5  time-out: no reply, or fewer events than asked for, in time
  6  another IPC failure
  7  the service answered with a status other than 0

Environment:
  KORIIL_DIR    directory of the services' sockets; --directory sets it
  KORIIL_TRACE  highest level of the trace lines on standard error, or off
  NO_COLOR      no colours, if it is not empty
  TARN_LAYOUT   layout file, as for --layout; empty for none)";

void addVerbs(Verbs& verbs)
{
    verbs.group("The gateway", true);
    addStatus(verbs);
    addRadios(verbs);
    addSsids(verbs);
    addStations(verbs);
    addScan(verbs);
    addChannel(verbs);
    addBandwidth(verbs);
    addPower(verbs);
    addSecurity(verbs);
    addFilter(verbs);
    addKick(verbs);
    addWps(verbs);
    addDfs(verbs);
    addCounters(verbs);
    addBoot(verbs);
    addSmartWifi(verbs);
    addTemperature(verbs);
    addVersions(verbs);
    addFirmware(verbs);
    addMirror(verbs);
    addTelnet(verbs);
    addLogLevel(verbs);
    addIpc(verbs);
    verbs.group("Every function", false);
    addList(verbs);
    addDescribe(verbs);
    addCall(verbs);
    addEvents(verbs);
    addLayout(verbs);
    verbs.group("For monitoring", false);
    addMetrics(verbs);
    verbs.group("For a support case", false);
    addReport(verbs);
    verbs.group("For a support case", true);
    addDiff(verbs);
    verbs.group("This program", false);
    addPublish(verbs);
    addGateway(verbs);
    addCompletion(verbs);
    addHelp(verbs);
    verbs.group("", false);
    addComplete(verbs);
}

} // namespace

int run(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err, const Terminal& terminal)
{
    Console console(out, err);
    console.terminal = terminal;
    console.colours = terminal.showsResults && terminal.obeysColours;
    std::optional<std::string> layout;
    std::string directory, gateway;
    std::optional<RemoteGateway> remote;
    CLI::App parser("Shows and sets what a gateway's Wi-Fi does, and calls every function of its client library by its name.",
                    "tarnctl");
    addCommonOptions(parser, console, layout, TARNCTL_VERSION);
    CLI::Option* const local =
        parser.add_option("--directory", directory, "Directory of the services' sockets, instead of KORIIL_DIR")
            ->type_name("DIRECTORY");
    parser.add_option("--gateway", gateway, "A gateway behind a message broker, reached with tarn-fleet as that is set up")
        ->type_name("NAME")
        ->excludes(local);
    parser.footer(kHelp);
    Verbs verbs(parser, console);
    addVerbs(verbs);
    const auto prepare = [&]
    {
        if (!gateway.empty())
            remote.emplace(gateway);
        if (!directory.empty())
            setenv("KORIIL_DIR", directory.c_str(), 1);
    };
    return static_cast<int>(carryOut(parser, verbs, console, layout, arguments, prepare));
}

} // namespace tarn::ctl
