#include "round_trip/peer.h"

#include "kor_iil.h"
#include "kor_iil_service.h"

namespace round_trip
{
namespace
{

constexpr std::uint32_t kWait = 60; // seconds

std::uint32_t echo(void*, const KorIilRequest*, void*)
{
    return KOR_IIL_OK;
}

void serve(const std::string&, const std::function<void()>& ready)
{
    KorIilService* service = nullptr;
    if (KorIilServiceOpen("ECHO", 0, echo, nullptr, &service) != KOR_IIL_OK)
        fail("the service of libkoriil has not opened");
    ready();
    KorIilServiceRun(service);
}

// The library keeps a connection for each thread by itself.
class KoriilConnection : public Connection
{
public:
    void call(void* message, std::size_t length) override
    {
        if (KorIilExecute("benchmark", "ECHO", kWait, 1, static_cast<std::uint32_t>(length), message) != KOR_IIL_OK)
            fail("a call through libkoriil");
    }
};

} // namespace

const Peer kKoriil = {"libkoriil", serve,
                      [](const std::string&) -> std::unique_ptr<Connection> { return std::make_unique<KoriilConnection>(); }};

} // namespace round_trip
