/*
 * hxfabric.h - what a port knows of its fabric: remote and secured ports, the loop, link speeds,
 * priorities, virtual ports, and NVMe over Fibre Channel.
 * Part of the management API: include hxmgtapi.h, which states the rules of the whole interface.
 *
 * All functions may be called from any thread. They need driver 7.05.03, on any chip, unless said
 * otherwise.
 *
 * Statuses of all of them, in the order of the checks: HXMGT_INVALID_HANDLE;
 * HXMGT_INVALID_PARAMETER a pointer is null; HXMGT_NOT_SUPPORTED a driver below 7.05.03;
 * HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER a driver below the version stated; where chips are stated
 * the status of HXGetHbaDeviceChipProperty, and HXMGT_NOT_SUPPORTED another chip;
 * HXMGT_INVALID_PARAMETER the type of target's address is none, or a value is out of its range;
 * then what the driver says.
 *
 * target names a remote port, by node or port name, identifier, or bus and target numbers; its LUN
 * matters only where a function says so. HXMGT_DEVICE_NOT_FOUND: the driver does not know it.
 *
 * A single record is written whole, and only after success; what the driver does not give is zero.
 *
 * Lists: *count is the room in records on entry and the true number on return;
 * HXMGT_BUFFER_TOO_SMALL when not all of them fitted (the first ones are written). With a room of 0
 * the list may be null, and one request tells the number (of secured ports, a request for every
 * 84). Long lists are asked for page by page. HXMGT_DATA_UNDERRUN: the driver names more records
 * than it gives, or more than there can be (65,536; namespaces 16,128). After any status but 0 and
 * HXMGT_BUFFER_TOO_SMALL *count is as it was, and the list may hold the records that came.
 *
 * Names are world wide names, portId a port identifier: domain, area, port (FC-FS). The two names
 * stand in the order of each record.
 *
 * Copyright (c) 2026 The VXMGMT developers. MIT licence, see LICENSE.
 */
#ifndef HXFABRIC_H
#define HXFABRIC_H

#include <stdint.h>

#include "hxpersist.h"
#include "hxstatistics.h"
#include "hxtypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* What is known of a remote port. */
enum HX_REMOTE_PORT_STATE {
    HX_REMOTE_PORT_ONLINE = 1,       /* it is there and logged in */
    HX_REMOTE_PORT_LOST = 2,         /* it has gone */
    HX_REMOTE_PORT_NOT_LOGGED_IN = 3 /* it is there, without a login */
};

/* What a remote port is for: bits. */
enum HX_REMOTE_PORT_ROLE {
    HX_ROLE_FCP_TARGET = 1,     /* SCSI target */
    HX_ROLE_FCP_INITIATOR = 2,  /* SCSI initiator */
    HX_ROLE_NVME_SUBSYSTEM = 4, /* it has NVMe controllers for I/O */
    HX_ROLE_NVME_HOST = 8,      /* it uses controllers of others */
    HX_ROLE_NVME_DISCOVERY = 16 /* it has a discovery controller */
};

/* What is known of a remote port: bits. */
enum HX_REMOTE_PORT_FLAG {
    HX_REMOTE_PORT_DIAGNOSED = 1, /* it answered RDP: bytes 40..83 hold */
    HX_REMOTE_PORT_SECURED = 2    /* HXGetSecurePortInfo tells of it */
};

/* Where a remote port stands between plain and secured traffic. */
enum HX_SECURE_STATE {
    HX_SECURE_PLAIN = 0,          /* neither authenticated nor encrypted */
    HX_SECURE_AUTHENTICATING = 1, /* it is being authenticated */
    HX_SECURE_SECURED = 2,        /* it is authenticated */
    HX_SECURE_FAILED = 3          /* authentication failed */
};

/* How a remote port proved who it is (FC-SP-2). */
enum HX_SECURE_AUTHENTICATION {
    HX_AUTHENTICATION_NONE = 0,    /* not at all */
    HX_AUTHENTICATION_DH_CHAP = 1, /* by a shared secret (DH-CHAP) */
    HX_AUTHENTICATION_FCAP = 2,    /* by certificates (FCAP) */
    HX_AUTHENTICATION_FCPAP = 3,   /* by a password (FCPAP) */
    HX_AUTHENTICATION_IKEV2 = 4    /* by IKEv2 */
};

/* How its traffic is encrypted (FC-SP-2). */
enum HX_SECURE_ENCRYPTION {
    HX_ENCRYPTION_NONE = 0,        /* not at all */
    HX_ENCRYPTION_AES_GCM_128 = 1, /* AES in Galois counter mode, keys of 128 bits */
    HX_ENCRYPTION_AES_GCM_256 = 2  /* the same, keys of 256 bits */
};

