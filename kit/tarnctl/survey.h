// The gateway's objects, asked of it through the library and decoded by the layout in use.
//
//     Survey survey("stations"); // throws UsageError without a layout
//     for (const Interface& interface : survey.interfaces({"wifi0"}))
//         for (const Fields& station : survey.stations(interface))
//             ... station["rssi"] ...
//     survey.notes(), survey.exitCode()                // what was refused meanwhile
//
// What the layout in use does not tell is a Cell that is not known. A status other than 0 makes a note and leaves out what it
// was asked for. The device service is needed: a call of it that fails throws CallFailure. Another service that fails makes a
// note, and is not asked again.
#pragma once

#include "call.h"
#include "cell.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tarn::ctl
{

using Assignments = std::vector<std::string>; // "radioId=1"

// An SSID interface, and the access point on it, which has the same id.
struct Interface
{
    std::uint32_t radioId = 0;
    std::uint32_t id = 0;
    std::string name;      // "wifi0", as the module's calls know it; "1.1" if the layout does not tell
    bool onModule = false; // it has a name, by which the module's calls may know it
    Fields data;           // TarnSsidIntfData

    Assignments asSsid() const;
    Assignments asAccessPoint() const;
    Assignments with(Assignments more) const; // asAccessPoint() and more
};

struct Radio
{
    std::uint32_t id = 0;
    std::string name; // "radio0"; empty if the layout does not tell
    bool onModule = false;
    Fields data; // TarnRadioData
    std::vector<Interface> interfaces;

    Assignments asRadio() const;
    std::string title() const; // "radio 1 (radio0)"
};

// All outputs of a call: the fields of its records and blocks, and its numbers, texts and addresses by their names.
Fields outputsOf(const Report& report);

class Survey
{
public:
    // For a verb that can do without a layout.
    Survey() = default;
    // For one that cannot: throws UsageError if there is none.
    explicit Survey(const std::string& verb);

    // --- Objects ---

    // Those that the targets name, all if there are none. A target is a radio by its id or name, for that radio or all of its
    // interfaces, an interface by its name or as RADIO.INTERFACE, for that interface or its radio. Throws UsageError for one
    // that the gateway does not have.
    std::vector<Radio> radios(const std::vector<std::string>& targets = {});
    std::vector<Interface> interfaces(const std::vector<std::string>& targets = {});

    // The same for a target that has to name exactly one.
    Radio radio(const std::string& target);
    Interface interface(const std::string& target);

    std::vector<Fields> stations(const Interface& interface);
    std::vector<Fields> neighbours(const Radio& radio);

    // --- What one call tells ---

    // The outputs of a function; none if it was refused. Of a refusal that is `expected` there is no note.
    Fields ask(const std::string& function, const Assignments& assignments = {}, bool expected = false);

    // What a pair of functions enumerates: one says how many there are, the other tells of each by `index`.
    std::vector<Fields> list(const std::string& numberFunction, const std::string& atFunction,
                             const Assignments& assignments = {});

    // --- What was refused ---

    const std::vector<std::string>& notes() const
    {
        return notes_;
    }

    // That of the first refusal; success if there was none.
    ExitCode exitCode() const
    {
        return exitCode_;
    }

private:
    const std::vector<Radio>& all();
    Radio readRadio(std::uint32_t id);
    std::vector<Interface> readInterfaces(const Radio& radio);
    std::int64_t numberOf(const std::string& function, const Assignments& assignments);
    void note(const Report& report, const Assignments& assignments);

    std::optional<std::vector<Radio>> radios_; // once they have been asked for
    std::set<std::string> lostServices_;
    std::vector<std::string> notes_;
    ExitCode exitCode_ = ExitCode::kSuccess;
};

} // namespace tarn::ctl
