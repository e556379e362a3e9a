// tarn-gateway: the command line of the simulated gateway.
#include "base/json_reader.h"
#include "base/option_checks.h"
#include "gateway.h"
#include "scenario.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace
{

using namespace tarn::simulator;

constexpr int kFailed = 1;
constexpr int kUsage = 2;

// The signals that end the program: blocked in every thread, and waited for.
sigset_t endingSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    return signals;
}

void sayReady(int descriptor)
{
    static const char kReady[] = "ready\n";
    if (write(descriptor, kReady, sizeof kReady - 1) != static_cast<ssize_t>(sizeof kReady - 1))
        throw std::runtime_error("descriptor " + std::to_string(descriptor) + " cannot be written to: " + std::strerror(errno) +
                                 "; expected one that is open for writing");
    if (descriptor != STDOUT_FILENO)
        close(descriptor);
}

GatewayLayout layoutFrom(const std::string& path)
{
    if (path.empty())
        return {};
    GatewayLayout layout(path);
    for (const std::string& line : layout.missing())
        std::fprintf(stderr, "tarn-gateway: left out, as the layout %s lacks it: %s\n", layout.used().name.c_str(),
                     line.c_str());
    return layout;
}

struct Options
{
    std::string scenario;
    std::string layout;
    double speed = 1;
    std::uint32_t seed = 0; // 0: the scenario's
    std::string script;
    bool isLogging = false;
    int readyDescriptor = STDOUT_FILENO;
};

void run(const Options& options)
{
    const sigset_t signals = endingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    Model model(layoutFrom(options.layout));
    if (options.scenario.empty())
        readDefaultScenario(model);
    else
        readScenarioFile(options.scenario, model);
    if (options.seed != 0)
        model.random.state = options.seed;

    Gateway gateway(
        model, [] { kill(getpid(), SIGTERM); }, options.speed);
    gateway.setLogging(options.isLogging);
    if (!options.script.empty())
        gateway.play(parseScript(tarn::base::readText(options.script, "a script"), options.script));
    gateway.start();
    sayReady(options.readyDescriptor);
    int signal = 0;
    sigwait(&signals, &signal);
    gateway.stop();
    if (gateway.hasFailed())
        throw std::runtime_error("a service could not go on");
}

int printGenerated(const std::vector<std::size_t>& sizes)
{
    const std::size_t room[] = {kRadioRoom, kInterfaceRoom, kStationRoom};
    for (std::size_t i = 0; i < sizes.size(); ++i)
        if (sizes[i] > room[i] || (sizes[i] == 0 && i < 2))
            throw CLI::ValidationError("--generate",
                                       std::to_string(sizes[i]) +
                                           "; expected 1 to 8 radios, 1 to 8 interfaces and at most 128 stations");
    std::puts(generatedScenario(sizes[0], sizes[1], sizes[2]).dump(1).c_str());
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        CLI::App app("The simulated gateway: the services TARN, QTN_RPC_PROXY and QTN_MIRROR over one model of a gateway.\n"
                     "It prints one line, ready, once all of them can be called, and ends on SIGTERM or SIGINT.\n"
                     "Exit status: 0 ended as asked, 1 could not start or go on, 2 wrong usage.");
        app.name("tarn-gateway");
        Options options;
        std::string directory;
        app.add_option("--scenario", options.scenario, "Scenario file, JSON; a gateway with two radios if left out")
            ->type_name("FILE");
        app.add_option("--layout", options.layout,
                       "Layout file, JSON, that says what is inside records; the simulator's own if left out")
            ->type_name("FILE");
        app.add_option("--directory", directory, "Runtime directory of the IPC, absolute; sets KORIIL_DIR")
            ->type_name("DIRECTORY");
        app.add_option("--ready-fd", options.readyDescriptor,
                       "Descriptor to write the line to instead of standard output; closed afterwards")
            ->type_name("N")
            ->check(tarn::base::between(0, std::numeric_limits<int>::max()));
        app.add_option("--speed", options.speed,
                       "Gateway seconds for each second of real time; at 0 no time passes until it is stepped")
            ->type_name("FACTOR")
            ->check(tarn::base::between(0.0, 1e6));
        app.add_option("--seed", options.seed, "Where random numbers start, in place of the scenario's")
            ->type_name("N")
            ->check(tarn::base::between(1u, Random::kModulus - 1));
        app.add_option("--script", options.script, "Orders, one a line, each behind the second at which it is carried out")
            ->type_name("FILE");
        app.add_flag("--log", options.isLogging, "Log each request on standard error: function, caller, arguments, status");
        app.add_flag_callback(
            "--scenario-schema",
            []
            {
                std::puts(scenarioSchema().dump(1).c_str());
                throw CLI::Success();
            },
            "Print the JSON Schema of scenario files");
        std::vector<std::size_t> generated;
        app.add_option("--generate", generated,
                       "Print a scenario with so many radios, interfaces of each, and stations of each of these")
            ->type_name("RADIOS INTERFACES STATIONS")
            ->expected(3);
        app.set_version_flag("--version", "tarn-gateway " TARN_VERSION);
        try
        {
            app.parse(argc, argv);
            if (!generated.empty())
                return printGenerated(generated);
        }
        catch (const CLI::Success& request) // for help, the version or the schema
        {
            return app.exit(request);
        }
        catch (const CLI::ParseError& error)
        {
            std::fprintf(stderr, "tarn-gateway: %s; tarn-gateway --help shows what is expected\n", error.what());
            return kUsage;
        }
        if (!directory.empty())
            setenv("KORIIL_DIR", directory.c_str(), 1);
        run(options);
        return 0;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "tarn-gateway: %s\n", error.what());
        return kFailed;
    }
}
