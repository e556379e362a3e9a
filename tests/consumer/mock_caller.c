/* A unit test of somebody else's in plain C, against the installed mock. */
#include <stdio.h>

#include <kor_iil_mock.h>
#include <tarn_api.h>

int main(void)
{
    uint32_t level = 0;

    KorIilMockReset();
    KorIilMockOutputNumber(KorIilMockExpectFunction("TarnGetLogLevel"), "level", 5);
    if (TarnGetLogLevel("consumer", &level) != TARN_OK || KorIilMockVerify(stderr) != 0)
        return 1;
    printf("log level %u, as scripted\n", (unsigned)level);
    return 0;
}
