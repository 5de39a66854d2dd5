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
    uint32_t secondsSinceReset;        /*  0  seconds since the counters were set to zero */
    uint32_t txFrames;                 /*  4  frames sent */
    uint32_t rxFrames;                 /*  8  frames received */
    uint32_t txWords;                  /* 12  words of 4 bytes sent */
    uint32_t rxWords;                  /* 16  words of 4 bytes received */
    uint32_t lipCount;                 /* 20  loop initialisations */
    uint32_t linkFailures;             /* 24  times the link failed (FC-FS) */
    uint32_t lossesOfSync;             /* 28  times the receiver lost the word boundaries */
    uint32_t lossesOfSignal;           /* 32  times the signal broke off */
    uint32_t primitiveSequenceErrors;  /* 36  primitive sequences that the state of the link does
                                              not allow */
    uint32_t invalidTransmissionWords; /* 40  words that the line code does not have */
    uint32_t invalidCrcs;              /* 44  frames received with a wrong CRC */
    uint32_t reserved[16];             /* 48  as the driver gives it; has no meaning */
} HX_STATISTICS;

/* What a port answers to RNID for general topology discovery (FC-LS), 52 bytes. The numbers are
   big-endian byte fields, as they travel. */
typedef struct HX_MGMT_ADDRESS {
    uint8_t portName[8];               /*  0  world wide name of the port */
    uint8_t reserved8[8];              /*  8  as the driver gives it */
    uint8_t unitType[4];               /* 16  what the node is: 10 = host (FC-LS, RNID) */
    uint8_t portId[4];                 /* 20  which of the adapter's ports it is: the physical
                                              port number, no identifier */
    uint8_t attachedNodes[4];          /* 24  nodes attached at the port */
    uint8_t ipVersion[2];              /* 28  1 = IPv4, 2 = IPv6 */
    uint8_t udpPort[2];                /* 30  at which its management is reached */
    uint8_t ipAddress[16];             /* 32  in network order; an IPv4 address stands in the
                                              last four bytes */
    uint8_t reserved48[2];             /* 48  as the driver gives it */
    uint8_t topologyDiscoveryFlags[2]; /* 50  bits of FC-LS (RNID), as the driver gives them */
} HX_MGMT_ADDRESS;

/* The part of it that can be set, 20 bytes. */
typedef struct HX_MGMT_ADDRESS_SETTING {
    uint8_t ipVersion[2];  /* 0  big-endian: 1 = IPv4, 2 = IPv6 */
    uint8_t udpPort[2];    /* 2  big-endian */
    uint8_t ipAddress[16]; /* 4  as in HX_MGMT_ADDRESS */
} HX_MGMT_ADDRESS_SETTING;

/* Counters of a port, its own or a remote one's, since its last reset, 136 bytes. The first 17 are
   those of the HBA API's port statistics (SNIA), FEC as in FC-LS (RDP). */
typedef struct HX_PORT_STATISTICS {
    uint64_t secondsSinceReset;        /*   0  seconds since the counters were set to zero */
    uint64_t txFrames;                 /*   8  frames sent */
    uint64_t txWords;                  /*  16  words of 4 bytes sent */
    uint64_t rxFrames;                 /*  24  frames received */
    uint64_t rxWords;                  /*  32  words of 4 bytes received */
    uint64_t lipCount;                 /*  40  loop initialisations */
    uint64_t nosCount;                 /*  48  NOS primitives */
    uint64_t errorFrames;              /*  56  frames received with an error */
    uint64_t dumpedFrames;             /*  64  lost because there was no buffer for them */
    uint64_t linkFailures;             /*  72  times the link failed (FC-FS) */
    uint64_t lossesOfSync;             /*  80  times the receiver lost the word boundaries */
    uint64_t lossesOfSignal;           /*  88  times the signal broke off */
    uint64_t primitiveSequenceErrors;  /*  96  primitive sequences that the state of the link
                                               does not allow */
    uint64_t invalidTransmissionWords; /* 104  words that the line code does not have */
    uint64_t invalidCrcs;              /* 112  frames received with a wrong CRC */
    uint64_t correctedFecBlocks;       /* 120  blocks that forward error correction mended */
    uint64_t uncorrectableFecBlocks;   /* 128  blocks that it could not mend */
} HX_PORT_STATISTICS;

/* Requests of one protocol, 40 bytes, counted as the HBA API counts those of a protocol. */
typedef struct HX_PROTOCOL_STATISTICS {
    uint64_t inputRequests;   /*  0  requests that read data */
    uint64_t outputRequests;  /*  8  requests that write data */
    uint64_t controlRequests; /* 16  requests without data */
    uint64_t inputBytes;      /* 24  bytes that came with reading requests */
    uint64_t outputBytes;     /* 32  bytes that went with writing requests */
} HX_PROTOCOL_STATISTICS;

/* The same counters with traffic by protocol, credits and exchanges, 496 bytes. Credits, link
   resets and busy replies as in FC-FS, link services as in FC-LS. */
