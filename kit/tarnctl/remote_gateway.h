// A gateway behind a message broker, for one command: tarn-fleet lets this program's calls go there.
#pragma once

#include <string>

#include <sys/types.h>

namespace tarn::ctl
{

class RemoteGateway
{
public:
    // Starts `tarn-fleet attach`, the program beside this one or else that of PATH, in a directory of its own, which becomes
    // KORIIL_DIR. Throws UsageError, or std::runtime_error, if it ends before it is ready; it has then said why on standard
    // error. A gateway that does not answer is no error: its services are then not there.
    explicit RemoteGateway(const std::string& name);
    ~RemoteGateway();
    RemoteGateway(const RemoteGateway&) = delete;
    RemoteGateway& operator=(const RemoteGateway&) = delete;

private:
    pid_t process_ = -1;
};

} // namespace tarn::ctl
