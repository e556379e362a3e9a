// `tarnctl boot`: what the Wi-Fi module keeps over a restart.
#include "tarnctl/change.h"
#include "tarnctl/listing.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/verbs/verbs.h"

namespace tarn::ctl
{

namespace
{

struct BootOptions
{
    std::string action;
    std::vector<std::string> words;
};

std::vector<std::string> bootActions()
{
    return {"get", "set"};
}

void declareBoot(Syntax& syntax, BootOptions& options)
{
    syntax.text("ACTION", options.action, "get or set");
    syntax.texts("WORD", options.words, "Names; or an interface, a name and a value");
    syntax.footer("  boot get NAME...               reads boot parameters\n"
                  "  boot set INTERFACE NAME VALUE  sets a parameter of an interface");
}

ExitCode get(const Console& console, const std::vector<std::string>& names)
{
    if (names.empty())
        throw UsageError("boot get: expected one name or more");
    Page page("boot");
    Listing& list = page.list("parameters", {{"name", "name", &strong}, {"value", "value"}});
    for (const std::string& name : names)
    {
        const Report report = performOrFail("tarn_qcsapi_bootcfg_get_parameter", {"param_name=" + name});
        Fields& row = list.rows.emplace_back();
        row.set("name", textCell(name));
        row.set("value", textCell(report.text("param_value")));
    }
    page.writeUndecoded(console);
    return ExitCode::kSuccess;
}

ExitCode set(const Console& console, const std::vector<std::string>& words)
{
    if (words.size() != 3)
        throw UsageError("boot set: expected an interface, a name and a value");
    const Report report = performOrFail("tarn_qcsapi_config_update_parameter",
                                        {"intf_name=" + words[0], "param_name=" + words[1], "param_value=" + words[2]});
    return writeChanges(console, "boot-change", Survey(), {{words[0], words[1], {}, textCell(words[2]), report}});
}

ExitCode boot(const Console& console, const BootOptions& options)
{
    requireAction("boot", options.action, bootActions());
    return options.action == "get" ? get(console, options.words) : set(console, options.words);
}

} // namespace

void addBoot(Verbs& verbs)
{
    verbs.add("boot", "Reads or sets what the Wi-Fi module keeps over a restart", &declareBoot, &boot, &bootActions);
}

} // namespace tarn::ctl
