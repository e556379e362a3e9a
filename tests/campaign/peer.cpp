// The other processes of the campaign. Each prints "ready" when it is, ends when its standard input does, and exits with 0 if
// all went well. It says what did not.
//
//   campaign_peer serve LEDGER     a service that appends the number of every sum to the ledger before it answers
//   campaign_peer call             calls, subscribes and cancels; each must succeed
//   campaign_peer receive COUNT    receives events 1 to COUNT in their order; after every hundredth it calls kAcknowledge
//   campaign_peer device DIRECTORY LEDGER GATEWAY MILLISECONDS
//                                  a gateway's service, found in DIRECTORY, that records and answers calls of
//                                  fleet/numbered_call.h
//   campaign_peer closed NUMBER... closes these of its standard descriptors; then calls, traces and events must work
#include "peer.h"

#include "fleet/ledger.h"
#include "fleet/numbered_call.h"
#include "kor_iil.h"
#include "kor_iil_service.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

namespace
{

using namespace campaign;

int failed(const char* what, std::uint32_t status)
{
    std::fprintf(stderr, "campaign_peer: %s: status %u\n", what, static_cast<unsigned>(status));
    return 1;
}

void ready()
{
    std::puts("ready");
    std::fflush(stdout);
}

void awaitEndOfInput()
{
    char byte;
    while (read(STDIN_FILENO, &byte, 1) > 0)
    {
    }
}

// --- serve -------------------------------------------------------------------------------------------------------------------

std::uint32_t recordAndAnswer(void* ledger, const KorIilRequest* request, void* message)
{
    if (request->length == sizeof(Sum) && write(*static_cast<int*>(ledger), &static_cast<Sum*>(message)->second, 4) != 4)
        return KOR_IIL_ERR;
    return answerSum(nullptr, request, message);
}

int serveAs(const char* name, KorIilRequestHandler handler, void* context)
{
    KorIilService* service = nullptr;
    if (const std::uint32_t status = KorIilServiceOpen(name, 5, handler, context, &service))
        return failed("opening the service", status);
    std::thread(
        [service]
        {
            awaitEndOfInput();
            KorIilServiceStop(service);
        })
        .detach();
    ready();
    const std::uint32_t status = KorIilServiceRun(service);
    KorIilServiceClose(service);
    return status == KOR_IIL_OK ? 0 : failed("running the service", status);
}

int serve(const char* path)
{
    int ledger = open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    return serveAs(kService, recordAndAnswer, &ledger);
}

// --- device ------------------------------------------------------------------------------------------------------------------

struct Device
{
    fleet_test::Ledger ledger;
    std::uint32_t gateway;
    std::chrono::milliseconds taken;
};

std::uint32_t executeNumbered(void* context, const KorIilRequest* request, void* message)
{
    const auto* device = static_cast<Device*>(context);
    if (request->command != fleet_test::kNumberedCommand || request->length != fleet_test::kNumberedLength)
        return KOR_IIL_UNSUPPORT;
    if (!device->ledger.record(device->gateway, fleet_test::numberIn(message)))
        return KOR_IIL_ERR;
    std::this_thread::sleep_for(device->taken);
    fleet_test::answerInFull(message, request->length, device->gateway, 0);
    return KOR_IIL_OK;
}

int serveDevice(const char* directory, const char* ledger, const char* gateway, const char* milliseconds)
{
    setenv("KORIIL_DIR", directory, 1);
    Device device{fleet_test::Ledger(ledger), static_cast<std::uint32_t>(std::strtoul(gateway, nullptr, 10)),
                  std::chrono::milliseconds(std::strtoul(milliseconds, nullptr, 10))};
    return serveAs(fleet_test::kNumberedService, executeNumbered, &device);
}

// --- call --------------------------------------------------------------------------------------------------------------------

void ignoreEvent(const char*, std::uint32_t, const void*, std::uint32_t)
{
}

int call()
{
    std::atomic<bool> done{false};
    std::thread end(
        [&done]
        {
            awaitEndOfInput();
            done = true;
        });
    ready();
    int failures = 0;
    const auto expectOk = [&](const char* what, std::uint32_t status) { failures += status == 0 ? 0 : failed(what, status); };
    for (std::uint32_t i = 0; !done; ++i)
    {
        Sum sum = {i, 1};
        expectOk("a call", KorIilExecute("healthy", kService, kAmple, kAdd, sizeof sum, &sum));
        expectOk("its reply", sum.first - i - 1);
        if (i % 100 == 0)
            expectOk("subscribing", KorIilSubscribeEvent("healthy", kService, 1, ignoreEvent));
        if (i % 100 == 99)
            expectOk("cancelling", KorIilCancelEvent("healthy", kService, 1, ignoreEvent));
    }
    end.join();
    return failures == 0 ? 0 : 1;
}

// --- receive -----------------------------------------------------------------------------------------------------------------

std::atomic<std::uint32_t> lastEvent{0};
std::atomic<bool> outOfOrder{false};

void receiveNumbered(const char*, std::uint32_t, const void* data, std::uint32_t length)
{
    std::uint32_t number = 0;
    if (length == sizeof number)
        std::memcpy(&number, data, sizeof number);
    if (number != lastEvent + 1)
    {
        std::fprintf(stderr, "campaign_peer: event %u after event %u\n", static_cast<unsigned>(number),
                     static_cast<unsigned>(lastEvent));
        outOfOrder = true;
    }
    if (number % kAcknowledgedAtOnce == 0)
        outOfOrder = KorIilExecute("receiver", kService, kAmple, kAcknowledge, 0, nullptr) != KOR_IIL_OK || outOfOrder;
    lastEvent = number;
}

int receive(std::uint32_t count)
{
    if (const std::uint32_t status = KorIilSubscribeEvent("receiver", kService, 1, receiveNumbered))
        return failed("subscribing", status);
    ready();
    awaitEndOfInput();
    return lastEvent == count && !outOfOrder ? 0 : failed("events received", lastEvent);
}

// --- closed ------------------------------------------------------------------------------------------------------------------

std::atomic<int> eventsSeen{0};

void countEvent(const char*, std::uint32_t, const void*, std::uint32_t)
{
    ++eventsSeen;
}

// The exit code says what did not work: standard error may be closed.
int closed(int count, char** numbers)
{
    dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
    for (int i = 0; i < count; ++i)
        close(std::atoi(numbers[i]));
    if (KorIilSubscribeEvent("closed", kService, 1, countEvent) != KOR_IIL_OK)
        return 2;
    for (std::uint32_t i = 0; i < 100; ++i)
    {
        Sum sum = {i, 1};
        if (KorIilExecute("closed", kService, kAmple, kAdd, sizeof sum, &sum) != KOR_IIL_OK || sum.first != i + 1)
            return 3;
        KorIilTrace(1, "closed", i, "must not go to the service");
    }
    for (int waited = 0; eventsSeen == 0 && waited < 10000; ++waited)
        usleep(1000);
    if (eventsSeen == 0)
        return 4;
    return KorIilCancelEvent("closed", kService, 1, countEvent) == KOR_IIL_OK ? 0 : 5;
}

} // namespace

int main(int argc, char** argv)
{
    const std::string role = argc > 1 ? argv[1] : "";
    if (role == "serve" && argc == 3)
        return serve(argv[2]);
    if (role == "call" && argc == 2)
        return call();
    if (role == "receive" && argc == 3)
        return receive(static_cast<std::uint32_t>(std::strtoul(argv[2], nullptr, 10)));
    if (role == "device" && argc == 6)
        return serveDevice(argv[2], argv[3], argv[4], argv[5]);
    if (role == "closed")
        return closed(argc - 2, argv + 2);
    std::fputs("usage: campaign_peer serve LEDGER | call | receive COUNT | device DIRECTORY LEDGER GATEWAY MILLISECONDS | "
               "closed NUMBER...\n",
               stderr);
    return 100;
}