typedef struct HX_PORT_STATISTICS_V2 {
    HX_PORT_STATISTICS port;     /*   0  as HXGetPortStatisticsFCV1 gives them */
    HX_PROTOCOL_STATISTICS fcp;  /* 136  requests of SCSI (FCP) */
    HX_PROTOCOL_STATISTICS nvme; /* 176  requests of NVMe (FC-NVMe) */
    uint64_t txCreditZero;       /* 216  times without transmit credit */
    uint64_t txCreditZeroTime;   /* 224  microseconds without it */
    uint64_t linkResetsSent;     /* 232  LR */
    uint64_t linkResetsReceived; /* 240  LR */
    uint64_t txCreditsRecovered; /* 248  transmit credits that were lost and given back */
    uint64_t rxCreditsRecovered; /* 256  receive credits that were lost and given back */
    uint64_t rxBufferFull;       /* 264  times that no receive buffer was free */
    uint64_t framesTimedOut;     /* 272  frames that ran out of time */
    uint64_t abtsSent;           /* 280  exchanges that this end aborted (ABTS) */
    uint64_t abtsReceived;       /* 288  exchanges that the other end aborted (ABTS) */
    uint64_t exchangesTimedOut;  /* 296  exchanges that did not end in time */
    uint64_t exchangesRetried;   /* 304  exchanges that were begun again */
    uint64_t taskSetFull;        /* 312  SCSI status TASK SET FULL */
    uint64_t logoutsReceived;    /* 320  LOGO, PRLO */
    uint64_t lsRejects;          /* 328  LS_RJT */
    uint64_t busyReplies;        /* 336  F_BSY, P_BSY */
    uint64_t rscnsReceived;      /* 344  RSCN: state changes of the fabric */
    uint64_t fpinsReceived;      /* 352  FPIN, of all kinds */
    uint64_t flogis;             /* 360  FLOGI: logins with the fabric */
    uint64_t plogis;             /* 368  PLOGI: logins with ports */
    uint8_t reserved376[120];    /* 376  has no meaning */
} HX_PORT_STATISTICS_V2;

/* Descriptors of FPINs (fabric performance impact notifications) by event type, as FC-LS names
   them, 120 bytes. */
typedef struct HX_FPIN_COUNTERS {
    uint64_t linkFailure;             /*   0  link integrity: the link failed */
    uint64_t lossOfSync;              /*   8  link integrity: synchronisation was lost */
    uint64_t lossOfSignal;            /*  16  link integrity: no signal */
    uint64_t primitiveSequenceError;  /*  24  link integrity: primitive sequences against the
                                              protocol */
    uint64_t invalidTransmissionWord; /*  32  link integrity: words that the line code does not
                                              have */
    uint64_t invalidCrc;              /*  40  link integrity: frames with a wrong CRC */
    uint64_t linkOther;               /*  48  link integrity: any other event */
    uint64_t deliveryTimeout;         /*  56  delivery: frames that ran out of time */
    uint64_t deliveryUnableToRoute;   /*  64  delivery: frames without a way to their destination */
    uint64_t deliveryOther;           /*  72  delivery: any other reason */
    uint64_t congestionCleared;       /*  80  congestion: it has ended */
    uint64_t lostCredit;              /*  88  congestion: credits got lost */
    uint64_t creditStall;             /*  96  congestion: credits come back too slowly */
    uint64_t oversubscription;        /* 104  congestion: more is asked for than the link carries */
    uint64_t congestionOther;         /* 112  congestion: any other event */
} HX_FPIN_COUNTERS;

/* Bits of the SCM (SAN congestion management) state. */
enum HX_SCM_STATE {
    HX_SCM_FPINS_REGISTERED = 1, /* the fabric accepted the registration (RDF, FC-LS) */
    HX_SCM_SIGNALS_AGREED = 2,   /* congestion signals agreed with the attached port (EDC, FC-LS) */
    HX_SCM_THROTTLING = 4,       /* requests are held back now */
    HX_SCM_ENABLED = 8           /* the setting is on */
};

/* How bad congestion is now, as the driver takes it from signals and FPINs. */
enum HX_SCM_SEVERITY {
    HX_SCM_SEVERITY_NONE = 0,    /* no congestion, or it has ended */
    HX_SCM_SEVERITY_WARNING = 1, /* the lesser step */
    HX_SCM_SEVERITY_ALARM = 2    /* the greater step */
};

#define HX_SCM_MARK 0x314D4353u /* "SCM1" */

/* SCM counters that concern one remote port, 136 bytes. */
typedef struct HX_PORT_SCM_STATISTICS {
    uint32_t mark;          /*   0  HX_SCM_MARK */
    uint32_t state;         /*   4  HX_SCM_STATE bits */
    HX_FPIN_COUNTERS fpins; /*   8  about the port that was asked for */
    uint64_t lastEvent;     /* 128  seconds from the reset; HX_NOT_COUNTED: there was none */
} HX_PORT_SCM_STATISTICS;

