// `tarnctl mirror`: port mirroring of the Wi-Fi module.
#include "tarnctl/listing.h"
#include "tarnctl/verbs/verbs.h"

namespace tarn::ctl
{

namespace
{

struct MirrorOptions
{
    std::optional<std::string> state; // to switch to
};

void declareMirror(Syntax& syntax, MirrorOptions& options)
{
    syntax.text("STATE", options.state, "on or off");
}

ExitCode mirror(const Console& console, const MirrorOptions& options)
{
    constexpr char kSwitch[] = "tarn_qtn_mirror_set_mirror_enable";
    if (options.state)
        performOrFail(kSwitch, {switchAssignment(kSwitch, "enable", *options.state)});
    Page page("mirror");
    page.value("status", outputsOf(performOrFail("tarn_qtn_mirror_get_mirror_status"))["status"], "mirror status");
    return page.write(console, Survey());
}

} // namespace

void addMirror(Verbs& verbs)
{
    verbs.add("mirror", "Reads or switches the Wi-Fi module's port mirroring", &declareMirror, &mirror, &switchStates);
}

} // namespace tarn::ctl
