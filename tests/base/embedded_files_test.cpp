// odd.txt and empty.txt of this directory, as tarn_embed compiled them in.
#include "base/embedded_files.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace base_test
{

const std::vector<tarn::base::EmbeddedFile>& embeddedFiles();

namespace
{

using tarn::base::embeddedText;

TEST(EmbeddedFiles, ComeInOrderByTheirNames)
{
    ASSERT_EQ(embeddedFiles().size(), 2u);
    EXPECT_EQ(embeddedFiles()[0].name, "odd.txt");
    EXPECT_EQ(embeddedFiles()[1].name, "empty.txt");
}

TEST(EmbeddedFiles, HaveTheTextOfTheFileWhateverItHolds)
{
    std::ostringstream text;
    text << std::ifstream(ODD_FILE).rdbuf();
    ASSERT_NE(text.str(), "");
    EXPECT_EQ(embeddedText(embeddedFiles(), "odd.txt"), text.str());
    EXPECT_EQ(embeddedText(embeddedFiles(), "empty.txt"), "");
}

TEST(EmbeddedFiles, AreFoundByTheirExactName)
{
    EXPECT_THROW(embeddedText(embeddedFiles(), "odd"), std::logic_error);
}

} // namespace

} // namespace base_test
