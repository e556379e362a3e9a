#include "pictures.h"

#include "tarnctl/listing.h"
#include "tarnctl/rate.h"
#include "tarnctl/terminal_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <utility>

namespace tarn::ctl
{

namespace
{

// Whole units of the picture are fine enough.
std::string units(double number)
{
    return std::to_string(std::lround(number));
}

Markup picture(const char* kind, double width, double height, const std::string& title, const Markup& content)
{
    Markup inside = element("title", title);
    inside += content;
    return element("svg",
                   {{"class", kind},
                    {"viewBox", "0 0 " + units(width) + " " + units(height)},
                    {"role", "img"},
                    {"xmlns", "http://www.w3.org/2000/svg"}},
                   inside);
}

Markup line(const char* kind, double x1, double y1, double x2, double y2)
{
    return element("line", {{"class", kind}, {"x1", units(x1)}, {"y1", units(y1)}, {"x2", units(x2)}, {"y2", units(y2)}}, "");
}

Markup label(const std::string& kind, double x, double y, const std::string& words)
{
    return element("text", {{"class", kind}, {"x", units(x)}, {"y", units(y)}}, words);
}

// A line of a picture: values along it, and where they are in the picture.
struct Scale
{
    double first = 0;
    double last = 1;
    double from = 0;
    double to = 1;

    double operator()(double value) const
    {
        return from + (std::clamp(value, first, last) - first) * (to - from) / (last - first);
    }
};

// --- A band -----------------------------------------------------------------------------------------------------------------

constexpr double kWidth = 960;
constexpr double kBandHeight = 280;
constexpr double kLeft = 46;
constexpr double kTop = 34;
constexpr double kBottom = kBandHeight - 40;
constexpr double kWeakest = -100; // dBm
constexpr double kStrongest = -20;
constexpr double kLetterWidth = 6.4;

// The first and the last channel, which are always shown, so that what is free is seen too.
std::pair<std::int64_t, std::int64_t> channelsOf(Band band)
{
    constexpr std::array<std::pair<std::int64_t, std::int64_t>, 3> kChannels = {{{1, 14}, {36, 177}, {1, 233}}};
    return kChannels.at(static_cast<std::size_t>(band));
}

class BandPicture
{
public:
    explicit BandPicture(Band band) : band_(band)
    {
        constexpr double kMargin = 3; // channel numbers
        const auto [first, last] = channelsOf(band);
        x_ = {static_cast<double>(first) - kMargin, static_cast<double>(last) + kMargin, kLeft, kWidth - 8};
        y_ = {kWeakest, kStrongest, kBottom, kTop};
    }

    Markup draw(std::vector<Network> networks)
    {
        addAxes();
        std::stable_sort(networks.begin(), networks.end(),
                         [](const Network& one, const Network& other) { return strengthOf(one) > strengthOf(other); });
        // The strongest have their names first, and are in front.
        Markup names;
        std::vector<Markup> shapes;
        for (const Network& network : networks)
        {
            names += nameOf(network);
            shapes.push_back(shapeOf(network, shapes.size()));
        }
        for (auto shape = shapes.rbegin(); shape != shapes.rend(); ++shape)
            content_ += *shape;
        content_ += names;
        return picture("band", kWidth, kBandHeight, std::string("Networks at ") + toString(band_), content_);
    }

private:
    struct Box
    {
        double left;
        double right;
        double y;
    };

    static double strengthOf(const Network& network)
    {
        return network.isOwn ? kStrongest + 1 : static_cast<double>(network.signal);
    }

    // In channel numbers. Those of 5 and 6 GHz are in the middle of their 20 MHz, which Coverage does not show.
    std::pair<double, double> sidesOf(const Network& network) const
    {
        const Coverage covered = coverageOf(band_, network.channel, network.bandwidth);
        const double toTheMiddle = band_ == Band::k2GHz ? 0 : 2;
        const double all = band_ == Band::k2GHz ? 0 : 1;
        return {static_cast<double>(covered.first) - toTheMiddle, static_cast<double>(covered.last) + all - toTheMiddle};
    }

    void addAxes()
    {
        constexpr double kStep = 20; // dB
        constexpr double kRoom = 28; // for a channel's number
        for (double signal = kWeakest; signal <= kStrongest; signal += kStep)
        {
            content_ += line("grid", kLeft, y_(signal), kWidth, y_(signal));
            content_ += label("tick end", kLeft - 6, y_(signal) + 4, units(signal));
        }
        content_ += label("tick end", kLeft - 6, kTop - 16, "dBm");
        double free = 0;
        const auto [first, last] = channelsOf(band_);
        for (std::int64_t channel = first; channel <= last; ++channel)
        {
            const double x = x_(static_cast<double>(channel));
            if (!isChannel(band_, channel) || x < free)
                continue;
            content_ += line("grid", x, kBottom, x, kBottom + 5);
            content_ += label("tick middle", x, kBottom + 18, std::to_string(channel));
            free = x + kRoom;
        }
        content_ += label("tick middle", (kLeft + kWidth) / 2, kBandHeight - 6, "channel");
    }

    Markup shapeOf(const Network& network, std::size_t index) const
    {
        constexpr double kSlope = 0.08; // of the width
        constexpr std::size_t kHues = 12;
        const auto [left, right] = sidesOf(network);
        const double y = y_(strengthOf(network));
        const double slope = (x_(right) - x_(left)) * kSlope;
        const std::string corners = units(x_(left)) + "," + units(kBottom) + " " + units(x_(left) + slope) + "," + units(y) +
                                    " " + units(x_(right) - slope) + "," + units(y) + " " + units(x_(right)) + "," +
                                    units(kBottom);
        const std::string kind = network.isOwn ? "own" : "hue" + std::to_string(index % kHues);
        return element("polygon", {{"class", kind}, {"points", corners}}, element("title", titleOf(network)));
    }

