#include "base/suggestions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using tarn::base::suggestions;
using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<std::string> kNames = {"lampLevelOfRoom", "lampLevel", "LampLever", "lampId", "index"};

TEST(Suggestions, ComeClosestFirst)
{
    EXPECT_THAT(suggestions("lmapLevel", kNames), ElementsAre("lampLevel", "LampLever"));
}

TEST(Suggestions, PreferTheShorterOfNamesEquallyClose)
{
    EXPECT_THAT(suggestions("lampLevel", kNames), ElementsAre("lampLevel", "lampLevelOfRoom", "LampLever"));
}

TEST(Suggestions, FindACorrectlySpeltWordInAMisspeltName)
{
    EXPECT_THAT(suggestions("NumberOfAssociatedLamps", {"NumberOfLamps", "NumberOfAssoiatedLamps"}),
                ElementsAre("NumberOfAssoiatedLamps"));
}

TEST(Suggestions, FindAPartOfAName)
{
    EXPECT_THAT(suggestions("room", kNames), ElementsAre("lampLevelOfRoom"));
}

TEST(Suggestions, IgnoreCase)
{
    EXPECT_THAT(suggestions("LAMPID", kNames), ElementsAre("lampId"));
    EXPECT_THAT(suggestions("INDXE", kNames), ElementsAre("index"));
}

TEST(Suggestions, AreNoneForSomethingElse)
{
    EXPECT_THAT(suggestions("zzzzzzzzzzzz", kNames), IsEmpty());
    EXPECT_THAT(suggestions("", kNames), IsEmpty());
}

TEST(Suggestions, AreNoMoreThanAskedFor)
{
    EXPECT_THAT(suggestions("lamp", kNames, 2), ElementsAre("lampId", "lampLevel"));
    EXPECT_THAT(suggestions("lamp", kNames, 0), IsEmpty());
}

} // namespace
