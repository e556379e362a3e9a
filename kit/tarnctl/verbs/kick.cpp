// `tarnctl kick`: sends stations away.
#include "tarnctl/change.h"
#include "tarnctl/verbs/verbs.h"

#include <optional>
#include <stdexcept>

namespace tarn::ctl
{

namespace
{

struct KickOptions
{
    std::string address;
    std::vector<std::string> more;
};

void declareKick(Syntax& syntax, KickOptions& options)
{
    syntax.text("ADDRESS", options.address, "A station's MAC address");
    syntax.texts("MORE", options.more, "Other stations' addresses");
    syntax.footer("A station may come back at once; tarnctl filter keeps it away.");
}

std::optional<Interface> interfaceOf(Survey& survey, const std::string& address)
{
    for (const Interface& interface : survey.interfaces())
        for (const Fields& station : survey.stations(interface))
            if (station["macAddress"].text() == address)
                return interface;
    return std::nullopt;
}

ExitCode kick(const Console& console, const KickOptions& options)
{
    std::vector<std::string> addresses = {macArgument(options.address)};
    for (const std::string& address : options.more)
        addresses.push_back(macArgument(address));

    Survey survey("kick");
    std::vector<Interface> interfaces;
    for (const std::string& address : addresses) // all of them first, so that nobody is sent away if one is not there
    {
        const std::optional<Interface> interface = interfaceOf(survey, address);
        if (!interface)
            return console.fail(ExitCode::kOther, "no access point has a station " + address +
                                                      "; tarnctl stations shows those that are connected");
        interfaces.push_back(*interface);
    }
    std::vector<Change> changes;
    for (std::size_t i = 0; i < addresses.size(); ++i)
    {
        const Report report =
            performOrFail("TarnKickOutAccessPointAssociated", interfaces[i].with({"macAddress=" + addresses[i]}));
        changes.push_back({interfaces[i].name, "the stations", textCell(addresses[i]), {}, report, true});
    }
    return writeChanges(console, "kick", survey, changes);
}

} // namespace

void addKick(Verbs& verbs)
{
    verbs.add("kick", "Sends stations away", &declareKick, &kick);
}

} // namespace tarn::ctl
