#include "base/timestamp.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using tarn::base::Timestamp;

TEST(Timestamp, IsUtcWithMilliseconds)
{
    EXPECT_STREQ(Timestamp({0, 0}).text, "1970-01-01T00:00:00.000Z");
    EXPECT_STREQ(Timestamp({1795229411, 123999999}).text, "2026-11-21T02:50:11.123Z");
}

TEST(Timestamp, IsOfNow)
{
    EXPECT_THAT(Timestamp().text, testing::MatchesRegex("20..-..-..T..:..:..[.]...Z"));
}

} // namespace
