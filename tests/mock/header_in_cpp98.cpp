/* Compiles the C header in C++98; nothing is run. */
#include "kor_iil_mock.h"

unsigned mockHeaderInCpp98()
{
    return KorIilMockTraceCount();
}
