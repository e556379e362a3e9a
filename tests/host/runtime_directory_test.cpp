// Where the sockets are, and which directories are refused. Every refusal is UNKNOWN_COMM, for clients and services alike.
#include "support.h"

#include "host/runtime_directory.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <grp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace host_test
{
namespace
{

class RuntimeDirectoryTest : public HostTest
{
protected:
    static std::uint32_t open()
    {
        KorIilService* service = nullptr;
        const std::uint32_t status = KorIilServiceOpen(kService, 0, refuseRequest, nullptr, &service);
        KorIilServiceClose(service);
        return status;
    }

    static void use(const std::string& path)
    {
        setenv("KORIIL_DIR", path.c_str(), 1);
    }

    static void expectRefused(const std::string& path)
    {
        use(path);
        EXPECT_EQ(callOnce(), KOR_IIL_UNKNOWN_COMM) << path;
        EXPECT_EQ(open(), KOR_IIL_UNKNOWN_COMM) << path;
        EXPECT_EQ(KorIilSubscribeEvent(kCaller, kService, 1, ignoreEvent), KOR_IIL_UNKNOWN_COMM) << path;
    }

    static std::string chosen()
    {
        koriil::RuntimeDirectory directory;
        EXPECT_EQ(koriil::findRuntimeDirectory(directory), KOR_IIL_OK);
        return directory.path;
    }
};

TEST_F(RuntimeDirectoryTest, KoriilDirComesFirst)
{
    setenv("XDG_RUNTIME_DIR", "/nowhere", 1);
    EXPECT_EQ(chosen(), directory());
    unsetenv("XDG_RUNTIME_DIR");
}

TEST_F(RuntimeDirectoryTest, ThenTheSessionsOwn)
{
    unsetenv("KORIIL_DIR");
    setenv("XDG_RUNTIME_DIR", directory().c_str(), 1);
    EXPECT_EQ(chosen(), directory() + "/koriil");
    use("");
    EXPECT_EQ(chosen(), directory() + "/koriil") << "an empty setting counts as none";
    unsetenv("XDG_RUNTIME_DIR");
}

TEST_F(RuntimeDirectoryTest, ThenOnePerUser)
{
    unsetenv("KORIIL_DIR");
    unsetenv("XDG_RUNTIME_DIR");
    const std::string expected = "/tmp/koriil-" + std::to_string(geteuid());
    const bool existed = std::filesystem::exists(expected);
    EXPECT_EQ(chosen(), expected);
    if (!existed)
        rmdir(expected.c_str());
}

// In a /run of the child's own.
TEST_F(RuntimeDirectoryTest, TheSharedOneTakesThePlaceOfOnesOwnAsLongAsThatIsMissing)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can make one";
    constexpr gid_t kGroup = 4711;
    const auto chosenAs = [&](uid_t user, gid_t group, bool hasOwn)
    {
        return Child(
                   [=]
                   {
                       unsetenv("KORIIL_DIR");
                       setenv("XDG_RUNTIME_DIR", directory().c_str(), 1);
                       if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
                           mount("tmpfs", "/run", "tmpfs", 0, nullptr) != 0)
                           return 100;
                       if (mkdir("/run/koriil", 0) != 0 || chown("/run/koriil", 0, kGroup) != 0 ||
                           chmod("/run/koriil", 03770) != 0 || chmod("/run", 0755) != 0 ||
                           chmod(directory().c_str(), 0777) != 0)
                           return 101;
                       if (setgroups(0, nullptr) != 0 || setgid(group) != 0 || setuid(user) != 0)
                           return 102;
                       if (hasOwn && mkdir((directory() + "/koriil").c_str(), 0700) != 0)
                           return 103;
                       koriil::RuntimeDirectory found;
                       const std::uint32_t status = koriil::findRuntimeDirectory(found);
                       if (found.path != (hasOwn ? directory() + "/koriil" : "/run/koriil") || found.isShared == hasOwn)
                           return status == KOR_IIL_OK ? 104 : static_cast<int>(status);
                       return static_cast<int>(status);
                   })
            .wait();
    };
    EXPECT_EQ(chosenAs(4711, kGroup, false), KOR_IIL_OK);
    EXPECT_EQ(chosenAs(4712, 4712, false), KOR_IIL_UNKNOWN_COMM) << "no member of its group";
    EXPECT_EQ(chosenAs(4711, kGroup, true), KOR_IIL_OK);
    ASSERT_EQ(chmod(directory().c_str(), 0700), 0);
}

TEST_F(RuntimeDirectoryTest, AMissingOneIsMadeForItsOwnerAlone)
{
    const std::string path = directory() + "/new";
    use(path);
    EXPECT_EQ(open(), KOR_IIL_OK);
    struct stat status = {};
    ASSERT_EQ(lstat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFDIR | 0700u);
}

TEST_F(RuntimeDirectoryTest, SlashesAtTheEndDoNotMatter)
{
    use(directory() + "//");
    EXPECT_EQ(chosen(), directory());
}

