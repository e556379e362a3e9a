// `tarnctl mirror`: port mirroring of the Wi-Fi module.
#include "tarnctl/verbs/verbs.h"

namespace tarn::ctl
{

namespace
{

struct MirrorOptions
{
    std::optional<std::string> state; // to switch to
};

void declare(Syntax& syntax, MirrorOptions& options)
{
    syntax.text("STATE", options.state, "on or off");
}

ExitCode mirror(const Console& console, const MirrorOptions& options)
{
    if (options.state)
        performOrFail("tarn_qtn_mirror_set_mirror_enable", {"enable=" + switchValue(*options.state)});
    const Report report = performOrFail("tarn_qtn_mirror_get_mirror_status");
    return writeResult(console, "mirror", {{"status", "mirror status", report.number("status")}});
}

} // namespace

void addMirror(Verbs& verbs)
{
    verbs.add("mirror", "Reads or switches the Wi-Fi module's port mirroring", &declare, &mirror, &switchStates);
}

} // namespace tarn::ctl
