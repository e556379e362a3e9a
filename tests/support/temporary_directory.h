// A directory for the files of one test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace tarn::test
{

// Empty at first, and removed with all that is in it.
class TemporaryDirectory
{
public:
    TemporaryDirectory()
    {
        char path[] = "/tmp/tarn_test-XXXXXX"; // short: a socket's whole path has at most 107 characters
        if (mkdtemp(path) == nullptr)
            throw std::runtime_error("no temporary directory");
        path_ = path;
    }
    ~TemporaryDirectory()
    {
        std::filesystem::remove_all(path_);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::string& path() const
    {
        return path_;
    }
    // Of a file in it.
    std::string path(const std::string& file) const
    {
        return path_ + "/" + file;
    }

private:
    std::string path_;
};

} // namespace tarn::test
