#include <stdio.h>

#include <tarn_frame.h>

int main(void)
{
    static TarnRateTable table; /* empty: cleared to zero */
    char rate[TARN_RATE_TEXT_SIZE] = "5.5";

    if (tarnAddRateEntries(&table, rate) != TARN_RATE_ADDED)
        return 1;
    printf("%u rates, the first is %s\n", (unsigned)table.count, table.rates[0]);
    return tarnDelRatesEntries(&table, "5.50") != TARN_RATE_DELETED;
}
