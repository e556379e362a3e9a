#include "gateway_process.h"

#include "support.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <unistd.h>

namespace campaign
{

namespace
{

// Ends at the end of the output.
void readLines(int descriptor, const std::function<void(const std::string&)>& onLine)
{
    FILE* const file = fdopen(fcntl(descriptor, F_DUPFD_CLOEXEC, 0), "r");
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
    tarn::test::Pipe ready;
    process_ = tarn::test::Process(tarn::test::commandOf("", TARN_GATEWAY_PROGRAM, options),
                                   {STDIN_FILENO, ready.writing(), log_.writing()});
    ready.closeWriting();
    log_.closeWriting();
    reader_ = std::thread([this, onLine = std::move(onLine)] { readLines(log_.reading(), onLine); });
    const bool isReady = !ready.line().empty();
    if (isReady)
        return;
    end();
    throw std::runtime_error("tarn-gateway has not become ready");
}

GatewayProcess::~GatewayProcess()
{
    if (process_.id() > 0)
        end();
}

std::size_t GatewayProcess::residentBytes() const
{
    return campaign::residentBytes(process_.id());
}

int GatewayProcess::end()
{
    process_.signal(SIGTERM);
    const int code = process_.finish();
    reader_.join();
    return code;
}

} // namespace campaign
