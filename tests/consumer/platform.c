/* A platform of the caller's own: as much of the services as the callers ask for. */
#include <string.h>

#include <kor_iil.h>

enum
{
    kGetLogLevel = 0,
    kSetLogLevel = 1,
    kGetMirrorStatus = 0,
    kSetMirrorEnable = 2,
    kUnsupported = 12,
    kUnknownCommand = 13
};

uint32_t KorIilExecute(const char* callerId, const char* serviceId, uint32_t wait, uint32_t cmdId, uint32_t msgLen, void* msg)
{
    static uint32_t level;
    static uint32_t mirror;
    uint32_t* const words = msg;

    (void)callerId;
    (void)wait;
    (void)msgLen;
    if (strcmp(serviceId, "TARN") == 0 && cmdId == kSetLogLevel)
        level = words[0];
    else if (strcmp(serviceId, "TARN") == 0 && cmdId == kGetLogLevel)
        words[1] = level;
    else if (strcmp(serviceId, "QTN_MIRROR") == 0 && cmdId == kSetMirrorEnable)
        mirror = words[0];
    else if (strcmp(serviceId, "QTN_MIRROR") == 0 && cmdId == kGetMirrorStatus)
        words[4] = mirror;
    else
        return kUnknownCommand;
    return 0;
}

uint32_t KorIilSubscribeEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler)
{
    (void)callerId;
    (void)serviceId;
    (void)evt;
    (void)handler;
    return kUnsupported;
}

uint32_t KorIilCancelEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler)
{
    return KorIilSubscribeEvent(callerId, serviceId, evt, handler);
}

void KorIilTrace(uint32_t level, const char* fileTag, uint32_t line, const char* format, ...)
{
    (void)level;
    (void)fileTag;
    (void)line;
    (void)format;
}
