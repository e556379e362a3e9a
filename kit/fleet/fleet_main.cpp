// tarn-fleet: the operator's side of the calls through a message broker.
#include "fleet_verbs.h"
#include "operator_settings.h"
#include "tarnctl/program.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>

#include <mosquitto.h>

namespace
{

constexpr char kHelp[] = R"(Exit codes:
  0  success
  1  anything else: nothing found, a file not written, not all were asked
  2  usage: the command line cannot be carried out
  3  the library refused an argument; nothing was sent
  4  a gateway is not there
  5  time-out: a gateway did not answer, and the outcome is unknown
  6  a gateway refused, another IPC failure, or no connection to a broker
  7  a service answered with a status other than 0

Environment:
  KORIIL_DIR    directory of the services' sockets, for attach
  KORIIL_TRACE  highest level of the trace lines on standard error, or off
  NO_COLOR      no colours, if it is not empty
  TARN_FLEET    file of settings, as for --config
  TARN_LAYOUT   layout file, as for --layout; empty for none)";

} // namespace

int main(int count, char** arguments)
try
{
    using namespace tarn;
    std::signal(SIGPIPE, SIG_IGN);
    mosquitto_lib_init();
    ctl::Console console(std::cout, std::cerr);
    console.program = "tarn-fleet";
    console.terminal = ctl::terminalOfProcess();
    console.colours = console.terminal.showsResults && console.terminal.obeysColours;
    std::optional<std::string> layout;
    fleet::OperatorOptions options;
    CLI::App parser("Reaches gateways through a message broker: one as if it were here, or many with one call.", "tarn-fleet");
    ctl::addCommonOptions(parser, console, layout, TARN_VERSION);
    fleet::declare(parser, options);
    parser.footer(kHelp);
    ctl::Verbs verbs(parser, console);
    const fleet::SettingsSource settings = [&options] { return fleet::linkSettings(options); };
    verbs.group("Many gateways", true);
    fleet::addList(verbs, settings);
    fleet::addCall(verbs, settings);
    verbs.group("Many gateways", false);
    fleet::addEvents(verbs, settings);
    verbs.group("One gateway", false);
    fleet::addAttach(verbs, settings);
    verbs.group("", false);
    ctl::addComplete(verbs, true);
    return static_cast<int>(ctl::carryOut(parser, verbs, console, layout, {arguments + 1, arguments + count}, [] {}));
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "tarn-fleet: %s\n", error.what());
    return static_cast<int>(tarn::ctl::ExitCode::kOther);
}
