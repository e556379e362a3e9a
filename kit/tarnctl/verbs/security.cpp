// `tarnctl security`: how the networks are protected.
#include "tarnctl/listing.h"
#include "tarnctl/verbs/verbs.h"

namespace tarn::ctl
{

namespace
{

struct SecurityOptions
{
    std::vector<std::string> targets;
    bool showsSecrets = false;
};

void declareSecurity(Syntax& syntax, SecurityOptions& options)
{
    declareTargets(syntax, options.targets);
    syntax.flag("--secrets", options.showsSecrets, "Show passphrases and secrets");
}

// That there is one may be known, and not what it is.
Cell hidden(const Cell& secret)
{
    Cell cell;
    if (secret.isKnown() && !secret.text().empty())
        cell.shown = "(hidden)";
    return cell;
}

ExitCode security(const Console& console, const SecurityOptions& options)
{
    Survey survey("security");
    Page page("security");
    Listing& list = page.list("security", {{"interface", "interface", &strong},
                                           {"ssid", "ssid"},
                                           {"security", "beaconType"},
                                           {"authentication", "authenticationMode"},
                                           {"encryption", "encryptionModes"},
                                           {"pmf", "pmf", &switchTone, true},
                                           {"passphrase", "passphrase"},
                                           {"group_key_interval", "groupKeyInterval"},
                                           {"radius_server", "radiusAddress"},
                                           {"radius_port", "radiusPort"},
                                           {"radius_secret", "radiusSecret"}});
    for (const Interface& interface : survey.interfaces(options.targets))
    {
        Fields row = survey.ask("TarnGetAccessPointSecurity", interface.asAccessPoint());
        row.set("interface", textCell(interface.name));
        row.set("ssid", interface.data["ssid"]);
        if (!options.showsSecrets)
            for (const char* secret : {"passphrase", "radiusSecret"})
                row.set(secret, hidden(row[secret]));
        list.rows.push_back(std::move(row));
    }
    return page.write(console, survey);
}

} // namespace

void addSecurity(Verbs& verbs)
{
    verbs.add("security", "Shows how the networks are protected", &declareSecurity, &security);
}

} // namespace tarn::ctl
