// A test on the scripted platform, and what it asks every function of the library.
#pragma once

#include "kor_iil_mock.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace tarn::test
{

class PlatformTest : public testing::Test
{
protected:
    // How a function names the pointers that it requires, in the order of its checks: "ifname, channel" for the traces
    // "ifname is NULL" and "channel is NULL"; any other text is given in full. The function is called without a pointer, then
    // with the first alone, and so on until only the last one is missing. Numbers are 0. Every call has to be refused with one
    // trace.
    template <class Result, class... Arguments>
    std::string missing(Result (*function)(const char* callerId, Arguments...))
    {
        constexpr std::size_t kPointers = (std::size_t{0} + ... + std::size_t{std::is_pointer_v<Arguments>});
        static_assert(kPointers != 0, "the function has no pointer that could be missing");

        std::string names;
        for (std::size_t given = 0; given != kPointers; ++given)
        {
            std::size_t left = given;
            const std::tuple<const char*, Arguments...> arguments{"ledd", argument<Arguments>(left)...};
            constexpr auto kRefused = static_cast<Result>(std::is_signed_v<Result> ? -1 : 3); // 3 in the device service
            const std::size_t traced = platform.traces().size();
            const bool isRefused = std::apply(function, arguments) == kRefused;

            const std::vector<std::string> texts = platform.traceTexts();
            names += given == 0 ? "" : ", ";
            names += isRefused && texts.size() == traced + 1 ? nameIn(texts.back()) : "not refused with one trace";
        }
        return names;
    }

    mock::Platform platform;

private:
    template <class Argument>
    Argument argument(std::size_t& pointersLeft)
    {
        if constexpr (std::is_pointer_v<Argument>)
        {
            if (pointersLeft == 0)
                return nullptr;
            --pointersLeft;
            return reinterpret_cast<Argument>(room_.data());
        }
        else
            return {};
    }

    static std::string nameIn(const std::string& text)
    {
        const std::string ending = " is NULL";
        const bool endsSo = text.size() > ending.size() && text.substr(text.size() - ending.size()) == ending;
        return endsSo ? text.substr(0, text.size() - ending.size()) : text;
    }

    alignas(std::uint32_t) std::array<std::uint8_t, 9552> room_ = {}; // as long as the longest record
};

} // namespace tarn::test
