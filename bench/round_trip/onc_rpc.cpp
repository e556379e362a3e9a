// ONC RPC over a Unix-domain socket, without the daemon that would map program numbers to addresses.
#include "round_trip/peer.h"
#include "round_trip/unix_socket.h"

#include <array>
#include <cstring>

#include <rpc/rpc.h>
#include <rpc/svc.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "echo_rpc.h"

// Of rpcgen, which declares it nowhere.
extern "C" void echo_program_1(svc_req* request, SVCXPRT* transport); // NOLINT(readability-identifier-naming)

// The service, as rpcgen expects it.
extern "C" bool_t echo_1_svc(EchoBytes* argument, EchoBytes* result, svc_req*)
{
    result->EchoBytes_len = argument->EchoBytes_len;
    result->EchoBytes_val = static_cast<char*>(std::malloc(argument->EchoBytes_len));
    if (result->EchoBytes_val == nullptr)
        return FALSE;
    std::memcpy(result->EchoBytes_val, argument->EchoBytes_val, argument->EchoBytes_len);
    return TRUE;
}

extern "C" int echo_program_1_freeresult(SVCXPRT*, xdrproc_t filter, caddr_t result)
{
    xdr_free(filter, result);
    return 1;
}

namespace round_trip
{
namespace
{

void serve(const std::string& directory, const std::function<void()>& ready)
{
    std::string path = directory + "/onc_rpc";
    SVCXPRT* const transport = svcunix_create(RPC_ANYSOCK, 0, 0, path.data());
    if (transport == nullptr || !svc_register(transport, ECHO_PROGRAM, ECHO_VERSION, echo_program_1, 0))
        fail("the service of ONC RPC has not opened");
    ready();
    svc_run();
}

class OncRpcConnection : public Connection
{
public:
    explicit OncRpcConnection(const std::string& directory) : socket_(connectTo(directory + "/onc_rpc", SOCK_STREAM))
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        client_ = clntunix_create(&address, ECHO_PROGRAM, ECHO_VERSION, &socket_, 0, 0);
        if (client_ == nullptr)
            fail("a client of ONC RPC has not been made");
    }
    ~OncRpcConnection() override
    {
        clnt_destroy(client_);
    }

    void call(void* message, std::size_t length) override
    {
        EchoBytes sent = {static_cast<unsigned>(length), static_cast<char*>(message)};
        EchoBytes received = {0, reply_.data()}; // decoded into what is there
        if (echo_1(&sent, &received, client_) != RPC_SUCCESS || received.EchoBytes_len != length)
            fail("a call by ONC RPC");
        std::memcpy(message, reply_.data(), length);
    }

private:
    int socket_;
    CLIENT* client_;
    std::array<char, kLongest> reply_;
};

} // namespace

const Peer kOncRpc = {"ONC RPC", serve, [](const std::string& directory) -> std::unique_ptr<Connection> {
                          return std::make_unique<OncRpcConnection>(directory);
                      }};

} // namespace round_trip
