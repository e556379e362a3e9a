// Collects the failures of the scripted platform in place of failing the test.
#pragma once

#include "kor_iil_mock.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace tarn_test
{

class MockFailures : public testing::Test
{
protected:
    void SetUp() override
    {
        KorIilMockReset();
        KorIilMockOnFailure(&keep, this);
    }

    void TearDown() override
    {
        KorIilMockReset();
    }

    // Ends the script, and returns all its failures.
    std::vector<std::string> verify()
    {
        const unsigned count = KorIilMockVerify(nullptr);
        EXPECT_EQ(count, texts_.size());
        return texts_;
    }

    std::vector<std::string> texts_;

private:
    static void keep(void* context, const char* file, unsigned line, const char* text)
    {
        const std::string place = file == nullptr ? "nowhere" : std::string(file) + ":" + std::to_string(line);
        static_cast<MockFailures*>(context)->texts_.push_back(place + ": " + text);
    }
};

} // namespace tarn_test
