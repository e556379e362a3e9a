/* A component that reads records by their fields, and the mock: see mock/CMakeLists.txt. */
#include <stdio.h>
#include <string.h>

#include <kor_iil_mock.h>
#include <tarn_gateway_records.h>

#include "radio_keeper.h"

int main(void)
{
    TarnAccessPointAssociatedData data;
    RadioKeeperStation station;
    KorIilMockCall* call = KorIilMockExpect("TARN", 66, 140);
    KorIilMockReplyWord(call, 20, 1);
    memset(&data, 0, sizeof data);
    tarn_access_point_associated_data_set_rssi(&data, -61);
    call = KorIilMockExpect("TARN", 67, 140);
    KorIilMockReply(call, 24, &data, sizeof data);
    if (radioKeeperStations(&station, 1) != 1)
        return 1;
    printf("one station at %d dBm\n", (int)station.rssi);
    return KorIilMockVerify(stderr) == 0 ? 0 : 1;
}