/* Which way traffic is encrypted: bits. */
enum HX_SECURE_DIRECTION {
    HX_SECURE_TX = 1, /* what is sent */
    HX_SECURE_RX = 2  /* what is received */
};

#define HX_LINK_SPEED_SET 1u /* flag: the speed was set by management */

/* Frame priority (FC-FS CS_CTL). */
enum HX_QOS_LEVEL {
    HX_QOS_NONE = 0,   /* no priority */
    HX_QOS_LOW = 1,    /* lowest of the three */
    HX_QOS_MEDIUM = 2, /* between them */
    HX_QOS_HIGH = 3    /* highest of the three */
};

/* Who supports virtual ports: bits. */
enum HX_NPIV_FLAG {
    HX_NPIV_FIRMWARE = 1, /* the firmware supports it */
    HX_NPIV_FABRIC = 2,   /* the fabric supports it */
    HX_NPIV_ENABLED = 4   /* it is switched on */
};

/* State of a virtual port. */
enum HX_VIRTUAL_PORT_STATE {
    HX_VIRTUAL_PORT_ONLINE = 1,   /* logged in with the fabric */
    HX_VIRTUAL_PORT_OFFLINE = 2,  /* not logged in */
    HX_VIRTUAL_PORT_REJECTED = 3, /* FDISC was rejected */
    HX_VIRTUAL_PORT_LINK_DOWN = 4 /* the port itself has no link */
};

/* What a remote port that speaks NVMe is for: bits. */
enum HX_NVME_ROLE {
    HX_NVME_SUBSYSTEM = 1, /* it has controllers for I/O */
    HX_NVME_DISCOVERY = 2, /* it has a discovery controller */
    HX_NVME_HOST = 4       /* it uses controllers of others */
};

/* State of a remote port that speaks NVMe. */
enum HX_NVME_PORT_STATE {
    HX_NVME_PORT_ONLINE = 1, /* it is there */
    HX_NVME_PORT_LOST = 2    /* it has gone */
};

/* Kind of an NVMe controller. */
enum HX_NVME_KIND {
    HX_NVME_KIND_DISCOVERY = 1, /* tells where subsystems are */
    HX_NVME_KIND_NVM = 2        /* has namespaces */
};

/* State of the connection to an NVMe controller. */
enum HX_NVME_STATE {
    HX_NVME_NOT_CONNECTED = 0, /* none */
    HX_NVME_CONNECTING = 1,    /* being made */
    HX_NVME_LIVE = 2,          /* works */
    HX_NVME_RECONNECTING = 3   /* lost, and being made anew */
};

#define HX_NVME_FLAG_ANA 1u /* flag of a controller: it reports asymmetric access */

/* Asymmetric namespace access (NVM Express). */
enum HX_NVME_ANA_STATE {
    HX_ANA_OPTIMIZED = 1,     /* reached on the best way */
    HX_ANA_NON_OPTIMIZED = 2, /* reached on a way that is not the best */
    HX_ANA_INACCESSIBLE = 3,  /* not reached through this controller now */
    HX_ANA_LOST = 4,          /* not reached through this controller any more */
    HX_ANA_CHANGING = 15      /* between two of these states */
};

/* Properties of a namespace: bits. */
enum HX_NVME_NAMESPACE_FLAG {
    HX_NAMESPACE_SHARED = 1,         /* other controllers may have it, too */
    HX_NAMESPACE_WRITE_PROTECTED = 2 /* it cannot be written */
};

#define HX_QOS_LUNS 256              /* logical units that have a priority: LUNs 0 to 255 */
#define HX_NVME_MOST_CONTROLLER 255u /* index of the last one that tells its namespaces */
#define HX_NVME_NQN_SIZE 256         /* bytes of an NVMe qualified name */

#pragma pack(push, 1)

/* Who is where on an arbitrated loop (FC-AL), 128 bytes. */
typedef struct HX_POSITIONAL_MAP {
    uint8_t count;     /* 0  addresses, at most 127; 0 outside a loop */
    uint8_t alPa[127]; /* 1  arbitrated loop physical addresses in the order of the loop */
} HX_POSITIONAL_MAP;

