// What sends a message to a process and gets it back: libkoriil, and everything that it is compared with.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace round_trip
{

// The longest message.
constexpr std::size_t kLongest = 9584;

// One caller's own connection. Used by one thread, the one that made it.
class Connection
{
public:
    Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    virtual ~Connection() = default;

    // Sends `length` bytes and waits for those that come back, which take their place. Throws if that fails.
    virtual void call(void* message, std::size_t length) = 0;
};

struct Peer
{
    const char* name;

    // Serves any number of connections in a process of its own; what it needs of files is in the directory. Calls `ready` once
    // it can be called, and then does not return.
    std::function<void(const std::string& directory, const std::function<void()>& ready)> serve;

    std::function<std::unique_ptr<Connection>(const std::string& directory)> connect;
};

extern const Peer kDBusDaemon, kGrpc, kKoriil, kOncRpc, kSdBus, kSeqpacket, kSeqpacketEpoll, kSharedMemory, kStream, kZeroMq;

[[noreturn]] void fail(const std::string& what);

// With the reason that errno has.
[[noreturn]] void failWithReason(const std::string& what);

} // namespace round_trip
