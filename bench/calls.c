/* The time of a call in C: `tarn_bench_calls COUNT` prints for each of a few functions the nanoseconds that one call takes. */
#define _POSIX_C_SOURCE 199309L /* clock_gettime */

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#include <tarn_api.h>
#include <tarn_qtn_monitor_api.h>

static uint32_t number;
static TarnRadioData radio;
static char text[9376];

static int32_t logLevel(void)
{
    return (int32_t)TarnGetLogLevel("bench", &number);
}

static int32_t channel(void)
{
    return tarn_qcsapi_wifi_get_channel("bench", "wifi0", &number);
}

static int32_t radioData(void)
{
    return (int32_t)TarnGetRadio("bench", 1, &radio);
}

static int32_t firmwareVersion(void)
{
    return tarn_qcsapi_firmware_get_version("bench", text, sizeof text);
}

static const struct
{
    const char* name;
    int32_t (*call)(void);
} kCalls[] = {
    {"TarnGetLogLevel", logLevel},
    {"tarn_qcsapi_wifi_get_channel", channel},
    {"TarnGetRadio", radioData},
    {"tarn_qcsapi_firmware_get_version", firmwareVersion},
};

static double now(void)
{
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec * 1e9 + (double)time.tv_nsec;
}

int main(int argc, char** argv)
{
    const long count = argc == 2 ? strtol(argv[1], NULL, 10) : 0;
    size_t each;

    if (count <= 0)
    {
        fprintf(stderr, "usage: tarn_bench_calls COUNT, the calls of each function\n");
        return 2;
    }
    for (each = 0; each < sizeof kCalls / sizeof kCalls[0]; ++each)
    {
        double began;
        long i;
        if (kCalls[each].call() != 0)
        {
            fprintf(stderr, "%s failed; expected a simulated gateway in the runtime directory\n", kCalls[each].name);
            return 1;
        }
        began = now();
        for (i = 0; i < count; ++i)
            kCalls[each].call();
        printf("%s %.0f\n", kCalls[each].name, (now() - began) / (double)count);
    }
    return 0;
}
