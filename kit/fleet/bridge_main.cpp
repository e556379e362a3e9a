// tarn-bridge: the program on the gateway.
#include "bridge.h"
#include "bridge_settings.h"
#include "clock.h"
#include "event_source.h"
#include "kor_iil.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include <mosquitto.h>
#include <unistd.h>

namespace
{

using namespace tarn::fleet;

constexpr int kFailed = 1;
constexpr int kUsage = 2;

std::uint32_t execute(void* /*context*/, const char* callerId, const char* service, std::uint32_t wait, std::uint32_t command,
                      std::uint32_t length, void* message)
{
    return KorIilExecute(callerId, service, wait, command, length, message);
}

// A line as a daemon's manager takes it: its priority, then the text.
void log(void* /*context*/, int priority, const char* line)
{
    std::fprintf(stderr, "<%d>tarn-bridge: %s\n", priority, line);
}

int fail(int code, const char* problem)
{
    log(nullptr, kLogError, problem);
    return code;
}

bool readPolicy(const BridgeOptions& options, Policy& policy)
{
    if (options.policyFile[0] == '\0')
    {
        policy = Policy::ofReading();
        return true;
    }
    char problem[1024];
    const bool isGood = policy.read(options.policyFile, problem, sizeof problem);
    if (!isGood)
        log(nullptr, kLogError, problem);
    return isGood;
}

// A wrong policy leaves the one that holds.
void readPolicyAgain(const BridgeOptions& options, Bridge& bridge)
{
    Policy policy;
    if (readPolicy(options, policy))
    {
        bridge.setPolicy(policy);
        log(nullptr, kLogNotice, "the policy has been read again");
    }
    else
        log(nullptr, kLogWarning, "the policy stays as it was");
}

// Writes the line as soon as a broker is reached. True until that is done.
bool isWaitingToSayReady(const BridgeOptions& options, const Bridge& bridge)
{
    if (bridge.counters().births == 0)
        return true;
    static const char kReady[] = "ready\n";
    if (write(static_cast<int>(options.readyDescriptor), kReady, sizeof kReady - 1) < 0)
        log(nullptr, kLogWarning, "the descriptor of --ready-descriptor cannot be written to");
    return false;
}

// Until a signal ends the program.
void serve(const BridgeOptions& options, Bridge& bridge, const sigset_t& signals)
{
    bool isWaiting = options.readyDescriptor != 0;
    for (;;)
    {
        constexpr timespec kLook = {0, 20000000};
        const int signal = isWaiting ? sigtimedwait(&signals, nullptr, &kLook) : sigwaitinfo(&signals, nullptr);
        if (signal == SIGTERM || signal == SIGINT)
            return;
        if (signal == SIGHUP)
            readPolicyAgain(options, bridge);
        if (isWaiting)
            isWaiting = isWaitingToSayReady(options, bridge);
    }
}

int run(const BridgeOptions& options)
{
    // Blocked in all threads, and waited for by this one.
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    Policy policy;
    if (!readPolicy(options, policy))
        return kUsage;
    if (mosquitto_lib_init() != MOSQ_ERR_SUCCESS)
        return fail(kFailed, "libmosquitto cannot be initialised");
    const BridgePlatform platform = {nullptr, execute, log};
    Bridge bridge(options.bridge, platform, policy);
    if (!bridge.start())
        return fail(kFailed, "the system has no thread, descriptor or random number left");
    if (options.isEvents && !startEvents(bridge, options.renewSeconds))
        return fail(kFailed, "the system has no thread left for events");
    serve(options, bridge, signals);
    stopEvents();
    bridge.stop();
    return 0;
}

} // namespace

int main(int count, char** arguments)
{
    BridgeOptions options;
    char problem[1024];
    std::snprintf(options.bridge.programVersion, sizeof options.bridge.programVersion, "%s", TARN_VERSION);
    if (!readArguments(options, count, arguments, problem, sizeof problem))
        return fail(kUsage, problem);
    if (options.isHelp)
        return std::fputs(kBridgeHelp, stdout) < 0 || std::fflush(stdout) != 0 ? kFailed : 0;
    if (options.isVersion)
        return std::puts(TARN_VERSION) < 0 || std::fflush(stdout) != 0 ? kFailed : 0;
    return run(options);
}
