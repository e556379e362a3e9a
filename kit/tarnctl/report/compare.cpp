#include "compare.h"

#include "base/mac_address.h"
#include "contract/contract.h"
#include "document.h"
#include "tarnctl/terminal_text.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

// What one side says about one question.
struct Side
{
    Json fields;      // of an answer
    std::string text; // "answered", or why it was refused; empty if it was not asked
};

struct ComparedSubject
{
    std::string function;
    std::string title;

    bool operator<(const ComparedSubject& other) const
    {
        return std::tie(function, title) < std::tie(other.function, other.title);
    }
};

struct Pair
{
    ComparedSubject subject;
    Side a;
    Side b;
};

bool isMacAddress(const Json& value)
{
    return value.is_string() && base::parseMacAddress(value.get<std::string>()).has_value();
}

// What an entry of a list is about; empty if nothing in it is an address. A station's also has that of its network.
std::string addressIn(const Json& fields)
{
    std::string bssid;
    for (const auto& [path, field] : fields.items())
    {
        if (!isMacAddress(field["value"]))
            continue;
        if (path.substr(path.rfind('.') + 1) != "bssid")
            return field["value"].get<std::string>();
        bssid = field["value"].get<std::string>();
    }
    return bssid;
}

// "wifi0, entry 02:00:00:00:01:01" rather than its number, which changes as others come and go.
std::string answerTitle(const Json& answer)
{
    Json subject = answer["subject"];
    const bool isEntry = subject.contains("index") && !subject.contains("station") && answer.contains("fields");
    const std::string address = isEntry ? addressIn(answer["fields"]) : "";
    if (address.empty())
        return subjectTitle(subject);
    subject.erase("index");
    return subjectTitle(subject) + ", entry " + address;
}

// Both sides beside each other, in the order of the first, what only the second has behind it.
class Pairs
{
public:
    void add(const Json& report, Side Pair::*side)
    {
        for (const Json& answer : report["answers"])
            place(answer, side) = {answer["fields"], "answered"};
        for (const Json& refusal : report["refused"])
            place(refusal, side) = {Json::object(), "refused: " + refusalOf(refusal)};
    }

    const std::vector<Pair>& all() const
    {
        return pairs_;
    }

private:
    static std::string refusalOf(const Json& refusal)
    {
        const Json name = refusal.value("status_name", Json(nullptr));
        return printable((name.is_string() ? name : refusal["message"]).get<std::string>());
    }

    // An entry may be there more than once.
    Side& place(const Json& answer, Side Pair::*side)
    {
        ComparedSubject subject{answer["function"].get<std::string>(), answerTitle(answer)};
        while (true)
        {
            const auto [found, isNew] = indices_.emplace(subject, pairs_.size());
            if (isNew)
                pairs_.push_back({subject, {}, {}});
            if (Side& place = pairs_[found->second].*side; place.text.empty())
                return place;
            subject.title += " (again)";
        }
    }

    std::vector<Pair> pairs_;
    std::map<ComparedSubject, std::size_t> indices_;
};

class Comparer
{
public:
    Comparer(const Json& a, const Json& b, bool withMeasured) : a_(a), b_(b), withMeasured_(withMeasured)
    {
    }

    Comparison compare()
    {
        compareServices();
        Pairs pairs;
        pairs.add(a_, &Pair::a);
        pairs.add(b_, &Pair::b);
        for (const Pair& pair : pairs.all())
            compare(pair);
        return std::move(result_);
    }

private:
    // What a service that answers on one side only would have told is left out question by question.
    void compareServices()
    {
        for (const Json& service : a_["services"])
        {
            const std::string name = service["service"].get<std::string>();
            const bool isAnswering = service["answered"].get<bool>();
            if (isAnswering == answers(b_, name))
                continue;
            oneSided_.insert(name);
            const Cell yes = textCell("answers");
            const Cell no = textCell("does not answer");
            add({"service " + printable(name), "", "", isAnswering ? yes : no, isAnswering ? no : yes});
        }
    }

    static bool answers(const Json& report, const std::string& service)
    {
        const Json& services = report["services"];
        return std::any_of(services.begin(), services.end(),
                           [&](const Json& each) { return each["service"] == service && each["answered"] == true; });
    }

    void compare(const Pair& pair)
    {
        const contract::Row row = contract::find(pair.subject.function);
        if (row && oneSided_.count(row.contract->service) != 0)
            return;
        if (pair.a.text != pair.b.text)
            return add({pair.subject.title, "", pair.subject.function, whole(pair.a), whole(pair.b)});
        for (const auto& [path, field] : pair.a.fields.items())
            compareField(pair.subject, path, &field, fieldOf(pair.b, path));
        for (const auto& [path, field] : pair.b.fields.items())
            if (fieldOf(pair.a, path) == nullptr)
                compareField(pair.subject, path, nullptr, &field);
    }

    void compareField(const ComparedSubject& subject, const std::string& path, const Json* a, const Json* b)
    {
        if (!withMeasured_ && (is(a, "volatile") || is(b, "volatile")))
        {
            ++result_.measured;
            return;
        }
        if (is(a, "hidden") || is(b, "hidden"))
        {
            ++result_.hidden;
            return;
        }
        ++result_.compared;
        if (a == nullptr || b == nullptr || (*a)["value"] != (*b)["value"] || a->value("hex", "") != b->value("hex", ""))
            add({subject.title, path, subject.function, cell(a), cell(b)});
    }

    void add(Difference difference)
    {
        result_.differences.push_back(std::move(difference));
    }

    static Cell whole(const Side& side)
    {
        return side.text.empty() ? Cell() : textCell(side.text);
    }

    // Secrets are compared where both sides have them, and not shown.
    static Cell cell(const Json* field)
    {
        if (field == nullptr)
            return {};
        if (is(field, "secret"))
            return fieldCell({{"value", nullptr}, {"hidden", true}});
        return fieldCell(*field);
    }

    static const Json* fieldOf(const Side& side, const std::string& path)
    {
        const auto found = side.fields.find(path);
        return found == side.fields.end() ? nullptr : &*found;
    }

    static bool is(const Json* field, const char* key)
    {
        return field != nullptr && field->value(key, false);
    }

    const Json& a_;
    const Json& b_;
    const bool withMeasured_;
    std::set<std::string> oneSided_; // services
    Comparison result_;
};

} // namespace

Comparison compare(const Json& a, const Json& b, bool withMeasured)
{
    return Comparer(a, b, withMeasured).compare();
}

} // namespace tarn::ctl
