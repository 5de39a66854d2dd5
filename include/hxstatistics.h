/*
 * hxstatistics.h - counters: of a port's link, of its traffic, of what a fabric notifies, of the
 * driver; and the management address of a port.
 * Part of the management API: include hxmgtapi.h, which states the rules of the whole interface.
 *
 * Copyright (c) 2026 The VXMGMT developers. MIT licence, see LICENSE.
 */
#ifndef HXSTATISTICS_H
#define HXSTATISTICS_H

#include <stdint.h>

#include "hxpersist.h"
#include "hxtypes.h"

#ifdef __cplusplus
extern "C" {
#endif

#define HX_NOT_COUNTED 0xFFFFFFFFFFFFFFFFull /* a counter of 64 bits that is not available */

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

/* Counters of a port, its own or a remote one's, since its last reset, 136 bytes. The first 17 are
   those of the HBA API's port statistics (SNIA), FEC as in FC-LS (RDP). */
typedef struct HX_PORT_STATISTICS {
    uint64_t secondsSinceReset;        /*   0 */
    uint64_t txFrames;                 /*   8 */
    uint64_t txWords;                  /*  16  of 4 bytes */
    uint64_t rxFrames;                 /*  24 */
    uint64_t rxWords;                  /*  32  of 4 bytes */
    uint64_t lipCount;                 /*  40  loop initialisations */
    uint64_t nosCount;                 /*  48  NOS primitives */
    uint64_t errorFrames;              /*  56 */
    uint64_t dumpedFrames;             /*  64  lost because there was no buffer for them */
    uint64_t linkFailures;             /*  72 */
    uint64_t lossesOfSync;             /*  80 */
    uint64_t lossesOfSignal;           /*  88 */
    uint64_t primitiveSequenceErrors;  /*  96 */
    uint64_t invalidTransmissionWords; /* 104 */
    uint64_t invalidCrcs;              /* 112 */
    uint64_t correctedFecBlocks;       /* 120 */
    uint64_t uncorrectableFecBlocks;   /* 128 */
} HX_PORT_STATISTICS;

/* Requests of one protocol, 40 bytes, counted as the HBA API counts those of a protocol. */
typedef struct HX_PROTOCOL_STATISTICS {
    uint64_t inputRequests;   /*  0 */
    uint64_t outputRequests;  /*  8 */
    uint64_t controlRequests; /* 16  without data */
    uint64_t inputBytes;      /* 24 */
    uint64_t outputBytes;     /* 32 */
} HX_PROTOCOL_STATISTICS;

/* The same counters with traffic by protocol, credits and exchanges, 496 bytes. Credits, link
   resets and busy replies as in FC-FS, link services as in FC-LS. */
typedef struct HX_PORT_STATISTICS_V2 {
    HX_PORT_STATISTICS port;     /*   0 */
    HX_PROTOCOL_STATISTICS fcp;  /* 136 */
    HX_PROTOCOL_STATISTICS nvme; /* 176 */
    uint64_t txCreditZero;       /* 216  times without transmit credit */
    uint64_t txCreditZeroTime;   /* 224  microseconds without it */
    uint64_t linkResetsSent;     /* 232  LR */
    uint64_t linkResetsReceived; /* 240 */
    uint64_t txCreditsRecovered; /* 248 */
    uint64_t rxCreditsRecovered; /* 256 */
    uint64_t rxBufferFull;       /* 264  times */
    uint64_t framesTimedOut;     /* 272 */
    uint64_t abtsSent;           /* 280 */
    uint64_t abtsReceived;       /* 288 */
    uint64_t exchangesTimedOut;  /* 296 */
    uint64_t exchangesRetried;   /* 304 */
    uint64_t taskSetFull;        /* 312  SCSI status TASK SET FULL */
    uint64_t logoutsReceived;    /* 320  LOGO, PRLO */
    uint64_t lsRejects;          /* 328  LS_RJT */
    uint64_t busyReplies;        /* 336  F_BSY, P_BSY */
    uint64_t rscnsReceived;      /* 344 */
    uint64_t fpinsReceived;      /* 352 */
    uint64_t flogis;             /* 360 */
    uint64_t plogis;             /* 368 */
    uint8_t reserved376[120];    /* 376 */
} HX_PORT_STATISTICS_V2;

/* Descriptors of FPINs (fabric performance impact notifications) by event type, as FC-LS names
   them, 120 bytes. */
typedef struct HX_FPIN_COUNTERS {
    uint64_t linkFailure;             /*   0  link integrity */
    uint64_t lossOfSync;              /*   8 */
    uint64_t lossOfSignal;            /*  16 */
    uint64_t primitiveSequenceError;  /*  24 */
    uint64_t invalidTransmissionWord; /*  32 */
    uint64_t invalidCrc;              /*  40 */
    uint64_t linkOther;               /*  48 */
    uint64_t deliveryTimeout;         /*  56  delivery */
    uint64_t deliveryUnableToRoute;   /*  64 */
    uint64_t deliveryOther;           /*  72 */
    uint64_t congestionCleared;       /*  80  congestion */
    uint64_t lostCredit;              /*  88 */
    uint64_t creditStall;             /*  96 */
    uint64_t oversubscription;        /* 104 */
    uint64_t congestionOther;         /* 112 */
} HX_FPIN_COUNTERS;

/* Bits of the SCM (SAN congestion management) state. */
enum HX_SCM_STATE {
    HX_SCM_FPINS_REGISTERED = 1, /* the fabric accepted the registration (RDF, FC-LS) */
    HX_SCM_SIGNALS_AGREED = 2,   /* congestion signals agreed with the attached port (EDC, FC-LS) */
    HX_SCM_THROTTLING = 4,       /* requests are held back now */
    HX_SCM_ENABLED = 8           /* the setting is on */
};

/* What congestion signals announce now. */
enum HX_SCM_SEVERITY {
    HX_SCM_SEVERITY_NONE = 0,
    HX_SCM_SEVERITY_WARNING = 1,
    HX_SCM_SEVERITY_ALARM = 2
};

#define HX_SCM_MARK 0x314D4353u /* "SCM1" */

/* SCM counters that concern one remote port, 136 bytes. */
typedef struct HX_PORT_SCM_STATISTICS {
    uint32_t mark;          /*   0  HX_SCM_MARK */
    uint32_t state;         /*   4  HX_SCM_STATE bits */
    HX_FPIN_COUNTERS fpins; /*   8 */
    uint64_t lastEvent;     /* 128  seconds from the reset; HX_NOT_COUNTED: there was none */
} HX_PORT_SCM_STATISTICS;

/* The six link error counters of a link error status block (FC-LS RLS), 24 bytes. */
typedef struct HX_LINK_ERRORS {
    uint32_t linkFailures;             /*  0 */
    uint32_t lossesOfSync;             /*  4 */
    uint32_t lossesOfSignal;           /*  8 */
    uint32_t primitiveSequenceErrors;  /* 12 */
    uint32_t invalidTransmissionWords; /* 16 */
    uint32_t invalidCrcs;              /* 20 */
} HX_LINK_ERRORS;

/* SCM state and counters of a port, 512 bytes. */
typedef struct HX_SCM_STATISTICS {
    uint32_t version;           /*   0  1 */
    uint32_t state;             /*   4  HX_SCM_STATE bits */
    uint64_t secondsSinceReset; /*   8 */
    HX_FPIN_COUNTERS fpins;     /*  16  about this port */
    HX_FPIN_COUNTERS peerFpins; /* 136  about its peers */
    uint64_t warningSignals;    /* 256  congestion signals received (FC-FS) */
    uint64_t alarmSignals;      /* 264 */
    uint64_t throttledSeconds;  /* 272 */
    uint64_t throttledRequests; /* 280 */
    uint32_t warningInterval;   /* 288  milliseconds agreed by EDC; 0 = none */
    uint32_t alarmInterval;     /* 292 */
    uint16_t severity;          /* 296  HX_SCM_SEVERITY_... */
    uint16_t allowedPercent;    /* 298  bandwidth allowed now */
    uint32_t fpinsReceived;     /* 300  of all kinds */
    uint64_t lastEvent;         /* 304  seconds from the reset; HX_NOT_COUNTED: there was none */
    HX_LINK_ERRORS linkErrors;  /* 312  of the port, as HXGetStatistics has them */
    uint8_t reserved336[176];   /* 336 */
} HX_SCM_STATISTICS;

#define HX_PRIVATE_RESTART 1u /* option: start again from zero behind this reading */

/* What the driver counted by itself, 512 bytes. */
typedef struct HX_PRIVATE_STATISTICS {
    uint32_t options;                 /*   0  in: 0 or HX_PRIVATE_RESTART; back: 0 */
    uint32_t counters;                /*   4  number of valid counters, from commandsStarted on */
    uint64_t secondsSinceReset;       /*   8 */
    uint64_t commandsStarted;         /*  16 */
    uint64_t commandsCompleted;       /*  24 */
    uint64_t commandsFailed;          /*  32 */
    uint64_t commandsAborted;         /*  40 */
    uint64_t commandsTimedOut;        /*  48 */
    uint64_t commandsOutstanding;     /*  56  now */
    uint64_t commandsOutstandingMost; /*  64  at any time */
    uint64_t queueFull;               /*  72 */
    uint64_t busyRetries;             /*  80 */
    uint64_t underruns;               /*  88 */
    uint64_t overruns;                /*  96 */
    uint64_t lunResets;               /* 104 */
    uint64_t targetResets;            /* 112 */
    uint64_t loginRetries;            /* 120 */
    uint64_t interrupts;              /* 128 */
    uint64_t mailboxCommands;         /* 136 */
    uint64_t mailboxFailures;         /* 144 */
    uint64_t firmwareResets;          /* 152 */
    uint64_t linkDowns;               /* 160 */
    uint8_t reserved168[344];         /* 168 */
} HX_PRIVATE_STATISTICS;

#define HX_LATENCY_BUCKETS 24 /* of HX_PRIVATE_STATISTICS_EX */

/* How long commands took, 512 bytes. Bucket b counts commands of 2^b up to 2^(b+1) microseconds;
   bucket 0 also shorter ones, the last one also longer ones. */
typedef struct HX_PRIVATE_STATISTICS_EX {
    uint32_t options;                    /*   0  as in HX_PRIVATE_STATISTICS */
    uint32_t buckets;                    /*   4  number of valid buckets, at most 24 */
    uint64_t secondsSinceReset;          /*   8 */
    uint64_t reads[HX_LATENCY_BUCKETS];  /*  16 */
    uint64_t writes[HX_LATENCY_BUCKETS]; /* 208 */
    uint64_t readTime;                   /* 400  microseconds of all reads together */
    uint64_t writeTime;                  /* 408 */
    uint64_t longestRead;                /* 416  microseconds */
    uint64_t longestWrite;               /* 424 */
    uint8_t reserved432[80];             /* 432 */
} HX_PRIVATE_STATISTICS_EX;

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

/* Sets the management address of the port to record. Driver 7.05.03. */
HX_STATUS HXSetMgmtAddress(uint32_t handle, const HX_MGMT_ADDRESS_SETTING* record);

/* ------------------------------------------------------------------------------------------------
 * Counters of 64 bits
 *
 * Driver 7.05.03, on any chip, unless said otherwise. A record is written whole, and only after
 * success; what the driver does not give is zero. HX_NOT_COUNTED stands where a counter is not
 * available. The functions may be called from any thread and take one request each, unless said
 * otherwise.
 *
 * Statuses of all of them, in the order of the checks: HXMGT_INVALID_HANDLE;
 * HXMGT_INVALID_PARAMETER the record is null; HXMGT_NOT_SUPPORTED a driver below 7.05.03;
 * HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER a driver below the version stated;
 * HXMGT_INVALID_PARAMETER the type of destination's address is none, or an option is unknown; then
 * what the driver says.
 *
 * destination names a remote port, by node or port name, identifier, or bus and target numbers; its
 * LUN does not matter. HXMGT_DEVICE_NOT_FOUND: the driver does not know it. Null: the port itself.
 * --------------------------------------------------------------------------------------------- */

/* Counters of a port. They wrap at 32 bits; a driver below 8.01.00 knows neither nosCount,
   errorFrames, dumpedFrames nor the FEC counters. */
HX_STATUS HXGetPortStatisticsFC(uint32_t handle, const DESTINATIONADDRESS* destination,
                                HX_PORT_STATISTICS* record);

/* The same. Driver 8.01.00; from 9.01.00 on the counters do not wrap. */
HX_STATUS HXGetPortStatisticsFCV1(uint32_t handle, const DESTINATIONADDRESS* destination,
                                  HX_PORT_STATISTICS* record);

/* The same with traffic by protocol, credits and exchanges; nothing wraps. Driver 9.01.00. */
HX_STATUS HXGetPortStatisticsFCV2(uint32_t handle, const DESTINATIONADDRESS* destination,
                                  HX_PORT_STATISTICS_V2* record);

/* SCM counters that concern a port. Driver 8.01.00; HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER also when
   the driver answers without them. */
HX_STATUS HXGetPortSCMStatsFC(uint32_t handle, const DESTINATIONADDRESS* destination,
                              HX_PORT_SCM_STATISTICS* record);

/* SCM state and counters of the handle's port. Two requests: the link errors are read second. */
HX_STATUS HXGetSCMStatistics(uint32_t handle, HX_SCM_STATISTICS* record);

/*
 * What the driver counted of all that passed through it, and how long commands took. options goes
 * in and must be 0 or HX_PRIVATE_RESTART (else HXMGT_INVALID_PARAMETER); nothing else of the record
 * is read. HXResetStatistics does not touch these counters.
 */
HX_STATUS HXGetPrivStats(uint32_t handle, HX_PRIVATE_STATISTICS* record);
HX_STATUS HXGetPrivStatsEx(uint32_t handle, HX_PRIVATE_STATISTICS_EX* record);

#ifdef __cplusplus
}
#endif

#endif /* HXSTATISTICS_H */
