/* A component as it might run on a gateway: it looks after one radio and one of its access points.
 *
 * It reads and writes what is inside records by the functions of tarn_gateway_records.h, and so is right for gateways of that
 * make: `tarnctl layout header` writes the header for another one. radio_keeper_test.cpp tests it on the mock, and the test in
 * ../../simulator/example against the simulated gateway. */
#ifndef RADIO_KEEPER_H
#define RADIO_KEEPER_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct RadioKeeperStation
{
    uint8_t address[6];
    int32_t rssi; /* dBm */
    uint32_t secondsAssociated;
} RadioKeeperStation;

/* Subscribes to what happens to the radio's channel and to the access point's stations. Returns 0, or -1 if that failed; then
 * nothing has to be stopped. One radio at a time in a process. */
int radioKeeperStart(uint32_t radioId, uint32_t apId);

/* Cancels the subscriptions. Returns 0, or -1 if one of them was gone. */
int radioKeeperStop(void);

/* What the events have said since the start: the channel, 0 before its first change, and how many stations have come and gone.
 * From any thread. */
uint32_t radioKeeperChannel(void);
uint32_t radioKeeperArrivals(void);
uint32_t radioKeeperDepartures(void);

/* Lists the access point's stations, as many as there is room for. Returns how many there are, or -1. */
int radioKeeperStations(RadioKeeperStation* stations, size_t room);

/* Starts a scan, which ends some seconds later. Returns 0, or -1. */
int radioKeeperScan(void);

/* Moves the radio if its channel is busy for more than `mostLoad` percent of the time: to the one of its possible channels in
 * whose block, as wide as the radio's bandwidth, the last scan found the fewest networks. Returns the new channel, 0 if it
 * stays, or -1. */
int radioKeeperRelieve(uint32_t mostLoad);

/* Sends every station away that is heard more weakly than `weakest`, in dBm. Returns how many, or -1. */
int radioKeeperSendWeakAway(int32_t weakest);

/* Band steering: sends every station away from the access point of another radio that is heard there with `strong` dBm or more,
 * so that it comes to this one. A station that comes back there cannot do so, and is left where it is until it has been on this
 * one. Nobody is sent while this radio is not ready, as during a radar check. Returns how many were sent, or -1. From one
 * thread. */
int radioKeeperSteer(uint32_t fromRadio, uint32_t fromAp, int32_t strong);

#ifdef __cplusplus
}
#endif

#endif
