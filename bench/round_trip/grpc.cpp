#include "round_trip/peer.h"

#include <cstring>

#include <grpcpp/grpcpp.h>

#include "echo.grpc.pb.h"

namespace round_trip
{
namespace
{

using grpc_echo::Bytes;
using grpc_echo::Echo;

class EchoService : public Echo::Service
{
    grpc::Status Call(grpc::ServerContext*, const Bytes* request, Bytes* reply) override
    {
        reply->set_bytes(request->bytes());
        return grpc::Status::OK;
    }
};

std::string targetIn(const std::string& directory)
{
    return "unix:" + directory + "/grpc";
}

void serve(const std::string& directory, const std::function<void()>& ready)
{
    EchoService service;
    grpc::ServerBuilder builder;
    builder.AddListeningPort(targetIn(directory), grpc::InsecureServerCredentials());
    builder.RegisterService(&service);
    const std::unique_ptr<grpc::Server> server = builder.BuildAndStart();
    if (!server)
        fail("the service of gRPC has not started");
    ready();
    server->Wait();
}

class GrpcConnection : public Connection
{
public:
    explicit GrpcConnection(const std::string& directory)
    {
        grpc::ChannelArguments arguments;
        arguments.SetInt(GRPC_ARG_USE_LOCAL_SUBCHANNEL_POOL, 1); // or all callers would share one connection
        stub_ = Echo::NewStub(grpc::CreateCustomChannel(targetIn(directory), grpc::InsecureChannelCredentials(), arguments));
    }

    void call(void* message, std::size_t length) override
    {
        grpc::ClientContext context;
        Bytes request, reply;
        request.set_bytes(message, length);
        const grpc::Status status = stub_->Call(&context, request, &reply);
        if (!status.ok() || reply.bytes().size() != length)
            fail("a call by gRPC: " + status.error_message());
        std::memcpy(message, reply.bytes().data(), length);
    }

private:
    std::unique_ptr<Echo::Stub> stub_;
};

} // namespace

const Peer kGrpc = {"gRPC", serve, [](const std::string& directory) -> std::unique_ptr<Connection> {
                        return std::make_unique<GrpcConnection>(directory);
                    }};

} // namespace round_trip
