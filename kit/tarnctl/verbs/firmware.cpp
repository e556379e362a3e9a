// `tarnctl firmware`: what the Wi-Fi module runs.
#include "tarnctl/listing.h"
#include "tarnctl/verbs/verbs.h"

namespace tarn::ctl
{

namespace
{

ExitCode firmware(const Console& console)
{
    const Report report = performOrFail("tarn_qcsapi_firmware_get_version");
    Page page("firmware");
    page.value("version", textCell(report.text("firmware_version")), "firmware");
    page.writeUndecoded(console);
    return ExitCode::kSuccess;
}

} // namespace

void addFirmware(Verbs& verbs)
{
    verbs.add("firmware", "Shows the version of the Wi-Fi module's firmware", &firmware);
}

} // namespace tarn::ctl
