/* A simulated gateway for tests with GoogleTest: a tarn-gateway of the test's own, with a runtime directory of its own.
 *
 *     tarn::gateway::SimulatedGateway gateway({"--scenario", "home.json"});
 *     gateway.order("radar 52");
 *     gateway.order("step 60");
 *     EXPECT_EQ(gateway.order("state /radios/0/channel"), "36");
 *
 * No time passes until the test steps it. When the test has failed, the log of its requests is printed. README.md has the
 * orders. */
#pragma once

#include "kor_iil.h"
#include "tarn_gateway_control.h"
#include "tarn_gateway_order.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn::gateway
{

// One at a time in a process, which reaches it through KORIIL_DIR: a second one is refused, as calls to it would reach the
// first. Throws std::runtime_error where something does not work.
class SimulatedGateway
{
public:
    // With options of tarn-gateway; "--speed", "1" lets its time run. The program is the one that the environment variable
    // TARN_GATEWAY names, or else the tarn-gateway of the PATH.
    explicit SimulatedGateway(const std::vector<std::string>& options = {})
    {
        if (isThere_)
            throw std::runtime_error("a simulated gateway is there already, and a process has one at a time");
        char directory[] = "/tmp/tarn-gateway-XXXXXX"; // short: a socket's path has at most 107 characters
        if (mkdtemp(directory) == nullptr || setenv("KORIIL_DIR", directory, 1) != 0)
            throw std::runtime_error("there is no room for a runtime directory in /tmp");
        directory_ = directory;
        isThere_ = true;
        try
        {
            start(options);
        }
        catch (...)
        {
            end();
            throw;
        }
    }

    ~SimulatedGateway()
    {
        if (testing::Test::HasFailure())
            std::fprintf(stderr, "the gateway's requests:\n%s", log().c_str());
        end();
    }

    SimulatedGateway(const SimulatedGateway&) = delete;
    SimulatedGateway& operator=(const SimulatedGateway&) = delete;

    // Gives an order, such as "step 60". Returns its answer, JSON text. An order that is refused is a failure of the test, with
    // the reason.
    std::string order(const std::string& words) const
    {
        const OrderAnswer answer = giveOrder(kCaller, words, kWait);
        require(answer.ipcStatus);
        if (answer.status == TARN_GATEWAY_OK)
            return answer.text;
        ADD_FAILURE() << words << ": " << answer.text;
        return {};
    }

    // Returns once everything that the device service has published so far has been handled in this process. Event 5 with no
    // data, which it publishes for that, reaches the component too if it is subscribed to it.
    void handleEvents() const
    {
        const std::uint32_t event = 5;
        {
            const std::lock_guard<std::mutex> guard(mutex());
            hasArrived() = false;
        }
        require(KorIilSubscribeEvent(kCaller, "TARN", event, &SimulatedGateway::arrived));
        TarnGatewayPublish message = {};
        message.event = event;
        require(KorIilExecute(kCaller, TARN_GATEWAY_SERVICE, kWait, TARN_GATEWAY_PUBLISH, sizeof message, &message));
        std::unique_lock<std::mutex> lock(mutex());
        const bool isDone = arrival().wait_for(lock, std::chrono::seconds(kWait), [] { return hasArrived(); });
        lock.unlock();
        require(KorIilCancelEvent(kCaller, "TARN", event, &SimulatedGateway::arrived));
        if (!isDone)
            throw std::runtime_error("the events of the simulated gateway have not been handled");
    }

    // The requests so far, one a line, and what else the program has said on standard error.
    std::string log() const
    {
        const std::ifstream file(directory_ + "/log");
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }

private:
    static constexpr const char* kCaller = "test";
    static constexpr std::uint32_t kWait = 60; // seconds

    void start(const std::vector<std::string>& options)
    {
        int ready[2];
        if (pipe2(ready, O_CLOEXEC) != 0)
            throw std::runtime_error("there is no pipe for tarn-gateway");
        const bool isStarted = spawn(commandLine(options), ready[1]);
        close(ready[1]);
        const bool isReady = isStarted && hasInput(ready[0]);
        close(ready[0]);
        if (!isStarted)
            throw std::runtime_error("tarn-gateway cannot be started; expected it in the PATH, or its path in TARN_GATEWAY");
        if (!isReady)
            throw std::runtime_error("tarn-gateway has not become ready: " + log());
    }

    static std::vector<std::string> commandLine(const std::vector<std::string>& options)
    {
        const char* const program = std::getenv("TARN_GATEWAY");
        std::vector<std::string> words = {program == nullptr ? "tarn-gateway" : program, "--log"};
        if (std::find(options.begin(), options.end(), "--speed") == options.end())
            words.insert(words.end(), {"--speed", "0"});
        words.insert(words.end(), options.begin(), options.end());
        return words;
    }

    bool spawn(std::vector<std::string> words, int output)
    {
        std::vector<char*> pointers(words.size() + 1, nullptr);
        std::transform(words.begin(), words.end(), pointers.begin(), [](std::string& word) { return word.data(); });
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, (directory_ + "/log").c_str(), O_CREAT | O_WRONLY | O_APPEND,
                                         S_IRUSR | S_IWUSR);
        pid_t started = -1;
        const int error = posix_spawnp(&started, pointers[0], &actions, nullptr, pointers.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        processId_ = error == 0 ? started : -1;
        return error == 0;
    }

    static bool hasInput(int descriptor)
    {
        char character = 0;
        ssize_t count = 0;
        do
            count = read(descriptor, &character, 1);
        while (count < 0 && errno == EINTR);
        return count == 1;
    }

    void end()
    {
        if (processId_ > 0)
        {
            kill(processId_, SIGTERM);
            while (waitpid(processId_, nullptr, 0) < 0 && errno == EINTR)
            {
            }
        }
        unsetenv("KORIIL_DIR");
        std::error_code ignored;
        std::filesystem::remove_all(directory_, ignored);
        isThere_ = false;
    }

    void require(std::uint32_t ipcStatus) const
    {
        if (ipcStatus != 0)
            throw std::runtime_error("tarn-gateway cannot be reached: IPC status " + std::to_string(ipcStatus) + "\n" + log());
    }

    // A handler has no context argument, so its data is static.
    static std::mutex& mutex()
    {
        static std::mutex instance;
        return instance;
    }

    static std::condition_variable& arrival()
    {
        static std::condition_variable instance;
        return instance;
    }

    static bool& hasArrived()
    {
        static bool instance = false;
        return instance;
    }

    static void arrived(const char*, std::uint32_t, const void*, std::uint32_t length)
    {
        if (length != 0)
            return;
        const std::lock_guard<std::mutex> guard(mutex());
        hasArrived() = true;
        arrival().notify_all();
    }

    inline static bool isThere_ = false;
    std::string directory_;
    pid_t processId_ = -1;
};

} // namespace tarn::gateway
