#include <stdio.h>

#include <tarn_frame.h>

int main(void)
{
    printf("%s\n", tarnIpcStatusName(7)); /* TIMEOUT */
    return 0;
}
