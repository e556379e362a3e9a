#include "round_trip/peer.h"

#include <zmq.h>

namespace round_trip
{
namespace
{

void* context()
{
    static void* const kContext = zmq_ctx_new();
    return kContext;
}

std::string endpointIn(const std::string& directory)
{
    return "ipc://" + directory + "/zeromq";
}

void serve(const std::string& directory, const std::function<void()>& ready)
{
    void* const socket = zmq_socket(context(), ZMQ_REP);
    if (zmq_bind(socket, endpointIn(directory).c_str()) != 0)
        failWithReason("the service of ZeroMQ");
    ready();
    zmq_msg_t message;
    zmq_msg_init(&message);
    while (zmq_msg_recv(&message, socket, 0) >= 0 && zmq_msg_send(&message, socket, 0) >= 0)
    {
    }
    failWithReason("serving by ZeroMQ");
}

class ZeroMqConnection : public Connection
{
public:
    explicit ZeroMqConnection(const std::string& directory) : socket_(zmq_socket(context(), ZMQ_REQ))
    {
        if (zmq_connect(socket_, endpointIn(directory).c_str()) != 0)
            failWithReason("connecting by ZeroMQ");
    }
    ~ZeroMqConnection() override
    {
        zmq_close(socket_);
    }

    void call(void* message, std::size_t length) override
    {
        if (zmq_send(socket_, message, length, 0) < 0 || zmq_recv(socket_, message, length, 0) != static_cast<int>(length))
            failWithReason("a call by ZeroMQ");
    }

private:
    void* const socket_;
};

} // namespace

const Peer kZeroMq = {"ZeroMQ", serve, [](const std::string& directory) -> std::unique_ptr<Connection> {
                          return std::make_unique<ZeroMqConnection>(directory);
                      }};

} // namespace round_trip
