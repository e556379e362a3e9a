/* Compiles, and that is all there is to it: the C header in C++98. */
#include "kor_iil_mock.h"

unsigned mockHeaderInCpp98()
{
    return KorIilMockTraceCount();
}
