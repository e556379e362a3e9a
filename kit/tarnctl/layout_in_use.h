// The layout by which records, words and statuses are shown and taken by name.
//
// It is, whichever there is first: the file of --layout, that of TARN_LAYOUT, the one that a running simulated gateway hands
// out, /etc/tarn/layout.json. It is loaded when something is to be decoded, not before.
#pragma once

#include "layout/layout.h"

#include <functional>
#include <optional>
#include <string>

namespace tarn::ctl
{

struct LayoutInUse
{
    layout::Layout layout;
    std::string text;   // of its file
    std::string source; // where it comes from
};

// Begins anew: with that file of --layout, an empty name for no layout at all. What is wrong with a layout that nobody named on
// the command line or in the environment is a remark.
void chooseLayout(std::optional<std::string> file, std::function<void(const std::string&)> remark);

// Loads the layout now if it was named by --layout or TARN_LAYOUT, so that nothing is sent before a fault in it is known.
// Throws UsageError.
void checkNamedLayout();

// Begins anew with the same choice, because another gateway is asked now.
void loadLayoutAnew();

// Null if there is none. Throws UsageError for a named one that cannot be used.
const LayoutInUse* layoutInUse();

// The same for a layout that is needed for one name in it, a record's or FUNCTION.ARGUMENT: null as well if it says nothing of
// that. The one that a simulated gateway hands out is not read for it, which takes most of the time of a call.
const LayoutInUse* layoutThatTellsOf(const std::string& name);

// What to do where one is needed and there is none.
inline constexpr char kHowToGiveALayout[] =
    "expected a layout by --layout FILE, TARN_LAYOUT, a running simulated gateway, or /etc/tarn/layout.json";

} // namespace tarn::ctl
