/*
 * hxstatistics.h - counters of a port's link, and the management address of a port.
 * Part of the management API: include hxmgtapi.h, which states the rules of the whole interface.
 *
 * Copyright (c) 2026 The VXMGMT developers. MIT licence, see LICENSE.
 */
#ifndef HXSTATISTICS_H
#define HXSTATISTICS_H

#include <stdint.h>

#include "hxtypes.h"

#ifdef __cplusplus
extern "C" {
#endif

#pragma pack(push, 1)

/* Counters since the last reset, 112 bytes; each wraps at 32 bits. */
typedef struct HX_STATISTICS {
    uint32_t secondsSinceReset;        /*  0 */
    uint32_t txFrames;                 /*  4 */
    uint32_t rxFrames;                 /*  8 */
    uint32_t txWords;                  /* 12 */
    uint32_t rxWords;                  /* 16 */
    uint32_t lipCount;                 /* 20  loop initialisations */
    uint32_t linkFailures;             /* 24 */
    uint32_t lossesOfSync;             /* 28 */
    uint32_t lossesOfSignal;           /* 32 */
    uint32_t primitiveSequenceErrors;  /* 36 */
    uint32_t invalidTransmissionWords; /* 40 */
    uint32_t invalidCrcs;              /* 44 */
    uint32_t reserved[16];             /* 48 */
} HX_STATISTICS;

/* What a port answers to RNID for general topology discovery (FC-LS), 52 bytes. The numbers are
   big-endian byte fields, as they travel. */
typedef struct HX_MGMT_ADDRESS {
    uint8_t portName[8];               /*  0 */
    uint8_t reserved8[8];              /*  8 */
    uint8_t unitType[4];               /* 16 */
    uint8_t portId[4];                 /* 20 */
    uint8_t attachedNodes[4];          /* 24 */
    uint8_t ipVersion[2];              /* 28  1 = IPv4, 2 = IPv6 */
    uint8_t udpPort[2];                /* 30 */
    uint8_t ipAddress[16];             /* 32 */
    uint8_t reserved48[2];             /* 48 */
    uint8_t topologyDiscoveryFlags[2]; /* 50 */
} HX_MGMT_ADDRESS;

/* The part of it that can be set, 20 bytes. */
typedef struct HX_MGMT_ADDRESS_SETTING {
    uint8_t ipVersion[2];  /* 0  big-endian */
    uint8_t udpPort[2];    /* 2  big-endian */
    uint8_t ipAddress[16]; /* 4 */
} HX_MGMT_ADDRESS_SETTING;

#pragma pack(pop)

/* Counters of the handle's port. A handle has one port; port is not used. After a failure record is
   as it was. */
HX_STATUS HXGetStatistics(uint32_t handle, uint32_t port, HX_STATISTICS* record);

/* Sets the counters to zero. */
HX_STATUS HXResetStatistics(uint32_t handle);

/*
 * The management address of the port: an HX_MGMT_ADDRESS and whatever more the driver gives. record
 * has room for size bytes; bytes that the driver does not give stay as they were. Driver 7.05.03.
 */
HX_STATUS HXGetMgmtAddress(uint32_t handle, void* record, uint32_t size);

/* Sets the management address of the port. Driver 7.05.03. */
HX_STATUS HXSetMgmtAddress(uint32_t handle, const HX_MGMT_ADDRESS_SETTING* record);

#ifdef __cplusplus
}
#endif

#endif /* HXSTATISTICS_H */
