#include "remote_gateway.h"

#include "usage_error.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn::ctl
{

namespace
{

constexpr char kProgram[] = "tarn-fleet";
constexpr int kUsage = 2; // its exit code

std::string programPath()
{
    std::error_code none;
    const std::filesystem::path own = std::filesystem::read_symlink("/proc/self/exe", none);
    const std::filesystem::path beside = own.parent_path() / kProgram;
    return access(beside.c_str(), X_OK) == 0 ? beside.string() : kProgram;
}

std::runtime_error failure(const char* what)
{
    return std::runtime_error(std::string(what) + ": " + std::strerror(errno));
}

// In the child: becomes the program, or ends.
[[noreturn]] void become(const std::string& program, const std::string& name, int ready)
{
    prctl(PR_SET_PDEATHSIG, SIGTERM); // it does not outlive this one
    fcntl(ready, F_SETFD, 0);
    const std::string descriptor = std::to_string(ready);
    execlp(program.c_str(), kProgram, "attach", name.c_str(), "--temporary", "--ready-descriptor", descriptor.c_str(), nullptr);
    static constexpr char kMissing[] = "tarnctl: --gateway needs the program tarn-fleet\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, kMissing, sizeof kMissing - 1);
    _exit(kUsage);
}

// The directory of "ready DIRECTORY"; empty if the program ends before.
std::string readDirectory(int ready)
{
    constexpr std::size_t kReadySize = 6;
    std::string line;
    char character = 0;
    while (read(ready, &character, 1) == 1 && character != '\n')
        line += character;
    return line.substr(std::min(line.size(), kReadySize));
}

} // namespace

RemoteGateway::RemoteGateway(const std::string& name)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw failure("--gateway");
    const std::string program = programPath();
    process_ = fork();
    if (process_ == 0)
        become(program, name, ends[1]);
    close(ends[1]);
    const std::string directory = process_ > 0 ? readDirectory(ends[0]) : "";
    close(ends[0]);
    if (!directory.empty())
    {
        setenv("KORIIL_DIR", directory.c_str(), 1);
        return;
    }
    int state = 0;
    if (process_ > 0)
        waitpid(process_, &state, 0);
    if (WIFEXITED(state) && WEXITSTATUS(state) == kUsage)
        throw UsageError("--gateway " + name + ": tarn-fleet cannot be used as it is set up");
    throw std::runtime_error("--gateway " + name + ": tarn-fleet has ended");
}

RemoteGateway::~RemoteGateway()
{
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
}

} // namespace tarn::ctl
