// `tarnctl complete -- WORD...`, and `tarn-fleet complete`: what can complete the last of these words, for the scripts that
// `tarnctl completion` writes.
//
// One offer a line: the word and, behind a tab, what it is. `<file>` and `<directory>` mean that names of these fit as well.
// Verbs and options are the parser's own, functions and arguments the catalogue's, fields and values the layout's, and what the
// gateway has is asked of it, unless it is behind a broker: that may take long. What cannot be found out is not offered; nobody
// wants an error while typing.
#include "tarnctl/layout_in_use.h"
#include "tarnctl/offers.h"
#include "tarnctl/order_offers.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/verbs/verbs.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <set>
#include <utility>

#include <unistd.h>

namespace tarn::ctl
{

namespace
{

struct CompleteOptions
{
    std::vector<std::string> words; // those behind the program, the last as far as it is typed
};

void declareComplete(Syntax& syntax, CompleteOptions& options)
{
    syntax.texts("WORD", options.words, "The words of the command line");
}

// A gateway that does not answer must not hold up the shell: the program ends with what it has offered.
class Patience
{
public:
    Patience()
    {
        std::signal(SIGALRM, [](int) { _exit(0); });
        alarm(kSeconds);
    }

    ~Patience()
    {
        alarm(0);
        std::signal(SIGALRM, SIG_DFL);
    }

    Patience(const Patience&) = delete;
    Patience& operator=(const Patience&) = delete;

private:
    static constexpr unsigned int kSeconds = 1;
};

// --- The words before ------------------------------------------------------------------------------------------------------

bool takesValue(const CLI::Option& option)
{
    return option.get_items_expected_max() > 0;
}

// The option that has this name, of the verb or of the program; null if neither has it.
const CLI::Option* optionNamed(const CLI::App& parser, const CLI::App* verb, const std::string& name)
{
    for (const CLI::App* const app : {verb, &parser})
        if (app != nullptr)
            if (const CLI::Option* const option = app->get_option_no_throw(name))
                return option;
    return nullptr;
}

// What the words before the last one amount to.
struct Before
{
    const CLI::App* verb = nullptr;
    const CLI::Option* waiting = nullptr; // the option whose value comes next
    std::vector<std::string> positional;  // the verb's
    std::string directory;
    std::optional<std::string> layout;
    bool isRemote = false; // what is meant is a gateway behind a broker

