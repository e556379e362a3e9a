#include "output.h"

#include "descriptor.h"
#include "thread_guards.h"

#include <cerrno>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace koriil
{
namespace
{

ssize_t writeOnce(int file, const char* line, std::size_t length)
{
    ssize_t written;
    do
        written = write(file, line, length);
    while (written < 0 && errno == EINTR);
    return written;
}

unsigned long identityOf(const struct stat& status)
{
    constexpr unsigned long kFactor = 1000003;
    return static_cast<unsigned long>(status.st_dev) * kFactor + static_cast<unsigned long>(status.st_ino);
}

// The host program's own pipe or terminal is opened once more, because O_NONBLOCK set on its description would hold for the
// program, too.
ssize_t writeToPipe(int file, const char* line, std::size_t length)
{
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    const Descriptor own(open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (own)
        return writeOnce(own.get(), line, length);
    if (errno == ENXIO) // a pipe without a reader
        return -1;

    pollfd writable = {file, POLLOUT, 0};
    if (poll(&writable, 1, 0) == 1 && (writable.revents & POLLOUT) != 0)
        return writeOnce(file, line, length);
    errno = EAGAIN;
    return -1;
}

} // namespace

OutputFile::OutputFile(const char* path)
{
    path_[0] = '\0';
    if (path[0] != '/' && getcwd(path_, sizeof path_ - 1) != nullptr)
        std::strcat(path_, "/");
    if (std::strlen(path_) + std::strlen(path) < sizeof path_)
        std::strcat(path_, path);
}

int OutputFile::descriptor() const
{
    int number = number_;
    if (number >= 0 && isAt(number))
        return number;
    Descriptor file(open(path_, O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC, S_IRUSR | S_IWUSR));
    struct stat status = {};
    if (!file || fstat(file.get(), &status) != 0)
        return -1;
    identity_ = identityOf(status);
    if (number_.compare_exchange_strong(number, file.get()))
        number = file.release();
    return number; // of another thread's, where that one was quicker
}

bool OutputFile::isAt(int number) const
{
    struct stat status = {};
    if (fstat(number, &status) != 0)
        return errno != EBADF; // it cannot be looked at for the moment
    return identityOf(status) == identity_;
}

ssize_t writeAtOnce(int file, const char* line, std::size_t length)
{
    const WriteSignalsBlocked blocked;
    struct stat status = {};
    if (fstat(file, &status) != 0)
        return -1;
    if (S_ISSOCK(status.st_mode))
        return send(file, line, length, MSG_DONTWAIT | MSG_NOSIGNAL);
    const bool mayWait = !S_ISREG(status.st_mode) && (fcntl(file, F_GETFL) & O_NONBLOCK) == 0;
    return mayWait ? writeToPipe(file, line, length) : writeOnce(file, line, length);
}

} // namespace koriil
