// The completion script, in the shell it is for.
#include "support.h"

#include "tarnctl/catalogue.h"

#include <fstream>
#include <set>
#include <sstream>

namespace tarnctl_test
{

namespace
{

class CompletionTest : public TarnctlTest
{
protected:
    void SetUp() override
    {
        TarnctlTest::SetUp();
        const Ran ran = run({"completion", "bash"});
        ASSERT_EQ(ran.exit, 0);
        std::ofstream(path("completion")) << ran.out;
        ASSERT_NE(shellOutput("command -v bash"), "") << "these tests need bash";
    }

    // What bash offers for the last of these words.
    std::set<std::string> offered(const std::string& words) const
    {
        std::ofstream(path("try")) << "source " << path("completion") << "\n"
                                   << "COMP_WORDS=(" << words << ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n"
                                   << "_tarnctl\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n";
        std::istringstream lines(shellOutput("bash " + path("try")));
        std::set<std::string> offers;
        for (std::string line; std::getline(lines, line);)
            if (!line.empty())
                offers.insert(line);
        return offers;
    }
};

using Offers = std::set<std::string>;

TEST_F(CompletionTest, TheScriptIsSound)
{
    EXPECT_EQ(shellOutput("bash -n " + path("completion") + " 2>&1"), "");
    EXPECT_EQ(shellOutput("bash -c 'source " + path("completion") + " && complete -p tarnctl'"),
              "complete -o default -F _tarnctl tarnctl\n");
}

TEST_F(CompletionTest, Commands)
{
    EXPECT_EQ(offered("tarnctl l"), (Offers{"layout", "list", "log-level"}));
    EXPECT_EQ(offered("tarnctl ''").size(), 31u);
    EXPECT_EQ(offered("tarnctl --json tel"), Offers{"telnet"});
    EXPECT_EQ(offered("tarnctl --directory call ra"), Offers{"radios"}) << "the word behind --directory is its value";
}

TEST_F(CompletionTest, Functions)
{
    EXPECT_EQ(offered("tarnctl call ''").size(), tarn::ctl::catalogue().size());
    EXPECT_EQ(offered("tarnctl describe ''").size(), tarn::ctl::catalogue().size());
    EXPECT_EQ(offered("tarnctl describe tarnVal"), Offers{"tarnValidatePinCode"});
    EXPECT_EQ(offered("tarnctl call --caller me tarnVal"), Offers{"tarnValidatePinCode"});
}

TEST_F(CompletionTest, Arguments)
{
    EXPECT_EQ(offered("tarnctl call TarnGetRadio ''"), (Offers{"radioId=", "data=null"}));
    EXPECT_EQ(offered("tarnctl call TarnGetRadio radioId = 1 d"), Offers{"data=null"});
    EXPECT_EQ(offered("tarnctl call TarnGetRadio radioId ="), Offers{});
    EXPECT_EQ(offered("tarnctl call TarnGetRadio radioId = d"), Offers{});
    for (const tarn::contract::Row& row : tarn::contract::rows())
        for (const tarn::contract::Argument& argument : row.command->arguments)
        {
            static const Ran ran = run({"completion", "bash"});
            const std::size_t line = ran.out.find("        " + row.command->function + ") echo '");
            ASSERT_NE(line, std::string::npos);
            const std::string words = ran.out.substr(line, ran.out.find('\n', line) - line);
            EXPECT_NE(words.find(argument.name + "="), std::string::npos) << words;
        }
}

TEST_F(CompletionTest, OptionsAndWords)
{
    EXPECT_EQ(offered("tarnctl call --d"), (Offers{"--dry-run", "--directory"}));
    EXPECT_EQ(offered("tarnctl events --cou"), Offers{"--count"});
    EXPECT_EQ(offered("tarnctl events --count ''"), Offers{});
    EXPECT_EQ(offered("tarnctl events ''").size(), 5u);
    EXPECT_EQ(offered("tarnctl publish EVT_AP_A"), Offers{"EVT_AP_ASSOCIATED_CHANGED"});
    EXPECT_EQ(offered("tarnctl mirror o"), (Offers{"on", "off"}));
    EXPECT_EQ(offered("tarnctl completion ''"), Offers{"bash"});
}

TEST_F(CompletionTest, AsADocument)
{
    const RanJson ran = runJson({"completion", "bash"});
    EXPECT_EQ(ran.exit, 0);
    EXPECT_EQ(ran.document.at("script"), run({"completion", "bash"}).out);
}

} // namespace

} // namespace tarnctl_test