/* The six link error counters of a link error status block (FC-LS RLS), 24 bytes. */
typedef struct HX_LINK_ERRORS {
    uint32_t linkFailures;             /*  0  times the link failed (FC-FS) */
    uint32_t lossesOfSync;             /*  4  times the receiver lost the word boundaries */
    uint32_t lossesOfSignal;           /*  8  times the signal broke off */
    uint32_t primitiveSequenceErrors;  /* 12  primitive sequences that the state of the link does
                                              not allow */
    uint32_t invalidTransmissionWords; /* 16  words that the line code does not have */
    uint32_t invalidCrcs;              /* 20  frames received with a wrong CRC */
} HX_LINK_ERRORS;

/* SCM state and counters of a port, 512 bytes. */
typedef struct HX_SCM_STATISTICS {
    uint32_t version;           /*   0  1 */
    uint32_t state;             /*   4  HX_SCM_STATE bits */
    uint64_t secondsSinceReset; /*   8  seconds since the counters were set to zero */
    HX_FPIN_COUNTERS fpins;     /*  16  about this port */
    HX_FPIN_COUNTERS peerFpins; /* 136  about its peers */
    uint64_t warningSignals;    /* 256  congestion signals of warning received (FC-FS) */
    uint64_t alarmSignals;      /* 264  congestion signals of alarm received */
    uint64_t throttledSeconds;  /* 272  seconds with less bandwidth (HX_SCM_THROTTLING) */
    uint64_t throttledRequests; /* 280  requests that were held back */
    uint32_t warningInterval;   /* 288  milliseconds between two of warning, as agreed (EDC); 0 =
                                        none */
    uint32_t alarmInterval;     /* 292  milliseconds between two of alarm, as agreed (EDC); 0 =
                                        none */
    uint16_t severity;          /* 296  HX_SCM_SEVERITY_... */
    uint16_t allowedPercent;    /* 298  bandwidth allowed now */
    uint32_t fpinsReceived;     /* 300  of all kinds */
    uint64_t lastEvent;         /* 304  seconds from the reset; HX_NOT_COUNTED: there was none */
    HX_LINK_ERRORS linkErrors;  /* 312  of the port, as HXGetStatistics has them */
    uint8_t reserved336[176];   /* 336  has no meaning */
} HX_SCM_STATISTICS;

#define HX_PRIVATE_RESTART 1u /* option: start again from zero behind this reading */

/* What the driver counted by itself, 512 bytes. */
typedef struct HX_PRIVATE_STATISTICS {
    uint32_t options;                 /*   0  in: 0 or HX_PRIVATE_RESTART; back: 0 */
    uint32_t counters;                /*   4  number of valid counters, from commandsStarted on */
    uint64_t secondsSinceReset;       /*   8  seconds since these counters began */
    uint64_t commandsStarted;         /*  16  commands begun */
    uint64_t commandsCompleted;       /*  24  commands that came to an end */
    uint64_t commandsFailed;          /*  32  commands that ended with an error */
    uint64_t commandsAborted;         /*  40  commands taken back before their end */
    uint64_t commandsTimedOut;        /*  48  commands that did not end in time */
    uint64_t commandsOutstanding;     /*  56  commands begun and not ended, now */
    uint64_t commandsOutstandingMost; /*  64  most of them at any time */
    uint64_t queueFull;               /*  72  times that a queue was full */
    uint64_t busyRetries;             /*  80  tries that were repeated because of a busy answer */
    uint64_t underruns;               /*  88  commands with less data than asked for */
    uint64_t overruns;                /*  96  commands with more data than asked for */
    uint64_t lunResets;               /* 104  resets of a logical unit */
    uint64_t targetResets;            /* 112  resets of a whole target */
    uint64_t loginRetries;            /* 120  logins that were tried again */
    uint64_t interrupts;              /* 128  interrupts that the driver served */
    uint64_t mailboxCommands;         /* 136  mailbox commands to the firmware */
    uint64_t mailboxFailures;         /* 144  mailbox commands that the firmware failed */
    uint64_t firmwareResets;          /* 152  times the firmware was started anew */
    uint64_t linkDowns;               /* 160  times the link went down */
    uint8_t reserved168[344];         /* 168  has no meaning */
} HX_PRIVATE_STATISTICS;

#define HX_LATENCY_BUCKETS 24 /* of HX_PRIVATE_STATISTICS_EX */

/* How long commands took, 512 bytes. Bucket b counts commands of 2^b up to 2^(b+1) microseconds;
   bucket 0 also shorter ones, the last one also longer ones. */
typedef struct HX_PRIVATE_STATISTICS_EX {
    uint32_t options;                    /*   0  as in HX_PRIVATE_STATISTICS */
    uint32_t buckets;                    /*   4  number of valid buckets, at most 24 */
    uint64_t secondsSinceReset;          /*   8  seconds since these counters began */
    uint64_t reads[HX_LATENCY_BUCKETS];  /*  16  reading commands, by the time they took */
    uint64_t writes[HX_LATENCY_BUCKETS]; /* 208  writing commands, by the time they took */
    uint64_t readTime;                   /* 400  microseconds of all reads together */
    uint64_t writeTime;                  /* 408  microseconds of all writes together */
    uint64_t longestRead;                /* 416  microseconds */
    uint64_t longestWrite;               /* 424  microseconds */
    uint8_t reserved432[80];             /* 432  has no meaning */
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
