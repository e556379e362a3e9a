/* The two headers in plain C, from both ends. */
#include "kor_iil.h"
#include "kor_iil_service.h"

#include <string.h>

KorIilService* openServiceInC(const char* serviceId);
uint32_t callInC(const char* serviceId, uint32_t value, uint32_t* doubled);

static uint32_t doubleIt(void* context, const KorIilRequest* request, void* message)
{
    uint32_t value;
    (void)context;
    if (request->length != sizeof(value))
        return KOR_IIL_MISMATCH_CMD_LEN;
    memcpy(&value, message, sizeof(value));
    value *= 2;
    memcpy(message, &value, sizeof(value));
    return KOR_IIL_OK;
}

KorIilService* openServiceInC(const char* serviceId)
{
    KorIilService* service = NULL;
    return KorIilServiceOpen(serviceId, 0, doubleIt, NULL, &service) == KOR_IIL_OK ? service : NULL;
}

uint32_t callInC(const char* serviceId, uint32_t value, uint32_t* doubled)
{
    const uint32_t status = KorIilExecute("c", serviceId, 60, 1, sizeof(value), &value);
    *doubled = value;
    return status;
}