/* A remote port, 128 bytes. Bytes 40..83 are its answer to RDP (FC-LS). */
typedef struct HX_REMOTE_PORT {
    uint8_t nodeName[8];             /*   0  world wide name of its node */
    uint8_t portName[8];             /*   8  world wide name of the port */
    uint8_t portId[3];               /*  16  domain, area, port */
    uint8_t state;                   /*  19  HX_REMOTE_PORT_STATE */
    uint16_t roles;                  /*  20  HX_ROLE_... bits */
    uint16_t flags;                  /*  22  HX_REMOTE_PORT_FLAG bits */
    uint16_t bus;                    /*  24  SCSI bus number of a target that is online */
    uint16_t target;                 /*  26  its target ID on that bus */
    uint16_t loopId;                 /*  28  loop identifier, 0 to 126 (FC-AL); 0xFFFF: not on a
                                             loop */
    uint16_t maxFrameSize;           /*  30  bytes */
    uint16_t bbCredits;              /*  32  buffer-to-buffer credits */
    uint16_t sequences;              /*  34  concurrent */
    uint8_t speed;                   /*  36  HX_SPEED_... */
    uint8_t highestSpeed;            /*  37  HX_SPEED_... */
    uint8_t reserved38[2];           /*  38  has no meaning */
    int16_t temperature;             /*  40  of its transceiver (SFF-8472): 1/256 degree Celsius */
    uint16_t voltage;                /*  42  100 microvolts */
    uint16_t bias;                   /*  44  2 microamperes */
    uint16_t txPower;                /*  46  0.1 microwatts */
    uint16_t rxPower;                /*  48  0.1 microwatts */
    uint16_t transceiverFlags;       /*  50  of the five in their order: bits 0..4 at a warning
                                             limit, 8..12 at an alarm limit */
    HX_LINK_ERRORS errors;           /*  52  of its own link (RLS) */
    uint32_t correctedFecBlocks;     /*  76  blocks that forward error correction mended */
    uint32_t uncorrectableFecBlocks; /*  80  blocks that it could not mend */
    uint32_t secondsOnline;          /*  84  seconds since it came; 0 unless it is online */
    char symbolicName[40];           /*  88  symbolic port name, always terminated */
} HX_REMOTE_PORT;

/* Authentication and encryption of a remote port's traffic (FC-SP-2), 72 bytes. */
typedef struct HX_SECURE_PORT {
    uint8_t portName[8];        /*  0  world wide name of the port */
    uint8_t nodeName[8];        /*  8  world wide name of its node */
    uint8_t portId[3];          /* 16  domain, area, port */
    uint8_t state;              /* 19  HX_SECURE_STATE */
    uint8_t authentication;     /* 20  HX_AUTHENTICATION_... */
    uint8_t encryption;         /* 21  HX_ENCRYPTION_... */
    uint8_t directions;         /* 22  HX_SECURE_DIRECTION bits: encrypted */
    uint8_t rejectReason;       /* 23  of the last AUTH_Reject */
    uint32_t txSpi;             /* 24  security parameter index of what is sent to it */
    uint32_t rxSpi;             /* 28  the same of what it sends */
    uint64_t txBytes;           /* 32  bytes sent to it, as the driver counts them */
    uint64_t rxBytes;           /* 40  bytes received from it */
    uint32_t rekeys;            /* 48  times that keys were exchanged for new ones */
    uint32_t secondsSinceRekey; /* 52  age of the keys in use, seconds */
    uint32_t failures;          /* 56  authentications that failed */
    uint32_t framesRefused;     /* 60  frames from it that were not accepted */
    uint8_t reserved64[8];      /* 64  has no meaning */
} HX_SECURE_PORT;

/* Rates between the port and a target, 8 bytes: HX_SPEED_... */
typedef struct HX_TARGET_LINK_SPEED {
    uint16_t speed;     /* 0  at which frames go to the target */
    uint16_t portSpeed; /* 2  of the port's link */
    uint16_t highest;   /* 4  that the target can */
    uint16_t flags;     /* 6  HX_LINK_SPEED_SET */
} HX_TARGET_LINK_SPEED;

/* Priorities of a target's logical units, 256 bytes. */
typedef struct HX_LUN_QOS {
    uint8_t levels[HX_QOS_LUNS]; /* HX_QOS_... of LUNs 0 to 255 */
} HX_LUN_QOS;

