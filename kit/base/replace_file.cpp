#include "replace_file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn::base
{

namespace
{

[[noreturn]] void failFor(const std::string& path, const std::string& why)
{
    throw std::runtime_error("file " + path + " cannot be written: " + why);
}

// What is to be renamed over: behind links, and no device.
std::string targetOf(const std::string& path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        failFor(path, std::filesystem::is_directory(status) ? "it is a directory" : "it is no regular file");
    if (!std::filesystem::exists(status))
        return path;
    const std::filesystem::path target = std::filesystem::canonical(path, error);
    return error ? path : target.string();
}

// A file under another name in the same directory, removed unless it is put in its place.
class NewFile
{
public:
    NewFile(const std::string& path, Readers readers) : path_(path), target_(targetOf(path))
    {
        constexpr mode_t kOwner = S_IRUSR | S_IWUSR;
        constexpr mode_t kAll = kOwner | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
        for (int number = 0; descriptor_ < 0; ++number) // others may be writing the same
        {
            name_ = target_ + ".new" + std::to_string(number);
            descriptor_ = open(name_.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC,
                               readers == Readers::kOwnerOnly ? kOwner : kAll); // the process's mask is applied
            if (descriptor_ < 0 && errno != EEXIST)
                failFor(path_, std::strerror(errno));
        }
    }

    ~NewFile()
    {
        if (descriptor_ >= 0)
            close(descriptor_);
        if (!isInPlace_)
            unlink(name_.c_str());
    }

    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    void write(const std::string& text)
    {
        std::size_t written = 0;
        while (written < text.size())
        {
            const ssize_t count = ::write(descriptor_, text.data() + written, text.size() - written);
            if (count < 0 && errno != EINTR)
                failFor(path_, std::strerror(errno));
            if (count > 0)
                written += static_cast<std::size_t>(count);
        }
    }

    void putInPlace()
    {
        const bool isStored = fsync(descriptor_) == 0 || errno == EINVAL; // which some file systems cannot do
        const bool isClosed = close(descriptor_) == 0;
        descriptor_ = -1;
        if (!isStored || !isClosed || std::rename(name_.c_str(), target_.c_str()) != 0)
            failFor(path_, std::strerror(errno));
        isInPlace_ = true;
    }

private:
    const std::string path_;
    const std::string target_;
    std::string name_;
    int descriptor_ = -1;
    bool isInPlace_ = false;
};

} // namespace

void replaceFile(const std::string& path, const std::string& text, Readers readers)
{
    NewFile file(path, readers);
    file.write(text);
    file.putInPlace();
}

void checkReplaceable(const std::string& path)
{
    const NewFile file(path, Readers::kOwnerOnly);
}

} // namespace tarn::base
