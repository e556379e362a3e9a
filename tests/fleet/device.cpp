#include "device.h"

#include "home.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace fleet_test
{

Device::Device(std::uint16_t port, unsigned number, const std::string& directory, const std::string& ledger, int taken)
    : directory_(directory + "/" + std::to_string(number)),
      bridgeWords_{
          TARN_BRIDGE_PROGRAM,   "--id", Home::nameOf(number), "--broker", "127.0.0.1:" + std::to_string(port), "--policy",
          directory_ + "/policy"},
      serviceWords_{"device", directory_, ledger, std::to_string(number), std::to_string(taken)}
{
    std::filesystem::create_directory(directory_);
    std::ofstream(directory_ + "/policy") << "allow *\n";
    restart();
}

void Device::killBridge()
{
    bridge_.reset();
}

void Device::killService()
{
    if (service_)
        service_->kill();
    service_.reset();
}

void Device::restart()
{
    if (!service_)
    {
        service_.emplace(serviceWords_);
        EXPECT_EQ(service_->line(), "ready");
    }
    if (bridge_)
        return;
    const tarn::test::Streams streams = {STDIN_FILENO, STDERR_FILENO, STDERR_FILENO};
    bridge_.emplace(bridgeWords_, streams, tarn::test::Process::Environment{{"KORIIL_DIR", directory_}});
}

} // namespace fleet_test