    static std::string titleOf(const Network& network)
    {
        return printable(network.name) + ", channel " + std::to_string(network.channel) + ", " +
               std::to_string(network.bandwidth) + " MHz, " +
               (network.isOwn ? "this gateway" : std::to_string(network.signal) + " dBm");
    }

    // Nothing where there is a name already; a pointer over the shape shows it then.
    Markup nameOf(const Network& network)
    {
        constexpr double kLineHeight = 13;
        constexpr double kGap = 5;
        const auto [left, right] = sidesOf(network);
        const std::string name = printable(network.name);
        const double half = static_cast<double>(columnsOf(name)) * kLetterWidth / 2;
        const double x = std::clamp((x_(left) + x_(right)) / 2, kLeft + half, std::max(kLeft + half, kWidth - half));
        const Box box = {x - half, x + half, y_(strengthOf(network)) - kGap};
        for (const Box& other : names_)
            if (box.left < other.right + kGap && other.left < box.right + kGap && std::abs(box.y - other.y) < kLineHeight)
                return {};
        names_.push_back(box);
        return label(network.isOwn ? "name strong middle" : "name middle", x, box.y, name);
    }

    const Band band_;
    Scale x_;
    Scale y_;
    Markup content_;
    std::vector<Box> names_;
};

const char* toneKind(Tone tone)
{
    if (tone == Tone::kGood)
        return "good";
    return tone == Tone::kWarning ? "warning" : "bad";
}

} // namespace

Markup bandPicture(Band band, std::vector<Network> networks)
{
    return BandPicture(band).draw(std::move(networks));
}

// --- Signals ----------------------------------------------------------------------------------------------------------------

Markup signalPicture(std::vector<StationSignal> stations)
{
    constexpr double kLine = 24;
    constexpr double kBarHeight = 12;
    constexpr double kTextBase = 4;       // below the middle
    const Scale x = {-95, -25, 230, 660}; // dBm
    std::stable_sort(stations.begin(), stations.end(),
                     [](const StationSignal& one, const StationSignal& other) { return one.signal > other.signal; });
    Markup content;
    double y = kLine / 2;
    for (const StationSignal& station : stations)
    {
        const double end = x(static_cast<double>(station.signal));
        content += label("name", 0, y + kTextBase, station.name);
        content += element("rect",
                           {{"class", "track"},
                            {"x", units(x.from)},
                            {"y", units(y - kBarHeight / 2)},
                            {"rx", "6"},
                            {"width", units(x.to - x.from)},
                            {"height", units(kBarHeight)}},
                           "");
        content += element("rect",
                           {{"class", toneKind(signalTone(numberCell(station.signal, "dBm")))},
                            {"x", units(x.from)},
                            {"y", units(y - kBarHeight / 2)},
                            {"rx", "6"},
                            {"width", units(std::max(end - x.from, kBarHeight))},
                            {"height", units(kBarHeight)}},
                           "");
        content += label("name strong", x.to + 14, y + kTextBase, std::to_string(station.signal) + " dBm");
        content += label("tick", x.to + 84, y + kTextBase, station.remark);
        y += kLine;
    }
    return picture("signals", kWidth, y - kLine / 2, "Signals of the stations", content);
}

// --- Counters ---------------------------------------------------------------------------------------------------------------

double Curve::mean() const
{
    return rates.empty() ? 0 : std::accumulate(rates.begin(), rates.end(), 0.0) / static_cast<double>(rates.size());
}

Markup curvePicture(const std::vector<Curve>& curves, const std::string& unit)
{
    constexpr double kCurveWidth = 420;
    constexpr double kCurveHeight = 132;
    double end = 0;
    double most = 0;
    for (const Curve& curve : curves)
        for (std::size_t i = 0; i < curve.rates.size(); ++i)
        {
            end = std::max(end, curve.seconds.at(i));
            most = std::max(most, curve.rates[i]);
        }
    const Scale x = {0, std::max(end, 1e-3), 4, kCurveWidth - 4};
    const Scale y = {0, std::max(most * 1.1, 1e-3), kCurveHeight - 18, 18};

    Markup content = line("grid", x.from, y(0), x.to, y(0));
    content += line("grid", x.from, y(most), x.to, y(most));
    content += label("tick", x.from, y(most) - 4, shortened(most, unit));
    content += label("tick", x.from, kCurveHeight - 4, "0 s");
    content += label("tick end", x.to, kCurveHeight - 4, shortened(end, "s"));
    for (std::size_t i = 0; i < curves.size(); ++i)
    {
        std::string points;
        for (std::size_t each = 0; each < curves[i].rates.size(); ++each)
            points += units(x(curves[i].seconds.at(each))) + "," + units(y(curves[i].rates[each])) + " ";
        content += element("polyline", {{"class", "curve" + std::to_string(i)}, {"points", points}}, "");
    }
    return picture("curves", kCurveWidth, kCurveHeight, "What came a second", content);
}

Markup curveMark(std::size_t curve)
{
    return element("svg", {{"class", "mark"}, {"viewBox", "0 0 16 8"}},
                   element("polyline", {{"class", "curve" + std::to_string(curve)}, {"points", "1,4 15,4"}}, ""));
}

} // namespace tarn::ctl
