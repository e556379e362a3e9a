/* A component that reads records by their fields, and the mock: see mock/CMakeLists.txt. */
#include <stdio.h>

#include <kor_iil_mock.h>

#include "radio_keeper.h"

int main(void)
{
    RadioKeeperStation station;
    KorIilMockOutputNumber(KorIilMockExpectFunction("TarnGetAccessPointAssociatedNum"), "number", 1);
    KorIilMockOutputNumber(KorIilMockExpectFunction("TarnGetAccessPointAssociatedAt"), "associated.rssi", -61);
    if (radioKeeperStations(&station, 1) != 1)
        return 1;
    printf("one station at %d dBm\n", (int)station.rssi);
    return KorIilMockVerify(stderr) == 0 ? 0 : 1;
}