/* Virtual ports of a port as a whole (N_Port ID virtualisation), 56 bytes. */
typedef struct HX_NPIV_ATTRIBUTES {
    uint16_t maximum;      /*  0  virtual ports supported */
    uint16_t inUse;        /*  2  virtual ports that there are: the length of the list */
    uint16_t flags;        /*  4  HX_NPIV_FLAG bits */
    uint16_t count;        /*  6  as inUse */
    uint32_t first;        /*  8  0 */
    uint32_t version;      /* 12  1 */
    uint8_t portName[8];   /* 16  of the port itself */
    uint8_t nodeName[8];   /* 24  of the port's node */
    uint8_t fabricName[8]; /* 32  of the fabric; zero when it is not known */
    uint8_t portId[3];     /* 40  of the port itself; zero while it has none */
    uint8_t reserved43;    /* 43  has no meaning */
    uint32_t fdiscs;       /* 44  FDISC link services sent */
    uint32_t fdiscRejects; /* 48  those of them that the fabric rejected */
    uint8_t reserved52[4]; /* 52  has no meaning */
} HX_NPIV_ATTRIBUTES;

/* A virtual port, 56 bytes. */
typedef struct HX_VIRTUAL_PORT {
    uint8_t portName[8];       /*  0  world wide name of the virtual port */
    uint8_t nodeName[8];       /*  8  of its node, which may be that of the port itself */
    uint8_t portId[3];         /* 16  domain, area, port; zero while it has none */
    uint8_t state;             /* 19  HX_VIRTUAL_PORT_... */
    uint16_t index;            /* 20  from 1 */
    uint16_t level;            /* 22  HX_QOS_... */
    uint16_t targets;          /* 24  number of targets that it sees */
    uint8_t rejectReason;      /* 26  of the last LS_RJT (FC-LS) */
    uint8_t rejectExplanation; /* 27  explanation code of the same LS_RJT */
    uint32_t secondsOnline;    /* 28  seconds since it came; 0 unless it is online */
    char symbolicName[24];     /* 32  symbolic port name, not terminated when 24 characters long */
} HX_VIRTUAL_PORT;

/* A remote port that speaks NVMe (FC-NVMe), 64 bytes. */
typedef struct HX_NVME_PORT {
    uint8_t portName[8];    /*  0  world wide name of the port */
    uint8_t nodeName[8];    /*  8  world wide name of its node */
    uint8_t portId[3];      /* 16  domain, area, port */
    uint8_t roles;          /* 19  HX_NVME_ROLE bits */
    uint8_t state;          /* 20  HX_NVME_PORT_STATE */
    uint8_t reserved21;     /* 21  has no meaning */
    uint16_t controllers;   /* 22  number of them */
    uint32_t namespaces;    /* 24  of all of them */
    uint32_t secondsOnline; /* 28  seconds since it came; 0 unless it is online */
    uint64_t readRequests;  /* 32  requests to it that read data */
    uint64_t writeRequests; /* 40  requests to it that write data */
    uint64_t lsRequests;    /* 48  NVMe link services (NVMe_LS) */
    uint64_t lsErrors;      /* 56  those of them that failed */
} HX_NVME_PORT;

/* A controller of such a port (NVM Express, NVMe over Fabrics), 1024 bytes. */
typedef struct HX_NVME_TARGET {
    uint8_t portName[8];                 /*   0  world wide name of the port that it is at */
    uint8_t nodeName[8];                 /*   8  of that port's node */
    uint8_t portId[3];                   /*  16  of that port: domain, area, port */
    uint8_t kind;                        /*  19  HX_NVME_KIND_... */
    uint16_t index;                      /*  20  of the controller at its port */
    uint16_t controllers;                /*  22  at its port */
    uint16_t controllerId;               /*  24  CNTLID */
    uint8_t state;                       /*  26  HX_NVME_STATE */
    uint8_t flags;                       /*  27  HX_NVME_FLAG_... */
    uint32_t namespaces;                 /*  28  number of them */
    uint32_t version;                    /*  32  of NVM Express: major << 16, minor << 8 */
    uint32_t maxTransfer;                /*  36  bytes */
    uint16_t ioQueues;                   /*  40  queues of the connection, without that for
                                                 administration */
    uint16_t queueDepth;                 /*  42  entries */
    uint32_t keepAlive;                  /*  44  milliseconds */
    uint32_t lossTimeout;                /*  48  seconds until a lost controller is given up */
    uint32_t reconnects;                 /*  52  times that the connection was made anew */
    uint64_t associationId;              /*  56  identifier of the association (FC-NVMe) */
    char subsystemNqn[HX_NVME_NQN_SIZE]; /*  64  NVMe qualified name of its subsystem, always
                                                 terminated */
    char hostNqn[HX_NVME_NQN_SIZE];      /* 320  name under which the host connects, always
                                                 terminated */
    uint8_t hostId[16];                  /* 576  identifier of the host (NVM Express) */
    char serial[20];                     /* 592  padded with blanks */
    char model[40];                      /* 612  padded with blanks */
    char firmware[8];                    /* 652  revision, padded with blanks */
    uint8_t reserved660[364];            /* 660  has no meaning */
} HX_NVME_TARGET;

