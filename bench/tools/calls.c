/* The time of a call in C: `tarn_bench_calls COUNT CALLERS` prints for each of a few functions the nanoseconds that one call
   takes a caller, when so many of them, each a thread with a connection of its own, make COUNT calls each at the same time. */
#define _POSIX_C_SOURCE 200112L /* barriers, clock_gettime */

#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#include <tarn_api.h>
#include <tarn_qtn_monitor_api.h>

struct outputs
{
    uint32_t number;
    TarnRadioData radio;
    char text[9376];
};

static int32_t logLevel(struct outputs* out)
{
    return (int32_t)TarnGetLogLevel("bench", &out->number);
}

static int32_t channel(struct outputs* out)
{
    return tarn_qcsapi_wifi_get_channel("bench", "wifi0", &out->number);
}

static int32_t radioData(struct outputs* out)
{
    return (int32_t)TarnGetRadio("bench", 1, &out->radio);
}

static int32_t firmwareVersion(struct outputs* out)
{
    return tarn_qcsapi_firmware_get_version("bench", out->text, sizeof out->text);
}

static const struct
{
    const char* name;
    int32_t (*call)(struct outputs*);
} kCalls[] = {
    {"TarnGetLogLevel", logLevel},
    {"tarn_qcsapi_wifi_get_channel", channel},
    {"TarnGetRadio", radioData},
    {"tarn_qcsapi_firmware_get_version", firmwareVersion},
};
enum
{
    kFunctions = sizeof kCalls / sizeof kCalls[0],
    kMostCallers = 64
};

static long count;
static pthread_barrier_t together; /* the callers and the one that takes the time */

static void* callAll(void* unused)
{
    struct outputs out;
    size_t each;

    (void)unused;
    for (each = 0; each < kFunctions; ++each)
    {
        long i;
        if (kCalls[each].call(&out) != 0)
        {
            fprintf(stderr, "%s failed; expected a simulated gateway in the runtime directory\n", kCalls[each].name);
            exit(1);
        }
        pthread_barrier_wait(&together);
        for (i = 0; i < count; ++i)
            kCalls[each].call(&out);
        pthread_barrier_wait(&together);
    }
    return NULL;
}

static double now(void)
{
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec * 1e9 + (double)time.tv_nsec;
}

int main(int argc, char** argv)
{
    pthread_t threads[kMostCallers];
    long callers, i;
    size_t each;

    count = argc == 3 ? strtol(argv[1], NULL, 10) : 0;
    callers = argc == 3 ? strtol(argv[2], NULL, 10) : 0;
    if (count <= 0 || callers <= 0 || callers > kMostCallers)
    {
        fprintf(stderr, "usage: tarn_bench_calls COUNT CALLERS, the calls of each function and caller; up to %d callers\n",
                kMostCallers);
        return 2;
    }
    pthread_barrier_init(&together, NULL, (unsigned)callers + 1);
    for (i = 0; i < callers; ++i)
        if (pthread_create(&threads[i], NULL, callAll, NULL) != 0)
        {
            fprintf(stderr, "a thread could not be started\n");
            return 1;
        }
    for (each = 0; each < kFunctions; ++each)
    {
        double began;
        pthread_barrier_wait(&together);
        began = now();
        pthread_barrier_wait(&together);
        printf("%s %.0f\n", kCalls[each].name, (now() - began) / (double)count);
    }
    for (i = 0; i < callers; ++i)
        pthread_join(threads[i], NULL);
    return 0;
}