    void setOption(const CLI::Option& option, const std::string& value)
    {
        if (option.get_name() == "--directory")
            directory = value;
        if (option.get_name() == "--layout")
            layout = value;
        if (option.get_name() == "--gateway")
            isRemote = true;
    }
};

// Throws UsageError: behind a command that does not exist nothing can follow.
const CLI::App* verbNamed(const CLI::App& parser, const std::string& name)
{
    for (const CLI::App* const verb : subcommands(parser))
        if (verb->get_name() == name)
            return verb;
    throw UsageError("there is no command " + name);
}

// A value that may be left out is none if it looks like an option.
bool canBeValue(const std::string& word, const CLI::Option& option)
{
    return option.get_items_expected_min() > 0 || word.compare(0, 1, "-") != 0;
}

Before readBefore(const CLI::App& parser, const std::vector<std::string>& words)
{
    Before before;
    for (std::size_t i = 0; i + 1 < words.size(); ++i)
    {
        const std::string& word = words[i];
        const std::size_t equals = word.find('=');
        const CLI::Option* const waiting = std::exchange(before.waiting, nullptr);
        if (waiting != nullptr && canBeValue(word, *waiting))
            before.setOption(*waiting, word);
        else if (word.compare(0, 1, "-") == 0)
        {
            const CLI::Option* const option = optionNamed(parser, before.verb, word.substr(0, equals));
            if (option == nullptr || !takesValue(*option))
                continue;
            if (equals == std::string::npos)
                before.waiting = option;
            else
                before.setOption(*option, word.substr(equals + 1));
        }
        else if (before.verb == nullptr)
            before.verb = verbNamed(parser, word);
        else
            before.positional.push_back(word);
    }
    return before;
}

// --- Offers ----------------------------------------------------------------------------------------------------------------

Offers verbOffers(const CLI::App& parser)
{
    Offers offers;
    for (const CLI::App* const verb : subcommands(parser))
        offers.push_back({verb->get_name(), verb->get_description()});
    return offers;
}

Offers optionOffers(const CLI::App& parser, const CLI::App* verb)
{
    Offers offers;
    for (const CLI::App* const app : {verb, &parser})
        if (app != nullptr)
            for (const CLI::Option* const option : namedOptions(*app))
                if (verb == nullptr || app == verb || (option->get_name() != "--help" && option->get_name() != "--version"))
                    offers.push_back({"--" + option->get_lnames().front(), option->get_description()});
    return offers;
}

// The parser puts the values that it accepts behind the name of their type: "WHICH:{table,csv,json}".
Offers acceptedValues(const std::string& type)
{
    Offers offers;
    const std::size_t open = type.find('{');
    const std::size_t close = type.find('}');
    if (open == std::string::npos || close == std::string::npos)
        return offers;
    std::size_t begin = open + 1;
    while (begin <= close)
    {
        const std::size_t end = std::min(type.find(',', begin), close);
        offers.push_back({type.substr(begin, end - begin), ""});
        begin = end + 1;
    }
    return offers;
}

Offers serviceOffers()
{
    Offers offers;
    for (const std::string& name : serviceNames())
        offers.push_back({name, ""});
    return offers;
}

Offers optionValueOffers(const CLI::Option& option)
{
    const std::string type = option.get_type_name();
    if (type == "FILE" || type == "[FILE]")
        return {{"<file>", ""}};
    if (type == "DIRECTORY")
        return {{"<directory>", ""}};
    if (type == "SERVICE")
        return serviceOffers();
    return acceptedValues(type);
}

// With what the word is, if it is a function.
Offers wordOffers(const std::vector<std::string>& words)
{
    Offers offers;
    for (const std::string& word : words)
    {
        const auto function = std::find_if(catalogue().begin(), catalogue().end(),
                                           [&](const LibraryFunction& known) { return known.name == word; });
        offers.push_back({word, function == catalogue().end() ? "" : function->description});
    }
    return offers;
}

// The positional argument of the verb that comes next, and the values that it has already; null if the verb takes no more.
const CLI::Option* nextPositional(const CLI::App& verb, std::vector<std::string>& given)
{
    for (const CLI::Option* const option : verb.get_options())
    {
        if (!option->get_positional())
            continue;
        const auto most = static_cast<std::size_t>(option->get_items_expected_max());
        if (given.size() < most)
            return option;
        given.erase(given.begin(), given.begin() + static_cast<std::ptrdiff_t>(most));
    }
    return nullptr;
}

Offers positionalOffers(const Verbs& verbs, const Before& before, const std::string& present)
{
    std::vector<std::string> given = before.positional;
    const CLI::Option* const next = nextPositional(*before.verb, given);
    if (next == nullptr)
        return {};
    const std::string name = next->get_name();
    if (name == "GATEWAY" || name == "FILTER")
        return {};
    if (name == "TARGET" || name == "RADIO" || name == "WORD")
        return before.isRemote ? Offers() : targetOffers();
    if (name == "ADDRESS" || name == "MORE")
        return before.isRemote ? Offers() : stationOffers();
    if (name == "COMMAND")
        return verbOffers(verbs.parser());
    if (name == "FILE")
        return {{"<file>", ""}};
    if (name == "ARGUMENT=VALUE")
    {
        const std::string& function = before.positional[before.positional.size() - given.size() - 1];
        return argumentOffers(functionNamed(function), given, present, !before.isRemote);
    }
    if (name == "ORDER")
        return orderOffers(before.positional, present);
    return wordOffers(verbs.completionWords(before.verb->get_name()));
}

Offers offersFor(const Verbs& verbs, const Before& before, const std::string& present)
{
    if (before.waiting != nullptr && canBeValue(present, *before.waiting))
        return optionValueOffers(*before.waiting);
    const std::size_t equals = present.find('=');
    if (present.compare(0, 1, "-") == 0 && equals != std::string::npos)
    {
        const std::string name = present.substr(0, equals);
        const CLI::Option* const option = optionNamed(verbs.parser(), before.verb, name);
        Offers offers = option == nullptr ? Offers() : acceptedValues(option->get_type_name());
        for (Offer& offer : offers)
            offer.word.insert(0, name + "=");
        return offers;
    }
    if (present.compare(0, 1, "-") == 0)
        return optionOffers(verbs.parser(), before.verb);
    return before.verb == nullptr ? verbOffers(verbs.parser()) : positionalOffers(verbs, before, present);
}

ExitCode complete(const Console& console, const Verbs& verbs, bool isRemote, const std::vector<std::string>& words)
try
{
    const Patience patience;
    const std::string present = words.empty() ? "" : words.back();
    Before before = readBefore(verbs.parser(), words);
    before.isRemote = before.isRemote || isRemote;
    if (!before.directory.empty())
        setenv("KORIIL_DIR", before.directory.c_str(), 1);
    chooseLayout(before.layout, [](const std::string&) {});
    std::set<std::string> offered;
    for (const Offer& offer : offersFor(verbs, before, present))
    {
        const bool isWord = offer.word.front() != '<';
        if ((!isWord || offer.word.compare(0, present.size(), present) == 0) && offered.insert(offer.word).second)
            console.out << offer.word << '\t' << offer.description.substr(0, offer.description.find('\n')) << '\n';
    }
    return ExitCode::kSuccess;
}
catch (const std::exception&)
{
    return ExitCode::kSuccess;
}

} // namespace

void addComplete(Verbs& verbs, bool isRemote)
{
    const auto act = [&verbs, isRemote](const Console& console, const CompleteOptions& options)
    { return complete(console, verbs, isRemote, options.words); };
    verbs.add("complete", "Says what can complete a command line", &declareComplete, act);
}

} // namespace tarn::ctl
