#include "process.h"

#include <csignal>
#include <stdexcept>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fleet_test
{

// Not fork: other threads of this process run.
Process::Process(std::vector<std::string> words, int output)
{
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    const int error = posix_spawn(&id_, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error(words[0] + " cannot be started");
}

Process::~Process()
{
    signal(SIGKILL);
    finish();
}

void Process::signal(int number) const
{
    if (id_ > 0)
        kill(id_, number);
}

int Process::finish()
{
    int state = 0;
    if (id_ > 0 && waitpid(id_, &state, 0) == id_)
    {
        exitCode_ = WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
        id_ = -1;
    }
    return exitCode_;
}

} // namespace fleet_test
