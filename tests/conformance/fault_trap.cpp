#include "fault_trap.h"

#include <csetjmp>
#include <csignal>

namespace conformance
{

namespace
{

sigjmp_buf comeBack;
const void* volatile faultAddress;
volatile sig_atomic_t armed = 0;

void onFault(int signal, siginfo_t* info, void*)
{
    if (armed == 0)
    {
        // Not one of ours: let it end the program the usual way.
        std::signal(signal, SIG_DFL);
        return;
    }
    faultAddress = info->si_addr;
    siglongjmp(comeBack, 1);
}

void install()
{
    struct sigaction action = {};
    action.sa_sigaction = onFault;
    // Not blocked while it runs, since it is left by a jump that restores no signal mask.
    action.sa_flags = SA_SIGINFO | SA_NODEFER;
    sigemptyset(&action.sa_mask);
    sigaction(SIGSEGV, &action, nullptr);
    sigaction(SIGBUS, &action, nullptr);
}

} // namespace

bool runTrapped(void (*action)(void* context), void* context, const void** address)
{
    static const bool installed = (install(), true);
    static_cast<void>(installed);
    if (sigsetjmp(comeBack, 0) != 0)
    {
        armed = 0;
        *address = faultAddress;
        return false;
    }
    armed = 1;
    action(context);
    armed = 0;
    return true;
}

} // namespace conformance
