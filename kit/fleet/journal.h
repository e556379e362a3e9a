// What a run over many gateways has sent, in a file, so that an interrupted run can go on without sending anything twice.
#pragma once

#include <cstdio>
#include <map>
#include <mutex>
#include <string>

namespace tarn::fleet
{

class Journal
{
public:
    // Reads the file if it is there, and goes on in it. `call` says what is called, in one line: another one than the file's is
    // refused. Throws ctl::UsageError for a file that is none of these, std::runtime_error if it cannot be written.
    Journal(const std::string& path, const std::string& call);
    ~Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    // What became of a gateway in earlier runs, by its name: a result, or nothing where only the sending is on record. Those to
    // which nothing was sent are not in it.
    const std::map<std::string, std::string>& earlier() const
    {
        return earlier_;
    }

    // From any thread. Throws std::runtime_error if the line cannot be written: then nothing may be sent.
    void sending(const std::string& gateway);
    void result(const std::string& gateway, const char* name);

private:
    void read(const std::string& call);
    void write(const std::string& line);

    const std::string path_;
    std::map<std::string, std::string> earlier_;
    std::mutex mutex_;
    std::FILE* file_ = nullptr;
    bool endsWithin_ = false; // a line
};

} // namespace tarn::fleet
