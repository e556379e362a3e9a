/* The header that tarnctl writes, alone, in the oldest language that it promises to work in. */
#include "tarn_gateway_records.h"

int recordsHeaderInCpp98;
