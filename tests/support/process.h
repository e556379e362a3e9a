// Programs that a test starts, and what they write.
#pragma once

#include <cerrno>
#include <csignal>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn::test
{

// Two descriptors, neither of which a program gets unless it is one of its streams.
class Pipe
{
public:
    Pipe()
    {
        if (pipe2(ends_, O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
    }
    ~Pipe()
    {
        closeReading();
        closeWriting();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int reading() const
    {
        return ends_[0];
    }
    int writing() const
    {
        return ends_[1];
    }
    void closeReading()
    {
        closeEnd(ends_[0]);
    }
    // Without this its reader never sees the end.
    void closeWriting()
    {
        closeEnd(ends_[1]);
    }

    // Without its end; empty at the end of what is written.
    std::string line() const
    {
        std::string text;
        for (char character = 0; read(ends_[0], &character, 1) == 1 && character != '\n';)
            text += character;
        return text;
    }
    std::string rest() const
    {
        std::string text;
        for (char character = 0; read(ends_[0], &character, 1) == 1;)
            text += character;
        return text;
    }

private:
    static void closeEnd(int& end)
    {
        if (end >= 0)
            close(std::exchange(end, -1));
    }

    int ends_[2] = {-1, -1};
};

// The words of an emulator, if there are any, a program and its arguments.
inline std::vector<std::string> commandOf(const std::string& emulator, const std::string& program,
                                          const std::vector<std::string>& arguments)
{
    std::vector<std::string> words;
    std::istringstream text(emulator);
    for (std::string word; text >> word;)
        words.push_back(word);
    words.push_back(program);
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

// Which descriptors a program has as its standard streams; the test's own unless said otherwise.
struct Streams
{
    int in = STDIN_FILENO;
    int out = STDOUT_FILENO;
    int err = STDERR_FILENO;
};

class Process
{
public:
    using Environment = std::vector<std::pair<std::string, std::string>>; // in addition to the test's own

    Process() = default;
    // The first word is the program, or its name on the path. Not by fork, as other threads of the test may run.
    explicit Process(std::vector<std::string> words, const Streams& streams = {}, const Environment& environment = {})
    {
        std::vector<std::string> variables;
        for (const auto& [name, value] : environment)
            variables.push_back(name + "=" + value);
        for (char** each = environ; *each != nullptr; ++each)
            if (!isIn(environment, *each))
                variables.emplace_back(*each);

        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        replace(actions, STDIN_FILENO, streams.in);
        replace(actions, STDOUT_FILENO, streams.out);
        replace(actions, STDERR_FILENO, streams.err);
        const int error =
            posix_spawnp(&id_, words[0].c_str(), &actions, nullptr, pointersTo(words).data(), pointersTo(variables).data());
        posix_spawn_file_actions_destroy(&actions);
        if (error != 0)
            throw std::runtime_error(words[0] + " cannot be started: " + std::strerror(error));
    }
    // Kills it.
    ~Process()
    {
        signal(SIGKILL);
        finish();
    }
    Process(Process&& other) noexcept : id_(std::exchange(other.id_, -1)), exitCode_(other.exitCode_)
    {
    }
    Process& operator=(Process&& other) noexcept
    {
        std::swap(id_, other.id_);
        std::swap(exitCode_, other.exitCode_);
        return *this;
    }

    // -1 once it has ended.
    pid_t id() const
    {
        return id_;
    }
    void signal(int number) const
    {
        if (id_ > 0)
            kill(id_, number);
    }
    // Waits for its end. Its exit code; 128 and the signal that ended it.
    int finish()
    {
        await(0);
        return exitCode_;
    }
    bool hasEnded()
    {
        await(WNOHANG);
        return id_ < 0;
    }

private:
    static void replace(posix_spawn_file_actions_t& actions, int stream, int descriptor)
    {
        if (descriptor != stream)
            posix_spawn_file_actions_adddup2(&actions, descriptor, stream);
    }
    static bool isIn(const Environment& environment, const char* variable)
    {
        const std::string name(variable, std::strcspn(variable, "="));
        for (const auto& each : environment)
            if (each.first == name)
                return true;
        return false;
    }
    static std::vector<char*> pointersTo(std::vector<std::string>& texts)
    {
        std::vector<char*> pointers;
        pointers.reserve(texts.size() + 1);
        for (std::string& text : texts)
            pointers.push_back(text.data());
        pointers.push_back(nullptr);
        return pointers;
    }
    void await(int options)
    {
        if (id_ < 0)
            return;
        int state = 0;
        pid_t ended;
        do
            ended = waitpid(id_, &state, options);
        while (ended < 0 && errno == EINTR);
        if (ended == id_)
        {
            exitCode_ = WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
            id_ = -1;
        }
    }

    pid_t id_ = -1;
    int exitCode_ = 0;
};

} // namespace tarn::test
