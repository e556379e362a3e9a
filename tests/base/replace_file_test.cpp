// Files that are replaced in one step, and what happens where they cannot be.
#include "base/replace_file.h"

#include "support/temporary_directory.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace
{

using tarn::base::checkReplaceable;
using tarn::base::Readers;
using tarn::base::replaceFile;

class ReplaceFileTest : public ::testing::Test
{
protected:
    std::string path(const std::string& file) const
    {
        return directory_.path(file);
    }

    std::string read(const std::string& file) const
    {
        std::ifstream stream(path(file), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(stream), {});
    }

    std::size_t files() const
    {
        const std::filesystem::directory_iterator entries(directory_.path());
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }

    mode_t mode(const std::string& file) const
    {
        struct stat status = {};
        EXPECT_EQ(stat(path(file).c_str(), &status), 0);
        return status.st_mode & 0777u;
    }

    std::string errorFor(const std::string& file) const
    {
        std::string error;
        try
        {
            checkReplaceable(path(file));
            ADD_FAILURE() << "not refused before";
        }
        catch (const std::runtime_error& refusal)
        {
            error = refusal.what();
        }
        EXPECT_THROW(replaceFile(path(file), "text", Readers::kAsUsual), std::runtime_error);
        return error;
    }

private:
    const tarn::test::TemporaryDirectory directory_;
};

TEST_F(ReplaceFileTest, WritesANewFileAndLeavesNothingElse)
{
    const std::string text("a\0b\n", 4);
    replaceFile(path("new"), text, Readers::kAsUsual);
    EXPECT_EQ(read("new"), text);
    EXPECT_EQ(files(), 1u);
}

TEST_F(ReplaceFileTest, AReaderOfTheOldFileKeepsItWhole)
{
    replaceFile(path("file"), "the old one", Readers::kAsUsual);
    std::ifstream reader(path("file"));
    replaceFile(path("file"), "new", Readers::kAsUsual);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), "the old one");
    EXPECT_EQ(read("file"), "new");
}

TEST_F(ReplaceFileTest, TheFileIsForThoseWhoMayReadNewFilesOrForItsOwnerAlone)
{
    const mode_t before = umask(027);
    replaceFile(path("shared"), "", Readers::kAsUsual);
    replaceFile(path("secret"), "", Readers::kOwnerOnly);
    umask(before);
    EXPECT_EQ(mode("shared"), 0640u);
    EXPECT_EQ(mode("secret"), 0600u);
}

TEST_F(ReplaceFileTest, BehindALinkTheFileItLeadsToIsReplaced)
{
    std::filesystem::create_directory(path("elsewhere"));
    replaceFile(path("elsewhere/file"), "old", Readers::kAsUsual);
    std::filesystem::create_symlink("elsewhere/file", path("link"));
    replaceFile(path("link"), "new", Readers::kAsUsual);
    EXPECT_TRUE(std::filesystem::is_symlink(path("link")));
    EXPECT_EQ(read("elsewhere/file"), "new");
}

TEST_F(ReplaceFileTest, WhatCannotBeReplacedIsRefusedWithTheReason)
{
    EXPECT_EQ(errorFor("missing/file"), "file " + path("missing/file") + " cannot be written: No such file or directory");
    EXPECT_EQ(errorFor(""), "file " + path("") + " cannot be written: it is a directory");
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(errorFor("pipe"), "file " + path("pipe") + " cannot be written: it is no regular file");
    EXPECT_EQ(files(), 1u);
}

TEST_F(ReplaceFileTest, WhatAnotherIsWritingStaysAsItIs)
{
    std::ofstream(path("file.new0")) << "another's";
    replaceFile(path("file"), "ours", Readers::kAsUsual);
    EXPECT_EQ(read("file"), "ours");
    EXPECT_EQ(read("file.new0"), "another's");
    EXPECT_EQ(files(), 2u);
}

TEST_F(ReplaceFileTest, AskingWhetherItCanBeReplacedChangesNothing)
{
    replaceFile(path("file"), "as it was", Readers::kAsUsual);
    checkReplaceable(path("file"));
    checkReplaceable(path("new"));
    EXPECT_EQ(read("file"), "as it was");
    EXPECT_EQ(files(), 1u);
}

} // namespace
