// What the tests of the module's functions share: the places in the proxy's message, and a platform that expects such messages.
#pragma once

#include "support/platform_test.h"
#include "support/samples.h"
#include "tarn_qtn_monitor_api.h"

#include <gmock/gmock.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace tarn::test
{

inline constexpr std::uint32_t kMessageSize = 9376;
inline constexpr std::uint32_t kIfname = 0;
inline constexpr std::uint32_t kIfnameSize = 65;
inline constexpr std::uint32_t kParam1 = 68;
inline constexpr std::uint32_t kParam1Size = 36;
inline constexpr std::uint32_t kParam2 = 104;
inline constexpr std::uint32_t kParam2Size = 1040;
inline constexpr std::uint32_t kParam3 = 1144;
inline constexpr std::uint32_t kParam4 = 1148;
inline constexpr std::uint32_t kOut = 1152;
inline constexpr std::uint32_t kOutSize = 8200;
inline constexpr std::uint32_t kOutWords = 9352;
inline constexpr std::uint32_t kStatus = 9372;

// The caller's buffer for the name of the interface: "wifi0", and something behind it up to the last of the 65 bytes.
inline constexpr char kWifi0[] = "wifi0\0abcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyzabcdefg";
static_assert(sizeof kWifi0 == kIfnameSize + 1);

// These commands send the 65 bytes of the caller's buffer as they are, all others send a text.
constexpr bool sendsWholeName(std::uint32_t command)
{
    return (command >= 105 && command <= 107) || (command >= 109 && command <= 118) || command == 120 || command == 121;
}

class ProxyTest : public PlatformTest
{
protected:
    // A command of the proxy by the caller "ledd", with wait 3. Every byte that the test does not name must be zero.
    mock::Call expectCommand(std::uint32_t command, const char* file = __builtin_FILE(),
                             unsigned line = static_cast<unsigned>(__builtin_LINE()))
    {
        return platform.expect("QTN_RPC_PROXY", command, kMessageSize, file, line).caller("ledd").wait(3).restZero();
    }

    // The same about the interface kWifi0.
    mock::Call expectOnWifi0(std::uint32_t command, const char* file = __builtin_FILE(),
                             unsigned line = static_cast<unsigned>(__builtin_LINE()))
    {
        mock::Call call = expectCommand(command, file, line);
        return sendsWholeName(command) ? call.bytes(kIfname, kWifi0, kIfnameSize) : call.text(kIfname, kIfnameSize, "wifi0");
    }

    // A function that sends nothing but numbers, about kWifi0 if it takes a name. Its numbers go to these places, in the order
    // of its arguments; so do zeros.
    template <class... Arguments>
    void expectNumbersAt(const std::vector<std::uint32_t>& offsets, std::uint32_t command,
                         std::int32_t (*send)(const char* handle, Arguments...), std::uint32_t wait = 3,
                         const char* file = __builtin_FILE(), unsigned line = static_cast<unsigned>(__builtin_LINE()))
    {
        const testing::ScopedTrace trace(file, static_cast<int>(line), "command " + std::to_string(command));
        for (const std::uint32_t factor : {0x01020304u, 0u})
        {
            mock::Call call = expectOf<Arguments...>(command, file, line).wait(wait);
            Values values;
            for (std::uint32_t i = 0; i != offsets.size(); ++i)
            {
                values.numbers[i] = (i + 1) * factor;
                call.word(offsets[i], values.numbers[i]);
            }
            EXPECT_EQ(callWith(send, values), 0);
        }
    }

    // A function that reads words, about kWifi0 if it takes a name. Its outputs come from these places, in the order of its
    // arguments. A number that it sends goes to the first parameter; so does 0.
    template <class... Arguments>
    void expectWordsFrom(const std::vector<std::uint32_t>& offsets, std::uint32_t command,
                         std::int32_t (*read)(const char* handle, Arguments...), const char* file = __builtin_FILE(),
                         unsigned line = static_cast<unsigned>(__builtin_LINE()))
    {
        const testing::ScopedTrace trace(file, static_cast<int>(line), "command " + std::to_string(command));
        for (const std::uint32_t number : {11u, 0u})
        {
            mock::Call call = expectOf<Arguments...>(command, file, line);
            if ((std::is_same_v<Arguments, std::uint32_t> || ...))
                call.word(kParam1, number);
            replyOffsets(call);

            Values values;
            values.numbers = {number};
            EXPECT_EQ(callWith(read, values), 0);
            EXPECT_EQ(std::vector<std::uint32_t>(values.words.begin(), values.words.begin() + values.wordsUsed), offsets);
        }
    }

    // A function that sends a text about kWifi0, cut to so many characters. An empty one is no error.
    void expectTextAt(std::uint32_t offset, std::size_t characters, std::uint32_t command,
                      std::int32_t (*send)(const char* handle, const char* ifname, const char* text),
                      const char* file = __builtin_FILE(), unsigned line = static_cast<unsigned>(__builtin_LINE()))
    {
        const testing::ScopedTrace trace(file, static_cast<int>(line), "command " + std::to_string(command));
        expectOnWifi0(command, file, line)
            .text(offset, static_cast<std::uint32_t>(characters + 1), letters(characters).c_str());
        expectOnWifi0(command, file, line);
        EXPECT_EQ(send("ledd", kWifi0, letters(200).c_str()), 0);
        EXPECT_EQ(send("ledd", kWifi0, ""), 0);
    }

    // Fills every result word with its own offset.
    static void replyOffsets(mock::Call& call)
    {
        for (const std::uint32_t offset : {1152u, 1156u, 1160u, 1164u, 1168u, 9352u, 9356u, 9360u, 9364u, 9368u})
            call.replyWord(offset, offset);
    }

private:
    // What a function is called with: numbers in their order, and room for the words that it reads.
    struct Values
    {
        std::array<std::uint32_t, 4> numbers = {};
        std::array<std::uint32_t, 8> words = {};
        std::ptrdiff_t numbersUsed = 0;
        std::ptrdiff_t wordsUsed = 0;
    };

    template <class Argument>
    static Argument argument(Values& values)
    {
        if constexpr (std::is_same_v<Argument, const char*>)
            return kWifi0;
        else if constexpr (std::is_pointer_v<Argument>)
            return &values.words.at(static_cast<std::size_t>(values.wordsUsed++));
        else
            return values.numbers.at(static_cast<std::size_t>(values.numbersUsed++));
    }

    template <class... Arguments>
    static std::int32_t callWith(std::int32_t (*function)(const char* handle, Arguments...), Values& values)
    {
        const std::tuple<const char*, Arguments...> arguments{"ledd", argument<Arguments>(values)...};
        return std::apply(function, arguments);
    }

    template <class... Arguments>
    mock::Call expectOf(std::uint32_t command, const char* file, unsigned line)
    {
        constexpr bool kTakesName = (std::is_same_v<Arguments, const char*> || ...);
        return kTakesName ? expectOnWifi0(command, file, line) : expectCommand(command, file, line);
    }
};

} // namespace tarn::test
