#include <stdio.h>

#include <tarn_frame.h>

int main(void)
{
    printf("%s\n", tarnValidatePinCode(12345670) == 1 ? "valid" : "wrong check digit");
    return 0;
}
