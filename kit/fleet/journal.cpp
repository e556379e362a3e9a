#include "journal.h"

#include "tarnctl/usage_error.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include <unistd.h>

namespace tarn::fleet
{

namespace
{

// A line is a word, a space, and the rest.
constexpr char kCall[] = "call ";
constexpr char kSending[] = "sending ";
constexpr char kResult[] = "result ";
constexpr char kNotSent[] = "not-sent";

bool takePrefix(std::string& line, const char* prefix)
{
    if (line.rfind(prefix, 0) != 0)
        return false;
    line.erase(0, std::strlen(prefix));
    return true;
}

} // namespace

Journal::Journal(const std::string& path, const std::string& call) : path_(path)
{
    const bool isThere = access(path.c_str(), F_OK) == 0;
    if (isThere)
        read(call);
    file_ = std::fopen(path.c_str(), "ae");
    if (file_ == nullptr)
        throw std::runtime_error(path + ": " + std::strerror(errno));
    if (!isThere)
        write(kCall + call);
    else if (endsWithin_)
        write("");
}

Journal::~Journal()
{
    std::fclose(file_);
}

// A last line that is not complete is that of a run that was killed in it; the line before has all that counts.
void Journal::read(const std::string& call)
{
    std::ifstream file(path_);
    std::string line;
    if (!std::getline(file, line) || !takePrefix(line, kCall))
        throw ctl::UsageError(path_ + ": expected a file that --resume has written");
    if (line != call)
        throw ctl::UsageError(path_ + ": expected a run of " + call + "; it is one of " + line);
    while (std::getline(file, line))
        if (file.eof())
            endsWithin_ = true;
        else if (takePrefix(line, kSending))
            earlier_[line].clear();
        else if (takePrefix(line, kResult))
        {
            const std::size_t space = line.find(' ');
            const std::string name = line.substr(0, space);
            if (name == kNotSent)
                earlier_.erase(line.substr(space + 1));
            else if (space != std::string::npos)
                earlier_[line.substr(space + 1)] = name;
        }
}

void Journal::write(const std::string& line)
{
    const std::lock_guard guard(mutex_);
    if (std::fputs((line + "\n").c_str(), file_) < 0 || std::fflush(file_) != 0)
        throw std::runtime_error(path_ + ": " + std::strerror(errno));
}

void Journal::sending(const std::string& gateway)
{
    write(kSending + gateway);
}

void Journal::result(const std::string& gateway, const char* name)
{
    write(std::string(kResult) + name + " " + gateway);
}

} // namespace tarn::fleet
