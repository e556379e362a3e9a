#include "gateway_process.h"

#include "support.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace campaign
{

namespace
{

// Ends at the end of the output.
void readLines(int descriptor, const std::function<void(const std::string&)>& onLine)
{
    FILE* const file = fdopen(descriptor, "r");
    char* line = nullptr;
    std::size_t room = 0;
    for (ssize_t length = 0; (length = getline(&line, &room, file)) > 0;)
        onLine(std::string(line, static_cast<std::size_t>(length)));
    std::free(line);
    std::fclose(file);
}

} // namespace

GatewayProcess::GatewayProcess(const std::vector<std::string>& options, std::function<void(const std::string&)> onLine)
{
    int ready[2];
    int log[2];
    if (pipe2(ready, O_CLOEXEC) != 0 || pipe2(log, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ready[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, log[1], STDERR_FILENO);

    std::vector<char*> argv = {const_cast<char*>(TARN_GATEWAY_PROGRAM)};
    for (const std::string& option : options)
        argv.push_back(const_cast<char*>(option.c_str()));
    argv.push_back(nullptr);
    const int error = posix_spawn(&processId_, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ready[1]);
    close(log[1]);
    if (error != 0)
        throw std::runtime_error("tarn-gateway cannot be started: " + std::string(std::strerror(error)));
    reader_ = std::thread([descriptor = log[0], onLine = std::move(onLine)] { readLines(descriptor, onLine); });
    char character = 0;
    const bool isReady = read(ready[0], &character, 1) == 1;
    close(ready[0]);
    if (isReady)
        return;
    end();
    throw std::runtime_error("tarn-gateway has not become ready");
}

GatewayProcess::~GatewayProcess()
{
    if (processId_ > 0)
        end();
}

std::size_t GatewayProcess::residentBytes() const
{
    return campaign::residentBytes(processId_);
}

int GatewayProcess::end()
{
    kill(processId_, SIGTERM);
    const int code = exitCodeOf(processId_);
    processId_ = -1;
    reader_.join();
    return code;
}

} // namespace campaign
