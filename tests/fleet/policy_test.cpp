// What a gateway lets be asked from afar.
#include "fleet/policy.h"

#include "support/temporary_directory.h"

#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace tarn::fleet;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

std::size_t functionOf(const std::string& name)
{
    std::size_t at = 0;
    while (at < kContractFunctionCount && kContractFunctions[at].name != name)
        ++at;
    EXPECT_LT(at, kContractFunctionCount) << name;
    return at;
}

Policy policyOf(std::initializer_list<const char*> lines)
{
    Policy policy;
    for (const char* line : lines)
    {
        char problem[256] = "";
        EXPECT_TRUE(policy.add(line, problem, sizeof problem)) << line << ": " << problem;
    }
    return policy;
}

bool allows(const Policy& policy, const std::string& name)
{
    return policy.allows(functionOf(name));
}

std::string problemWith(const std::string& line)
{
    Policy policy;
    char problem[256] = "";
    EXPECT_FALSE(policy.add(line.c_str(), problem, sizeof problem)) << line;
    for (std::size_t at = 0; at < kContractFunctionCount; ++at)
        EXPECT_FALSE(policy.allows(at)) << "a wrong line allows nothing";
    return problem;
}

TEST(PolicyTest, WithoutAFileWhatOnlyReadsIsAllowed)
{
    const Policy policy = Policy::ofReading();
    for (std::size_t at = 0; at < kContractFunctionCount; ++at)
        EXPECT_EQ(policy.allows(at), kContractFunctions[at].reads) << kContractFunctions[at].name;
    EXPECT_TRUE(allows(policy, "TarnGetRadioNum"));
    EXPECT_FALSE(allows(policy, "TarnSetRadioCfg"));
    EXPECT_FALSE(allows(policy, "TarnGetQuantennaSmartWiFiCfgToFile"));
    EXPECT_EQ(policy.rate().calls, 0u);
}

TEST(PolicyTest, AFileBeginsWithNothingAllowed)
{
    const Policy policy = policyOf({"", "   ", "# allow *", "\t# allow reads"});
    for (std::size_t at = 0; at < kContractFunctionCount; ++at)
        EXPECT_FALSE(policy.allows(at));
}

TEST(PolicyTest, RulesAreAboutAllServicesOrOne)
{
    const Policy reads = policyOf({"allow reads"});
    EXPECT_TRUE(allows(reads, "tarn_qcsapi_wifi_get_channel"));
    EXPECT_FALSE(allows(reads, "tarn_qcsapi_wifi_set_channel"));

    const Policy ofOne = policyOf({"allow QTN_RPC_PROXY changes"});
    EXPECT_TRUE(allows(ofOne, "tarn_qcsapi_wifi_set_channel"));
    EXPECT_FALSE(allows(ofOne, "tarn_qcsapi_wifi_get_channel"));
    EXPECT_FALSE(allows(ofOne, "TarnSetRadioCfg"));

    const Policy all = policyOf({"allow *"});
    for (std::size_t at = 0; at < kContractFunctionCount; ++at)
        EXPECT_TRUE(all.allows(at));
}

TEST(PolicyTest, ALaterLineOverridesAnEarlierOne)
{
    const Policy policy =
        policyOf({"allow *", "deny QTN_RPC_PROXY *", "deny changes", "allow TARN TarnSetRadioCfg # the channel planner",
                  "  deny\tTARN  TarnGetAccessPointSecurity\r"});
    EXPECT_TRUE(allows(policy, "TarnGetRadioNum"));
    EXPECT_TRUE(allows(policy, "TarnSetRadioCfg"));
    EXPECT_FALSE(allows(policy, "TarnSetRadioExCfg"));
    EXPECT_FALSE(allows(policy, "TarnGetAccessPointSecurity"));
    EXPECT_FALSE(allows(policy, "tarn_qcsapi_wifi_get_channel"));
    EXPECT_TRUE(allows(policy, "tarn_qtn_mirror_get_mirror_status"));
}

TEST(PolicyTest, FunctionsOfOneCommandAreAllowedTogether)
{
    const Policy policy = policyOf({"allow QTN_MIRROR tarn_qtn_mirror_get_telnet_status"});
    EXPECT_TRUE(allows(policy, "tarn_qtn_mirror_get_mirror_status")) << "the gateway cannot tell the two apart";
    EXPECT_FALSE(allows(policy, "tarn_qtn_mirror_set_mirror_enable"));
    EXPECT_FALSE(allows(policy, "TarnGetLogLevel")) << "command 0 of another service";
}

TEST(PolicyTest, RatesAreOfAllCallsAndOfChanges)
{
    const Policy policy = policyOf({"rate 20/s", "rate changes 6/min"});
    EXPECT_EQ(policy.rate().calls, 20u);
    EXPECT_EQ(policy.rate().milliseconds, 1000u);
    EXPECT_EQ(policy.rateOfChanges().calls, 6u);
    EXPECT_EQ(policy.rateOfChanges().milliseconds, 60000u);
    EXPECT_EQ(policyOf({"rate 1000000/h"}).rate().milliseconds, 3600000u);
}

