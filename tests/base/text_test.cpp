// Quoting, joining, printf to a string, letter case.
#include "base/format.h"
#include "base/join.h"
#include "base/letter_case.h"
#include "base/quote.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <list>
#include <vector>

namespace
{

namespace base = tarn::base;
using namespace std::string_literals;

const std::string kOdd = "a\"b\\c\n\x7f\xe4 z\0"s;

TEST(Quote, ShowsUnprintableBytesAsHexadecimal)
{
    EXPECT_EQ(base::escaped(kOdd), R"(a"b\\c\x0a\x7f\xe4 z\x00)");
    EXPECT_EQ(base::inQuotes(kOdd), R"("a\"b\\c\x0a\x7f\xe4 z\x00")");
}

TEST(Quote, EscapedTextIsReadBack)
{
    EXPECT_EQ(base::unescaped(base::escaped(kOdd)), kOdd);
    EXPECT_EQ(base::unescaped("caf\xc3\xa9"), "caf\xc3\xa9"); // what is not escaped is as it is
    for (const char* broken : {"\\", "\\x", "\\x1", "\\xg0", "\\n"})
        EXPECT_EQ(base::unescaped(broken), std::nullopt) << broken;
}

TEST(Quote, LeavesPrintableTextAsItIs)
{
    EXPECT_EQ(base::escaped("Wi-Fi ~!"), "Wi-Fi ~!");
    EXPECT_EQ(base::inQuotes(""), "\"\"");
}

TEST(Quote, ForJsonGivesEachByteTheCharacterOfItsNumber)
{
    EXPECT_EQ(base::inJsonQuotes(kOdd), R"("a\u0022b\u005cc\u000a\u007f\u00e4 z\u0000")");
}

TEST(Join, PutsTheSeparatorBetweenTheItems)
{
    EXPECT_EQ(base::join(std::vector<std::string>{"one", "two", "three"}), "one, two, three");
    EXPECT_EQ(base::join(std::list<const char*>{"one", "two"}, "|"), "one|two");
    EXPECT_EQ(base::join(std::vector<int>{1, -2}), "1, -2");
    EXPECT_EQ(base::join(std::vector<std::string>{"one"}), "one");
    EXPECT_EQ(base::join(std::vector<std::string>{}), "");
}

TEST(Join, KeepsEmptyItems)
{
    EXPECT_EQ(base::join(std::vector<std::string>{"", "", "x"}, ","), ",,x");
}

TEST(Join, TakesTheTextsFromAFunction)
{
    EXPECT_EQ(base::join(std::vector<int>{1, 2}, "+", [](int number) { return std::to_string(number * 10); }), "10+20");
}

TEST(Format, RendersLikePrintf)
{
    EXPECT_EQ(base::format("%s %03u %%", "a", 7u), "a 007 %");
    EXPECT_EQ(base::format("%s", ""), "");
    const std::string longText(5000, 'x');
    EXPECT_EQ(base::format("<%s>", longText.c_str()), "<" + longText + ">");
}

TEST(Format, SeesTheCallersErrno)
{
    const std::string format = "%s: %m"; // not a literal: the compiler knows the standard's conversions only
    errno = ENOENT;
    EXPECT_EQ(base::format(format.c_str(), "a file"), "a file: "s + std::strerror(ENOENT));
}

TEST(Format, IsReturnedItselfIfItCannotBeRendered)
{
    const wchar_t noCharacter[] = {0x7fffffff, 0};
    EXPECT_EQ(base::format("a %ls", noCharacter), "a %ls");
}

TEST(LetterCase, ChangesAsciiLettersOnly)
{
    EXPECT_EQ(base::lowerCase("TarnGet_9\xc4"), "tarnget_9\xc4");
}

} // namespace
