// `tarnctl telnet`: telnet access to the Wi-Fi module.
#include "tarnctl/listing.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/verbs/verbs.h"

namespace tarn::ctl
{

namespace
{

struct TelnetOptions
{
    std::optional<std::string> state; // to switch to
    std::optional<std::string> processId;
};

void declareTelnet(Syntax& syntax, TelnetOptions& options)
{
    syntax.text("STATE", options.state, "on or off");
    syntax.text("--pid", options.processId, "The process on whose behalf it is switched; needed to switch");
}

ExitCode telnet(const Console& console, const TelnetOptions& options)
{
    if (options.state.has_value() != options.processId.has_value())
        throw UsageError("telnet: expected a state and --pid, the process on whose behalf it is switched, or neither");
    constexpr char kSwitch[] = "tarn_qtn_mirror_set_telnet_enable";
    if (options.state)
        performOrFail(kSwitch, {switchAssignment(kSwitch, "enable", *options.state), "pid=" + *options.processId});
    const Fields telnet = outputsOf(performOrFail("tarn_qtn_mirror_get_telnet_status"));
    Page page("telnet");
    page.value("status", telnet["status"], "telnet status");
    page.value("references", telnet["ref_cnt"]);
    return page.write(console, Survey());
}

} // namespace

void addTelnet(Verbs& verbs)
{
    verbs.add("telnet", "Reads or switches the Wi-Fi module's telnet access", &declareTelnet, &telnet, &switchStates);
}

} // namespace tarn::ctl