TEST(PolicyTest, AWrongLineSaysWhatWasExpected)
{
    EXPECT_EQ(problemWith("permit reads"), "expected allow, deny or rate, not permit");
    EXPECT_EQ(problemWith("allow"),
              "expected allow reads, allow changes, allow *, or allow SERVICE and one of these or a function");
    EXPECT_THAT(problemWith("deny TARN reads now"), StartsWith("expected deny reads"));
    EXPECT_EQ(problemWith("allow TARN"), "expected reads, changes, *, or a service and a function, not TARN alone");
    EXPECT_EQ(problemWith("allow TarnGetRadio"),
              "expected reads, changes, *, or a service and a function, not TarnGetRadio alone");
    EXPECT_EQ(problemWith("allow tarn reads"), "expected the service TARN, QTN_RPC_PROXY or QTN_MIRROR, not tarn");
    EXPECT_EQ(problemWith("allow TARN TarnGetRadios"), "expected reads, changes, * or a function of TARN, not TarnGetRadios");
    EXPECT_EQ(problemWith("allow QTN_MIRROR TarnGetRadio"),
              "expected reads, changes, * or a function of QTN_MIRROR, not TarnGetRadio");
    EXPECT_EQ(problemWith("allow " + std::string(250, '*')), "expected at most 255 characters in a line");
    for (const char* line :
         {"rate", "rate 20", "rate 0/s", "rate -1/s", "rate 20/", "rate 20/sec", "rate +20/s", "rate 1000001/s",
          "rate 99999999999999999999/s", "rate reads 20/s", "rate changes", "rate changes 20/s now"})
        EXPECT_THAT(problemWith(line), StartsWith("expected rate NUMBER/s or rate changes NUMBER/s")) << line;
}

class PolicyFileTest : public ::testing::Test
{
protected:
    std::string read(const std::string& text, Policy& policy)
    {
        std::ofstream(path_) << text;
        char problem[512] = "";
        const bool isGood = policy.read(path_.c_str(), problem, sizeof problem);
        EXPECT_EQ(isGood, *problem == '\0');
        return problem;
    }

    const tarn::test::TemporaryDirectory directory_;
    const std::string path_ = directory_.path("policy");
};

TEST_F(PolicyFileTest, IsReadLineByLine)
{
    Policy policy;
    EXPECT_EQ(read("# what the help desk may do\nallow reads\n\nallow TARN TarnSetRadioCfg\nrate 20/s", policy), "");
    EXPECT_TRUE(allows(policy, "TarnGetRadioNum"));
    EXPECT_TRUE(allows(policy, "TarnSetRadioCfg"));
    EXPECT_EQ(policy.rate().calls, 20u) << "the last line need not end in a line feed";
}

TEST_F(PolicyFileTest, IsRefusedWithTheLineThatIsWrong)
{
    Policy policy;
    EXPECT_EQ(read("allow reads\n\nalow *\nnonsense\n", policy), path_ + ":3: expected allow, deny or rate, not alow");
    EXPECT_THAT(read("allow reads\n" + std::string(1000, ' ') + "\n", policy),
                EndsWith(":2: expected at most 255 characters in a line"));
    EXPECT_EQ(read(std::string(255, ' ') + "\n" + std::string(255, '#') + "\n", policy), "");
}

TEST_F(PolicyFileTest, IsRefusedIfItsEndIsLost)
{
    Policy policy;
    EXPECT_EQ(read("allow *\n" + std::string(100, '\0'), policy), path_ + ":2: expected text, not a byte of 0");
    EXPECT_EQ(read("allow *\n#" + std::string(1, '\0') + "\ndeny *\n", policy), path_ + ":2: expected text, not a byte of 0");
}

TEST_F(PolicyFileTest, IsRefusedIfItCannotBeRead)
{
    Policy policy;
    char problem[512] = "";
    EXPECT_FALSE(policy.read("/nonexistent/policy", problem, sizeof problem));
    EXPECT_STREQ(problem, "/nonexistent/policy: No such file or directory; expected a file of a policy");
    EXPECT_FALSE(policy.read("/tmp", problem, sizeof problem));
    EXPECT_THAT(problem, HasSubstr("directory"));
}

TEST(BucketTest, HoldsAsManyCallsAsTheRateAllowsAtOnceAndFillsEvenly)
{
    const Rate rate{3, 1000};
    Bucket bucket;
    for (int call = 0; call < 3; ++call)
        EXPECT_TRUE(bucket.take(rate, 5000)) << call;
    EXPECT_FALSE(bucket.take(rate, 5000));
    EXPECT_FALSE(bucket.take(rate, 5333));
    EXPECT_TRUE(bucket.take(rate, 5334)) << "asking in vain takes nothing";
    EXPECT_FALSE(bucket.take(rate, 5335));
    for (int call = 0; call < 3; ++call)
        EXPECT_TRUE(bucket.take(rate, 1000000));
    EXPECT_FALSE(bucket.take(rate, 1000000)) << "it holds no more after a long time";
}

TEST(BucketTest, NeverGivesMoreThanTheRateOverALongTime)
{
    const Rate rate{7, 1000};
    Bucket bucket;
    std::uint32_t given = 0;
    for (std::uint64_t now = 1; now <= 60000; ++now)
        given += bucket.take(rate, now) ? 1 : 0;
    EXPECT_GE(given, 7u * 60);
    EXPECT_LE(given, 7u * 60 + 7);
}

TEST(BucketTest, WithoutARateThereIsNoLimit)
{
    Bucket bucket;
    for (int call = 0; call < 100; ++call)
        EXPECT_TRUE(bucket.take(Rate(), 1));
}

} // namespace
