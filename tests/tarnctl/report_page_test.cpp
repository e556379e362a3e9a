// A report's page as a browser sees it: that it shows what it should, fetches nothing and has no errors.
#include "report_support.h"

#include <chrono>
#include <filesystem>
#include <sstream>
#include <thread>

#include <gmock/gmock.h>

namespace tarnctl_test
{

namespace
{

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// What a page came to in headless Chromium.
struct Rendered
{
    std::string dom;                  // after all is loaded
    std::vector<std::string> fetched; // by the page; the browser fetches things of its own, too
    std::vector<std::string> console; // lines
};

class ReportPageTest : public ReportTest
{
protected:
    // Processes of the browser end a moment after it, and write until then.
    void TearDown() override
    {
        std::error_code error;
        do
        {
            std::filesystem::remove_all(directory, error);
            std::this_thread::sleep_for(std::chrono::milliseconds(error ? 50 : 0));
        } while (error);
        ReportTest::TearDown();
    }

    Rendered render(const std::string& file) const
    {
        Rendered rendered;
        rendered.dom = shellOutput("HOME=" + path("profile") +
                                   " chromium --headless --no-sandbox --disable-gpu --no-first-run --disable-breakpad "
                                   "--disable-dev-shm-usage --disable-background-networking --disable-component-update "
                                   "--user-data-dir=" +
                                   path("profile") + " --log-net-log=" + path("net.json") +
                                   " --enable-logging=stderr --virtual-time-budget=2000 --dump-dom file://" + path(file) +
                                   " 2> " + path("log"));
        const Json log = Json::parse(read("net.json"), nullptr, false);
        EXPECT_FALSE(log.is_discarded()) << read("log");
        for (const Json& event : log.value("events", Json::array()))
            if (const Json parameters = event.value("params", Json::object()); parameters.contains("initiator"))
                if (parameters["initiator"] != "not an origin") // which the browser itself is
                    rendered.fetched.push_back(parameters["url"]);
        std::istringstream lines(read("log"));
        for (std::string line; std::getline(lines, line);)
            if (line.find(":CONSOLE") != std::string::npos)
                rendered.console.push_back(line);
        return rendered;
    }

    Rendered renderedReport(const Words& more)
    {
        Words words = {"report", "--html", path("page.html")};
        words.insert(words.end(), more.begin(), more.end());
        const Ran ran = run(words);
        EXPECT_EQ(ran.exit, 0) << ran.err;
        return render("page.html");
    }
};

std::size_t countOf(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

TEST_F(ReportPageTest, TheBrowserWouldSayWhatAPageFetchesAndLogs)
{
    write("bad.html", "<!DOCTYPE html><title>x</title><img src='http://127.0.0.1:9/picture.png'><script>nothing()</script>");
    const Rendered rendered = render("bad.html");
    EXPECT_THAT(rendered.fetched, testing::Contains("http://127.0.0.1:9/picture.png"));
    EXPECT_THAT(rendered.console, testing::Contains(HasSubstr("nothing is not defined")));
}

TEST_F(ReportPageTest, ShowsRadiosNetworksBandsSignalsAndCounters)
{
    start();
    run({"scan", "--wait"});
    const Rendered rendered = renderedReport({"--seconds", "0.5"});
    EXPECT_THAT(rendered.fetched, IsEmpty());
    EXPECT_THAT(rendered.console, IsEmpty());
    const std::string& dom = rendered.dom;
    EXPECT_THAT(dom, HasSubstr("<title>Wi-Fi gateway, 20"));
    EXPECT_EQ(countOf(dom, "<svg class=\"band\""), 2u);
    EXPECT_EQ(countOf(dom, "<polygon class=\"own\""), 2u);
    EXPECT_EQ(countOf(dom, "<polygon class=\"hue"), 7u) << "the scenario's neighbours";
    EXPECT_EQ(countOf(dom, "<svg class=\"signals\""), 1u);
    EXPECT_EQ(countOf(dom, "<rect class=\"track\""), 5u) << "the scenario's stations";
    EXPECT_GT(countOf(dom, "<svg class=\"curves\""), 6u);
    for (const char* const text : {"radio 1 (radio0), 5GHz", "80 MHz", "58 C", "guests", "corner shop", "-48 dBm",
                                   "<code>TarnGetRadio</code>", "tarn-gateway 1", "left out", "TARN answers"})
        EXPECT_THAT(dom, HasSubstr(text));
    EXPECT_THAT(dom, Not(HasSubstr("<script")));
}

TEST_F(ReportPageTest, ShowsNamesOfNetworksAsTextsWhateverIsInThem)
{
    start();
    const std::string script = "<script>throw 'ran'</script>";
    ASSERT_EQ(run({"call", "TarnSetSsidIntfCfg", "radioId=1", "ssidId=1", "cfg.ssid=" + script}).exit, 0);
    ASSERT_EQ(run({"call", "TarnSetSsidIntfCfg", "radioId=1", "ssidId=2", "cfg.ssid=\"><img src=x onerror=no()>"}).exit, 0);
    const Rendered rendered = renderedReport({"--seconds", "0"});
    EXPECT_THAT(rendered.fetched, IsEmpty());
    EXPECT_THAT(rendered.console, IsEmpty());
    EXPECT_THAT(rendered.dom, HasSubstr("&lt;script&gt;throw 'ran'&lt;/script&gt;"));
    EXPECT_THAT(rendered.dom, HasSubstr("\"&gt;&lt;img src=x onerror=no()&gt;"));
    EXPECT_THAT(rendered.dom, Not(HasSubstr("<script")));
    EXPECT_THAT(rendered.dom, Not(HasSubstr("<img")));
}

TEST_F(ReportPageTest, IsAPageEvenIfNothingAnswers)
{
    EXPECT_EQ(run({"report", "--html", path("page.html"), "--seconds", "0"}).exit, 4);
    const Rendered rendered = render("page.html");
    EXPECT_THAT(rendered.fetched, IsEmpty());
    EXPECT_THAT(rendered.console, IsEmpty());
    EXPECT_THAT(rendered.dom, HasSubstr("QTN_MIRROR does not answer"));
    EXPECT_THAT(rendered.dom, HasSubstr("no service TARN is running"));
}

} // namespace

} // namespace tarnctl_test