/* A namespace of a controller (NVM Express), 64 bytes. */
typedef struct HX_NVME_NAMESPACE {
    uint32_t id;        /*  0  NSID */
    uint32_t blockSize; /*  4  bytes */
    uint64_t blocks;    /*  8  NSZE */
    uint64_t capacity;  /* 16  NCAP, blocks */
    uint64_t used;      /* 24  NUSE, blocks */
    uint8_t eui64[8];   /* 32  IEEE extended unique identifier; zero: none */
    uint8_t nguid[16];  /* 40  globally unique identifier; zero: none */
    uint32_t anaGroup;  /* 56  ANAGRPID: the group that anaState is of */
    uint8_t anaState;   /* 60  HX_ANA_... */
    uint8_t flags;      /* 61  HX_NAMESPACE_... */
    uint16_t metadata;  /* 62  bytes a block */
} HX_NVME_NAMESPACE;

#pragma pack(pop)

/* Who is where on the loop of the port, in map; nobody outside a loop. Every driver. */
HX_STATUS HXGetPositionalMap(uint32_t handle, HX_POSITIONAL_MAP* map);

/* The remote ports that the port knows, those that it lost among them, with what they say of their
   links (RDP, FC-LS). A list. */
HX_STATUS HXGetRemotePortInfo(uint32_t handle, HX_REMOTE_PORT* ports, uint32_t* count);

/* The remote ports whose traffic is authenticated or encrypted, or that tried. A list. Driver
   9.01.00, on the newest chips (PCI device IDs from 0x7620 on). */
HX_STATUS HXGetSecurePortInfo(uint32_t handle, HX_SECURE_PORT* ports, uint32_t* count);

/*
 * The rate at which frames go to a target. A set takes as speed an HX_SPEED_... code, or 0 for the
 * rate that was negotiated (HXMGT_INVALID_PARAMETER: none of these, or beyond the port's). It holds
 * for this port and target until the driver stops.
 */
HX_STATUS HXGetTargetIDMALinkSpeed(uint32_t handle, const DESTINATIONADDRESS* target,
                                   HX_TARGET_LINK_SPEED* record);
HX_STATUS HXSetTargetIDMALinkSpeed(uint32_t handle, const DESTINATIONADDRESS* target,
                                   uint16_t speed);

/*
 * Priorities of a target's logical units. A set sends all 256 levels (HXMGT_INVALID_PARAMETER: one
 * is above HX_QOS_HIGH) and returns in qos those that the driver now has. They act while priorities
 * are in force: *enabled becomes 1, else 0.
 */
HX_STATUS HXGetLunQos(uint32_t handle, const DESTINATIONADDRESS* target, HX_LUN_QOS* qos);
HX_STATUS HXGetLunQosEnable(uint32_t handle, uint8_t* enabled);
HX_STATUS HXSetLunQos(uint32_t handle, const DESTINATIONADDRESS* target, HX_LUN_QOS* qos);

/* Virtual ports of the port, as a whole and one by one. A list; attributes may be null, and are
   written with HXMGT_BUFFER_TOO_SMALL, too. */
HX_STATUS HXGetNPIVAttributes(uint32_t handle, HX_NPIV_ATTRIBUTES* attributes,
                              HX_VIRTUAL_PORT* ports, uint32_t* count);

/* The remote ports that speak NVMe. A list. Driver 9.01.00. */
HX_STATUS HXRGetNVMeInfo(uint32_t handle, HX_NVME_PORT* ports, uint32_t* count);

/* A controller of such a port: target's LUN is its index, from 0. Driver 9.01.00. */
HX_STATUS HXGetNVMeTargetInfo(uint32_t handle, const DESTINATIONADDRESS* target,
                              HX_NVME_TARGET* record);

/* The namespaces of a controller: target's LUN is its index, at most HX_NVME_MOST_CONTROLLER (else
   HXMGT_INVALID_PARAMETER). A list. Driver 9.01.00. */
HX_STATUS HXGetNVMeNSInfo(uint32_t handle, const DESTINATIONADDRESS* target,
                          HX_NVME_NAMESPACE* namespaces, uint32_t* count);

#ifdef __cplusplus
}
#endif

#endif /* HXFABRIC_H */