TEST_F(RuntimeDirectoryTest, ItsPathCanBeAsked)
{
    const std::string path = directory() + "/new";
    use(path + "/");
    std::vector<char> text(path.size() + 2, 'x');
    EXPECT_EQ(KorIilRuntimeDirectory(text.data(), static_cast<std::uint32_t>(path.size() + 1)), path.size());
    EXPECT_EQ(std::string(text.data()), path);
    EXPECT_EQ(text.back(), 'x');
    EXPECT_EQ(KorIilRuntimeDirectory(text.data(), 4), path.size());
    EXPECT_EQ(std::string(text.data()), path.substr(0, 3));
    EXPECT_EQ(KorIilRuntimeDirectory(nullptr, 0), path.size());
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(RuntimeDirectoryTest, OneWhoseParentIsMissingIsRefused)
{
    expectRefused(directory() + "/missing/new");
}

TEST_F(RuntimeDirectoryTest, ARelativePathIsRefused)
{
    expectRefused("relative");
}

TEST_F(RuntimeDirectoryTest, AFileIsRefused)
{
    std::ofstream(directory() + "/file") << "text";
    expectRefused(directory() + "/file");
}

TEST_F(RuntimeDirectoryTest, ASymbolicLinkIsRefused)
{
    std::filesystem::create_directory(directory() + "/real");
    std::filesystem::create_directory_symlink(directory() + "/real", directory() + "/link");
    expectRefused(directory() + "/link");
    expectRefused(directory() + "/link/");
}

TEST_F(RuntimeDirectoryTest, OneThatOthersMayWriteToIsRefused)
{
    for (const mode_t mode : {0770u, 0720u, 0702u, 01777u})
    {
        ASSERT_EQ(chmod(directory().c_str(), mode), 0);
        expectRefused(directory());
    }
    ASSERT_EQ(chmod(directory().c_str(), 0755), 0);
    EXPECT_EQ(open(), KOR_IIL_OK) << "others may read it";
}

// One that a group shares belongs to root, is sticky, and is used by members of the group alone.
TEST_F(RuntimeDirectoryTest, AGroupMayShareOne)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can make one";
    constexpr gid_t kGroup = 4711, kOtherGroup = 4712;
    constexpr uid_t kMember = 4711, kStranger = 4712;
    ASSERT_EQ(chown(directory().c_str(), 0, kGroup), 0);
    ASSERT_EQ(chmod(directory().c_str(), 03770), 0);
    RunningService service;
    EXPECT_EQ(callOnce(), KOR_IIL_OK);

    const auto callAs = [](uid_t user, gid_t group)
    {
        return Child(
                   [=]
                   {
                       if (setgroups(0, nullptr) != 0 || setgid(group) != 0 || setuid(user) != 0)
                           return 100;
                       return static_cast<int>(callOnce());
                   })
            .wait();
    };
    EXPECT_EQ(callAs(kMember, kGroup), KOR_IIL_OK);
    EXPECT_EQ(callAs(kStranger, kOtherGroup), KOR_IIL_UNKNOWN_COMM);
    ASSERT_EQ(chmod(directory().c_str(), 02770), 0);
    EXPECT_EQ(callAs(kMember, kGroup), KOR_IIL_UNKNOWN_COMM) << "members could replace one another's sockets";
    ASSERT_EQ(chmod(directory().c_str(), 03772), 0);
    EXPECT_EQ(callAs(kMember, kGroup), KOR_IIL_UNKNOWN_COMM) << "others could";
    ASSERT_EQ(chmod(directory().c_str(), 03770), 0);
    ASSERT_EQ(chown(directory().c_str(), kStranger, kGroup), 0);
    EXPECT_EQ(callAs(kMember, kGroup), KOR_IIL_UNKNOWN_COMM) << "its owner could";
    ASSERT_EQ(chown(directory().c_str(), 0, 0), 0);
}

TEST_F(RuntimeDirectoryTest, AMemberOfTheGroupServesTheOthers)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can make one";
    constexpr gid_t kGroup = 4711;
    ASSERT_EQ(chown(directory().c_str(), 0, kGroup), 0);
    ASSERT_EQ(chmod(directory().c_str(), 03770), 0);
    Child server(
        []
        {
            KorIilService* service = nullptr;
            if (setgroups(0, nullptr) != 0 || setgid(kGroup) != 0 || setuid(4711) != 0 ||
                KorIilServiceOpen(kService, 0, refuseRequest, nullptr, &service) != KOR_IIL_OK)
                return 100;
            return static_cast<int>(KorIilServiceRun(service));
        });
    EXPECT_TRUE(eventually([] { return callOnce() == KOR_IIL_UNSUPPORT; }));
    Child caller(
        []
        {
            if (setgroups(0, nullptr) != 0 || setgid(kGroup) != 0 || setuid(4712) != 0)
                return 100;
            return static_cast<int>(callOnce());
        });
    EXPECT_EQ(caller.wait(), KOR_IIL_UNSUPPORT);
}

TEST_F(RuntimeDirectoryTest, AnotherUsersIsRefused)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give a directory away";
    const std::string path = directory() + "/theirs";
    std::filesystem::create_directory(path);
    ASSERT_EQ(chmod(path.c_str(), 0700), 0);
    ASSERT_EQ(chown(path.c_str(), 65534, 65534), 0);
    expectRefused(path);
}

TEST_F(RuntimeDirectoryTest, APathTooLongForASocketIsRefused)
{
    std::string path = directory() + "/";
    path.append(107 - path.size() - std::string("/SERVICE.socket").size(), 'x');
    use(path);
    EXPECT_EQ(open(), KOR_IIL_OK) << "the longest that fits";
    expectRefused(path + "x");
}

} // namespace
} // namespace host_test
