// `tarn-fleet attach`: a gateway behind the broker as if it were here.
#include "attachment.h"
#include "fleet_verbs.h"
#include "link_settings.h"
#include "tarnctl/layout_in_use.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/wakeup.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <future>
#include <memory>
#include <stdexcept>

#include <unistd.h>

namespace tarn::fleet
{

namespace
{

constexpr char kAttachHelp[] = R"(Until SIGINT or SIGTERM, every program that finds its services in DIRECTORY
(KORIIL_DIR) talks to that gateway. A call that fails has an IPC status, and a
line on standard error says why:
  UNKNOWN_DST_ID  the gateway does not answer: it is not connected
  TX_FAIL         no connection to a broker, or the bridge is about to end
  RX_FAIL         the connection broke after the call was sent: outcome unknown
  TIMEOUT         no answer within the caller's wait: outcome unknown
  UNSUPPORT       the gateway's policy does not allow the call; or it has the
                  other byte order, and no layout tells of a record
  BUSY            too many calls wait on the gateway, or its policy's rate
  MISMATCH_COMM   the gateway has another contract
  OVERSIZE        a message of more than 16384 bytes
Any other status is what the gateway's own IPC returned.)";

struct AttachOptions
{
    std::string gateway;
    std::optional<std::string> directory;
    bool isTemporary = false;
    std::optional<std::string> readyDescriptor;
};

void declareAttach(ctl::Syntax& syntax, AttachOptions& options)
{
    syntax.text("GATEWAY", options.gateway, "The gateway's name");
    syntax.text("--directory", options.directory, "Where its services are to be found, instead of KORIIL_DIR", "DIRECTORY");
    syntax.flag("--temporary", options.isTemporary, "In a new directory of /tmp, which is removed at the end");
    syntax.exclude("--temporary", "--directory");
    syntax.text("--ready-descriptor", options.readyDescriptor,
                "Write \"ready DIRECTORY\" to this descriptor once the gateway has answered, or has not within 3 s", "NUMBER");
    syntax.footer(kAttachHelp);
}

std::uint32_t descriptorOf(const std::string& text)
{
    constexpr std::uint32_t kHighest = 1023;
    char expected[256];
    std::uint32_t number = 0;
    if (!setNumber("--ready-descriptor", text.c_str(), 1, kHighest, number, Problem{expected, sizeof expected}))
        throw ctl::UsageError(expected);
    return number;
}

void sayReady(const ctl::Console& console, std::uint32_t descriptor)
{
    const std::string line = "ready " + ctl::runtimeDirectory() + "\n";
    if (write(static_cast<int>(descriptor), line.data(), line.size()) < 0)
        console.remark("the descriptor of --ready-descriptor cannot be written to");
}

// A new directory, which goes with it.
class TemporaryDirectory
{
public:
    TemporaryDirectory()
    {
        char path[] = "/tmp/tarn-fleet-XXXXXX"; // short: a socket's whole path has at most 107 characters
        if (mkdtemp(path) == nullptr)
            throw std::runtime_error(std::string("a directory in /tmp: ") + std::strerror(errno));
        path_ = path;
    }
    ~TemporaryDirectory()
    {
        std::error_code none;
        std::filesystem::remove_all(path_, none);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::string& path() const
    {
        return path_;
    }

private:
    std::string path_;
};

ctl::ExitCode attach(const ctl::Console& console, const AttachOptions& options, const LinkSettings& link)
{
    constexpr std::chrono::seconds kMeetingTime{3};
    if (!isId(options.gateway.c_str()))
        throw ctl::UsageError("GATEWAY: expected 1 to 64 printable characters without space / + #, not " + options.gateway);
    const std::uint32_t ready = options.readyDescriptor ? descriptorOf(*options.readyDescriptor) : 0;
    ctl::checkNamedLayout();
    const auto temporary = options.isTemporary ? std::make_unique<TemporaryDirectory>() : nullptr;
    if (temporary != nullptr)
        setenv("KORIIL_DIR", temporary->path().c_str(), 1);
    else if (options.directory)
        setenv("KORIIL_DIR", std::filesystem::absolute(*options.directory).c_str(), 1);

    const ctl::Wakeup wakeup;
    const ctl::StopSignals signals(wakeup);
    Attachment attachment(link, options.gateway, layoutOrNull());
    // Beside this thread, which a signal ends at once.
    std::future<void> meeting = std::async(std::launch::async,
                                           [&]
                                           {
                                               attachment.awaitGateway(kMeetingTime);
                                               if (ready != 0 && !signals.haveCome())
                                                   sayReady(console, ready);
                                           });
    while (!signals.haveCome())
        wakeup.wait(std::nullopt);
    attachment.giveUp();
    meeting.get();
    return ctl::ExitCode::kSuccess;
}

} // namespace

void addAttach(ctl::Verbs& verbs, const SettingsSource& settings)
{
    verbs.add<AttachOptions>("attach", "Lets every program here talk to one gateway", declareAttach,
                             [settings](const ctl::Console& console, const AttachOptions& options)
                             { return attach(console, options, settings()); });
}

const layout::Layout* layoutOrNull()
{
    const ctl::LayoutInUse* const inUse = ctl::layoutInUse();
    return inUse == nullptr ? nullptr : &inUse->layout;
}

} // namespace tarn::fleet
