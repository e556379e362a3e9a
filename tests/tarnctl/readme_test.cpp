// The examples of tarnctl's README, against a simulated gateway: each prints what is shown there.
#include "support.h"

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

namespace tarnctl_test
{

namespace
{

struct Example
{
    std::string command;
    std::string output;
};

// Behind each "$ " a command, then its output up to the next one, or to the end of the block.
std::vector<Example> examples()
{
    std::ifstream readme(TARNCTL_README);
    std::vector<Example> examples;
    bool isExample = false;
    for (std::string line; std::getline(readme, line);)
    {
        if (line.rfind("```", 0) == 0)
            isExample = false;
        else if (line.rfind("$ ", 0) == 0)
        {
            examples.push_back({line.substr(2), ""});
            isExample = true;
        }
        else if (isExample)
            examples.back().output += line + "\n";
    }
    return examples;
}

// Times, and what depends on the processor.
std::string withoutVariables(std::string text)
{
    text = std::regex_replace(text, std::regex("(big|little) endian"), "ORDER endian");
    text = std::regex_replace(text, std::regex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:]{8}[.][0-9]{3}Z"), "TIME");
    return text.substr(0, text.find_last_not_of('\n') + 1);
}

class ReadmeTest : public TarnctlTest
{
protected:
    void SetUp() override
    {
        std::ofstream(path("tarnctl")) << "#!/bin/sh\nexec " EMULATOR " " TARNCTL_PROGRAM " \"$@\"\n";
        std::filesystem::permissions(path("tarnctl"), std::filesystem::perms::owner_all);
    }

    // As a shell would in the test's own directory. While events are watched, one is published until it has arrived.
    std::string printed(const std::string& command) const
    {
        std::ofstream(path("example")) << "cd " << directory << "\nPATH=" << directory << ":$PATH\n"
                                       << (command.find("tarnctl events") == std::string::npos ? "" : publish())
                                       << "exec 2>&1\n"
                                       << command << "\n";
        return shellOutput("sh " + path("example"));
    }

private:
    // The second event, of radio 1 and channel 44.
    static std::string publish()
    {
        const std::uint32_t data[] = {1, 44};
        return "for try in $(seq 600); do\n"
               "    tarnctl publish EVT_RADIO_OPR_CHANNEL_CHANGED --data " +
               tarn::base::hexText(data, sizeof data) + " | grep -q ' 1 ' && break || sleep 0.1\ndone &\n";
    }
};

TEST_F(ReadmeTest, EachExamplePrintsWhatIsShown)
{
    // One example sends a station away, which is not to come back before the end of the others.
    Program gateway({"--speed", "0"}, TARN_GATEWAY_PROGRAM);
    ASSERT_EQ(gateway.nextLine().rfind("ready", 0), 0u);
    ASSERT_GT(examples().size(), 5u);
    for (const Example& example : examples())
        EXPECT_EQ(withoutVariables(printed(example.command)), withoutVariables(example.output)) << example.command;
}

TEST_F(ReadmeTest, EveryVerbIsInTheSynopsis)
{
    std::ifstream file(TARNCTL_README);
    std::ostringstream readme;
    readme << file.rdbuf();
    const std::string message = runJson({"no-verb"}).document.at("message");
    std::istringstream verbs(message.substr(message.find("one of ") + 7));
    for (std::string verb; std::getline(verbs >> std::ws, verb, ',');)
        EXPECT_NE(readme.str().find("\n  " + verb + " "), std::string::npos) << verb;
}

} // namespace

} // namespace tarnctl_test
