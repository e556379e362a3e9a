// A separate process for tests of the environment and of the end of a process.
//
//   host_probe trace LEVEL TAG LINE TEXT      writes one trace record
//   host_probe trace-again COUNT TEXT         writes COUNT of them
//   host_probe trace-flood COUNT TEXT         writes COUNT of them, and another one a moment later
//   host_probe call CALLER SERVICE HEX        one call of command 1 with these bytes; exits with its status
//   host_probe call-limited CALLER SERVICE HEX  the same four times; no file may grow at the second and third
//   host_probe call-closed CALLER SERVICE HEX  the same three times; after the first one all descriptors are closed, and
//                                              there is a trace record after each of the others
//   host_probe end SERVICE                    subscribes, and exits with everything open; the destructor of a static calls
#include "base/hexadecimal.h"
#include "kor_iil.h"
#include "kor_iil_service.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

int usage()
{
    std::fprintf(stderr, "usage: host_probe trace LEVEL TAG LINE TEXT | trace-again COUNT TEXT | trace-flood COUNT TEXT |\n"
                         "                  call CALLER SERVICE HEX | call-limited CALLER SERVICE HEX |\n"
                         "                  call-closed CALLER SERVICE HEX | end SERVICE\n");
    return 100;
}

int number(const char* text)
{
    return static_cast<int>(std::strtol(text, nullptr, 10));
}

int call(const char* callerId, const char* serviceId, const std::string& hexadecimal)
{
    tarn::base::Bytes message = tarn::base::parseHex(hexadecimal).value();
    return static_cast<int>(
        KorIilExecute(callerId, serviceId, 30, 1, static_cast<std::uint32_t>(message.size()), message.data()));
}

void trace(int count, const char* text)
{
    for (int i = 0; i < count; ++i)
        KorIilTrace(1, "probe", static_cast<std::uint32_t>(i), "%s", text);
}

int callLimited(const char* callerId, const char* serviceId, const std::string& hexadecimal)
{
    int status = call(callerId, serviceId, hexadecimal);
    struct stat recording = {};
    rlimit limit = {};
    if (stat(std::getenv("KORIIL_RECORD"), &recording) != 0 || getrlimit(RLIMIT_FSIZE, &limit) != 0)
        return 101;
    for (const rlim_t halves : {3u, 2u})
    {
        const rlimit tight = {static_cast<rlim_t>(recording.st_size) * halves / 2, limit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &tight);
        status += call(callerId, serviceId, hexadecimal);
    }
    setrlimit(RLIMIT_FSIZE, &limit);
    return status + call(callerId, serviceId, hexadecimal);
}

int callClosed(const char* callerId, const char* serviceId, const std::string& hexadecimal)
{
    int status = call(callerId, serviceId, hexadecimal);
    for (int descriptor = 3; descriptor < 64; ++descriptor)
        close(descriptor);
    for (int i = 0; i < 2; ++i)
    {
        status += call(callerId, serviceId, hexadecimal);
        trace(1, "text");
    }
    return status;
}

// Destroyed after main has returned, when the main thread's connections are closed.
struct LateCaller
{
    ~LateCaller()
    {
        if (serviceId == nullptr)
            return;
        unsigned char byte = 1;
        const std::uint32_t status = KorIilExecute("late", serviceId, 30, 1, 1, &byte);
        std::printf("late call: status %u, byte %u\n", static_cast<unsigned>(status), static_cast<unsigned>(byte));
        std::fflush(stdout);
    }
    const char* serviceId = nullptr;
};

LateCaller lateCaller;

int end(const char* serviceId)
{
    lateCaller.serviceId = serviceId;
    const auto ignore = [](const char*, std::uint32_t, const void*, std::uint32_t) {};
    std::thread([=] { call("thread", serviceId, "00"); }).join();
    if (call("main", serviceId, "00") != KOR_IIL_OK)
        return 1;
    return static_cast<int>(KorIilSubscribeEvent("main", serviceId, 1, ignore));
}

} // namespace

int main(int argc, char** argv)
{
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "trace" && argc == 6)
        KorIilTrace(static_cast<std::uint32_t>(number(argv[2])), argv[3], static_cast<std::uint32_t>(number(argv[4])), "%s",
                    argv[5]);
    else if (mode == "trace-again" && argc == 4)
        trace(number(argv[2]), argv[3]);
    else if (mode == "trace-flood" && argc == 4)
    {
        trace(number(argv[2]), argv[3]);
        std::this_thread::sleep_for(std::chrono::milliseconds(1100));
        trace(1, argv[3]);
    }
    else if (mode == "call" && argc == 5)
        return call(argv[2], argv[3], argv[4]);
    else if (mode == "call-limited" && argc == 5)
        return callLimited(argv[2], argv[3], argv[4]);
    else if (mode == "call-closed" && argc == 5)
        return callClosed(argv[2], argv[3], argv[4]);
    else if (mode == "end" && argc == 3)
        return end(argv[2]);
    else
        return usage();
    return 0;
}
