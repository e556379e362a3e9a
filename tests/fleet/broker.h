// A mosquitto of the test's own: on the loopback interface, with its files in a directory that is removed.
#pragma once

#include "server_process.h"

#include "support/temporary_directory.h"

#include <cstdint>
#include <string>

namespace fleet_test
{

class MosquittoBroker
{
public:
    // `configuration`: lines in addition to a listener's, or in its place if they have one; @PORT@ stands for the port.
    explicit MosquittoBroker(const std::string& configuration = "listener @PORT@ 127.0.0.1\n"
                                                                "allow_anonymous true\n"
                                                                "set_tcp_nodelay true\n");

    std::uint16_t port() const
    {
        return port_;
    }

    pid_t processId() const
    {
        return server_.id();
    }

    void kill();
    // Again on the same port.
    void start();
    // Has it read again the files that it can while it runs.
    void readAgain() const;
    // Holds all connections without delivering anything.
    void pause() const;
    void resume() const;

private:
    bool tryStart();

    tarn::test::TemporaryDirectory directory_;
    std::string configuration_;
    std::uint16_t port_ = 0;
    ServerProcess server_;
};

} // namespace fleet_test
