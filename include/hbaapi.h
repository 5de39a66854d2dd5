/*
 * hbaapi.h - the standard HBA API, version 1, as VXMGMT.DLL offers it to the common library or to
 * any program that loads it.
 *
 * The DLL exports one function of this interface, HBA_RegisterLibrary. It fills a table of 24
 * handlers, none of them null; everything else is called through the table. Nothing of the
 * management API (hxmgtapi.h) is needed. The rules:
 *  1. GetNumberOfAdaptersHandler and GetAdapterNameHandler find the adapters, OpenAdapterHandler
 *     gives a handle (0 = failure), CloseAdapterHandler takes it back. A handle has one port, so
 *     portIndex is accepted and not looked at.
 *  2. Handlers return HBA_STATUS_... unless their line below says otherwise. A handle that is not
 *     open gives HBA_STATUS_ERROR_INVALID_HANDLE, a null record HBA_STATUS_ERROR_ARG.
 *  3. The caller owns every record and buffer: attributes, statistics, info, mapping and binding
 *     take what the handler's name says, response takes responseSize bytes at most. Texts of a
 *     field are zero-terminated unless they fill the field.
 *  4. Records have the natural alignment of Windows x64, little-endian; their sizes are part of the
 *     interface. World wide names are eight bytes in the order in which they are written; as a
 *     handler's argument a name is passed by value.
 *  5. Any handler may be called from any thread; a call may block for up to about 80 seconds while
 *     the driver reports busy.
 *
 * Copyright (c) 2026 The VXMGMT developers. MIT licence, see LICENSE.
 */
#ifndef HBAAPI_H
#define HBAAPI_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define HBA_VERSION 1 /* what GetVersionHandler returns */

typedef uint8_t HBA_UINT8;   /* the names that the standard gives to the usual integers */
typedef uint16_t HBA_UINT16; /* 16 bits, unsigned */
typedef uint32_t HBA_UINT32; /* 32 bits, unsigned */
typedef int64_t HBA_INT64;   /* 64 bits, signed */
typedef uint64_t HBA_UINT64; /* 64 bits, unsigned */

typedef HBA_UINT32 HBA_STATUS; /* HBA_STATUS_... */
typedef HBA_UINT32 HBA_HANDLE; /* an open adapter; 0 is none */

#define HBA_STATUS_OK 0                   /* success */
#define HBA_STATUS_ERROR 1                /* a failure that has no status of its own */
#define HBA_STATUS_ERROR_NOT_SUPPORTED 2  /* the adapter or the library cannot do it */
#define HBA_STATUS_ERROR_INVALID_HANDLE 3 /* the handle is not open */
#define HBA_STATUS_ERROR_ARG 4            /* an argument is null or out of range */
#define HBA_STATUS_ERROR_ILLEGAL_WWN 5    /* no such port */
#define HBA_STATUS_ERROR_ILLEGAL_INDEX 6  /* no such index */
#define HBA_STATUS_ERROR_MORE_DATA 7      /* not everything fitted */

/* A world wide name, 8 bytes. */
typedef struct HBA_WWN {
    HBA_UINT8 wwn[8]; /* 0  the name, its first byte first */
} HBA_WWN;

/* What a world wide name names. */
typedef enum HBA_WWNTYPE {
    NODE_WWN = 0, /* a node */
    PORT_WWN = 1  /* a port */
} HBA_WWNTYPE;

/* ------------------------------------------------------------------------------------------------
 * Adapter and port attributes
 * --------------------------------------------------------------------------------------------- */

/* What an adapter is, 2192 bytes. */
typedef struct HBA_ADAPTERATTRIBUTES {
    char Manufacturer[64];       /*    0  not terminated when it fills the field */
    char SerialNumber[64];       /*   64  terminated; empty when the adapter has none */
    char Model[256];             /*  128  terminated; name of the board or chip, at most 32
                                          characters */
    char ModelDescription[256];  /*  384  terminated; a title made with Model */
    HBA_WWN NodeWWN;             /*  640  of the node that the handle's port belongs to */
    char NodeSymbolicName[256];  /*  648  empty */
    char HardwareVersion[256];   /*  904  empty when the adapter does not tell it */
    char DriverVersion[256];     /* 1160  at most 32 characters, terminated */
    char OptionROMVersion[256];  /* 1416  at most four characters, terminated */
    char FirmwareVersion[256];   /* 1672  dotted decimal, terminated */
    HBA_UINT32 VendorSpecificID; /* 1928  zero it before the call, see the handler */
    HBA_UINT32 NumberOfPorts;    /* 1932  ports that the handle's driver speaks for */
    char DriverName[256];        /* 1936  file name of the driver */
} HBA_ADAPTERATTRIBUTES;

#define HBA_PORTTYPE_UNKNOWN 1   /* not known */
#define HBA_PORTTYPE_NPORT 5     /* fabric */
#define HBA_PORTTYPE_NLPORT 6    /* loop with a fabric */
#define HBA_PORTTYPE_LPORT 20    /* private loop */
#define HBA_PORTTYPE_PTP 21      /* point to point, no fabric */
typedef HBA_UINT32 HBA_PORTTYPE; /* HBA_PORTTYPE_... */

#define HBA_PORTSTATE_UNKNOWN 1   /* not known */
#define HBA_PORTSTATE_ONLINE 2    /* works */
#define HBA_PORTSTATE_OFFLINE 3   /* offline */
#define HBA_PORTSTATE_LINKDOWN 6  /* no link */
typedef HBA_UINT32 HBA_PORTSTATE; /* HBA_PORTSTATE_... */

/* Speeds: one bit each, so that a set of them is a sum. */
#define HBA_PORTSPEED_UNKNOWN 0                /* not known */
#define HBA_PORTSPEED_1GBIT 1                  /* 1 Gbit/s */
#define HBA_PORTSPEED_2GBIT 2                  /* 2 Gbit/s */
#define HBA_PORTSPEED_10GBIT 4                 /* 10 Gbit/s */
#define HBA_PORTSPEED_4GBIT 8                  /* 4 Gbit/s */
#define HBA_PORTSPEED_8GBIT 16                 /* 8 Gbit/s */
#define HBA_PORTSPEED_16GBIT 32                /* 16 Gbit/s */
#define HBA_PORTSPEED_32GBIT 64                /* 32 Gbit/s */
#define HBA_PORTSPEED_64GBIT 128               /* 64 Gbit/s */
#define HBA_PORTSPEED_NOT_REPORTED 0xFFFFFFFFu /* this driver does not report speeds */
typedef HBA_UINT32 HBA_PORTSPEED;              /* HBA_PORTSPEED_... */

#define HBA_CLASS_OF_SERVICE_3 8 /* the only class of these adapters */
typedef HBA_UINT32 HBA_COS;      /* classes of service: bits */

/* The protocols of a port, 32 bytes. */
typedef struct HBA_FC4TYPES {
    HBA_UINT8 bits[32]; /* 0  a bit for each FC-4 type (FC-GS) */
} HBA_FC4TYPES;

/* What a port is, of the adapter or discovered, 632 bytes. */
typedef struct HBA_PORTATTRIBUTES {
    HBA_WWN NodeWWN;                     /*   0  of the node; a driver below 7.05.03 gives the
                                                 same name twice */
    HBA_WWN PortWWN;                     /*   8  of the port */
    HBA_UINT32 PortFcId;                 /*  16  domain x 65536 + area x 256 + port */
    HBA_PORTTYPE PortType;               /*  20  HBA_PORTTYPE_...; 0 on a driver below 7.05.03 */
    HBA_PORTSTATE PortState;             /*  24  HBA_PORTSTATE_... */
    HBA_COS PortSupportedClassofService; /*  28  HBA_CLASS_OF_SERVICE_3; 0 of a discovered port
                                                 or below 7.05.03 */
    HBA_FC4TYPES PortSupportedFc4Types;  /*  32  bit 0 of byte 1: FCP, bit 5 of byte 0: IP; zero
                                                 of a discovered port and on a driver below
                                                 8.01.02 */
    HBA_FC4TYPES PortActiveFc4Types;     /*  64  those of them that are in use now */
    char PortSymbolicName[256];          /*  96  empty */
    char OSDeviceName[256];              /* 352  "\\.\Scsi%d:" with the SCSI port, or the device
                                                 of a discovered one; terminated */
    HBA_PORTSPEED PortSupportedSpeed;    /* 608  sum of HBA_PORTSPEED_...; 0 of a discovered port */
    HBA_PORTSPEED PortSpeed;             /* 612  HBA_PORTSPEED_...; 0 of a discovered port */
    HBA_UINT32 PortMaxFrameSize;         /* 616  bytes; 0 of a discovered port or below 7.05.03 */
    HBA_WWN FabricName;                  /* 620  zero */
    HBA_UINT32 NumberofDiscoveredPorts;  /* 628  that GetDiscoveredPortAttributesHandler tells
                                                 of; 0 of a discovered port */
} HBA_PORTATTRIBUTES;

/* Counters since the last reset, 120 bytes; -1 = not available, as the first nine are at all times.
   The others wrap at 32 bits. */
typedef struct HBA_PORTSTATISTICS {
    HBA_INT64 SecondsSinceLastReset;        /*   0  seconds; not available */
    HBA_INT64 TxFrames;                     /*   8  frames sent; not available */
    HBA_INT64 TxWords;                      /*  16  words of 4 bytes sent; not available */
    HBA_INT64 RxFrames;                     /*  24  frames received; not available */
    HBA_INT64 RxWords;                      /*  32  words of 4 bytes received; not available */
    HBA_INT64 LIPCount;                     /*  40  loop initialisations; not available */
    HBA_INT64 NOSCount;                     /*  48  NOS primitives; not available */
    HBA_INT64 ErrorFrames;                  /*  56  frames received with an error; not available */
    HBA_INT64 DumpedFrames;                 /*  64  frames lost because there was no buffer for
                                                    them; not available */
    HBA_INT64 LinkFailureCount;             /*  72  times the link failed (FC-FS) */
    HBA_INT64 LossOfSyncCount;              /*  80  times the receiver lost the word boundaries */
    HBA_INT64 LossOfSignalCount;            /*  88  times the signal broke off */
    HBA_INT64 PrimitiveSeqProtocolErrCount; /*  96  primitive sequences that the state of the
                                                    link does not allow */
    HBA_INT64 InvalidTxWordCount;           /* 104  words that the line code does not have */
    HBA_INT64 InvalidCRCCount;              /* 112  frames received with a wrong CRC */
} HBA_PORTSTATISTICS;

/* ------------------------------------------------------------------------------------------------
 * Targets as the operating system knows them
 * --------------------------------------------------------------------------------------------- */

/* A logical unit as the operating system knows it, 268 bytes. */
typedef struct HBA_SCSIID {
    char OSDeviceName[256];      /*   0  "\\.\PhysicalDrive%d", "\\.\Tape%d" or "\\.\Changer%d";
                                         terminated */
    HBA_UINT32 ScsiBusNumber;    /* 256  at the handle's SCSI port */
    HBA_UINT32 ScsiTargetNumber; /* 260  on that bus */
    HBA_UINT32 ScsiOSLun;        /* 264  0 to 255 */
} HBA_SCSIID;

/* A logical unit as the fabric knows it, 32 bytes. */
typedef struct HBA_FCPID {
    HBA_UINT32 FcId;   /*  0  of the port: domain x 65536 + area x 256 + port */
    HBA_WWN NodeWWN;   /*  4  of the port's node */
    HBA_WWN PortWWN;   /* 12  of the port */
    HBA_UINT64 FcpLun; /* 24  the eight bytes of the logical unit number as FCP sends them */
} HBA_FCPID;

/* The two of them together, 304 bytes. */
typedef struct HBA_FCPSCSIENTRY {
    HBA_SCSIID ScsiId; /*   0  how the operating system reaches it */
    HBA_FCPID FcpId;   /* 272  where it is on the fabric */
} HBA_FCPSCSIENTRY;

/* The logical units behind a port, 312 bytes with one entry. */
typedef struct HBA_FCPTARGETMAPPING {
    HBA_UINT32 NumberOfEntries; /*   0  room on entry, true number on return */
    HBA_FCPSCSIENTRY entry[1];  /*   8  as many as the caller has room for */
} HBA_FCPTARGETMAPPING;

/* One persistent binding, 312 bytes. Nothing fills it. */
typedef struct HBA_FCPBINDINGENTRY {
    HBA_UINT32 type;   /*   0  what the binding is to: an identifier or a name */
    HBA_SCSIID ScsiId; /*   4  as in HBA_FCPSCSIENTRY */
    HBA_FCPID FcpId;   /* 272  as in HBA_FCPSCSIENTRY */
    HBA_UINT32 FcId;   /* 304  the identifier, of a binding to one */
} HBA_FCPBINDINGENTRY;

/* The persistent bindings of a port, 320 bytes with one entry. Nothing fills it. */
typedef struct HBA_FCPBINDING {
    HBA_UINT32 NumberOfEntries;   /* 0  of entry */
    HBA_FCPBINDINGENTRY entry[1]; /* 8  as many as NumberOfEntries says */
} HBA_FCPBINDING;

/* ------------------------------------------------------------------------------------------------
 * Topology information and events
 * --------------------------------------------------------------------------------------------- */

/* What a port answers about itself to topology discovery, 44 bytes; numbers in host order. */
typedef struct HBA_MGMTINFO {
    HBA_WWN wwn;                       /*  0  port name */
    HBA_UINT32 unittype;               /*  8  what the node is: 10 = host (FC-LS, RNID) */
    HBA_UINT32 PortId;                 /* 12  which of the adapter's ports it is: the physical
                                              port number, no identifier */
    HBA_UINT32 NumberOfAttachedNodes;  /* 16  nodes attached at the port */
    HBA_UINT16 IPVersion;              /* 20  1 = IPv4, 2 = IPv6 */
    HBA_UINT16 UDPPort;                /* 22  at which its management is reached */
    HBA_UINT8 IPAddress[16];           /* 24  in network order; an IPv4 address stands in the
                                              last four bytes */
    HBA_UINT16 reserved;               /* 40  as the driver gives it */
    HBA_UINT16 TopologyDiscoveryFlags; /* 42  bits of FC-LS (RNID), as the driver gives them */
} HBA_MGMTINFO;

#define HBA_EVENT_LIP_OCCURRED 1       /* loop initialisation */
#define HBA_EVENT_LINK_UP 2            /* the link came up */
#define HBA_EVENT_LINK_DOWN 3          /* the link went down */
#define HBA_EVENT_LIP_RESET_OCCURRED 4 /* loop reset */
#define HBA_EVENT_RSCN 5               /* registered state change notification */
#define HBA_EVENT_PROPRIETARY 0xFFFF   /* any other event */

/* What comes with a link event, 16 bytes. */
typedef struct HBA_LINK_EVENTINFO {
    HBA_UINT32 PortFcId;    /* 0  zero: not told */
    HBA_UINT32 Reserved[3]; /* 4  zero */
} HBA_LINK_EVENTINFO;

/* What comes with a state change notification, 16 bytes. */
typedef struct HBA_RSCN_EVENTINFO {
    HBA_UINT32 PortFcId;    /* 0  zero: not told */
    HBA_UINT32 NPortPage;   /* 4  the affected port page (FC-LS), as the driver gives it */
    HBA_UINT32 Reserved[2]; /* 8  zero */
} HBA_RSCN_EVENTINFO;

/* What comes with a proprietary event, 16 bytes: nothing. */
typedef struct HBA_PTY_EVENTINFO {
    HBA_UINT32 PtyData[4]; /* 0  zero */
} HBA_PTY_EVENTINFO;

/* One event, 20 bytes. */
typedef struct HBA_EVENTINFO {
    HBA_UINT32 EventCode; /* 0  HBA_EVENT_... */
    union {
        HBA_LINK_EVENTINFO Link_EventInfo; /* 4  of the link and loop events */
        HBA_RSCN_EVENTINFO RSCN_EventInfo; /* 4  of HBA_EVENT_RSCN */
        HBA_PTY_EVENTINFO Pty_EventInfo;   /* 4  of HBA_EVENT_PROPRIETARY */
    } Event;                               /* 4  which of them, EventCode tells */
} HBA_EVENTINFO;

/* ------------------------------------------------------------------------------------------------
 * The handlers
 * --------------------------------------------------------------------------------------------- */

/* clang-format off */
/* The table of handlers, 192 bytes. */
typedef struct HBA_ENTRYPOINTS {
    /* HBA_VERSION. */
    HBA_UINT32 (*GetVersionHandler)(void);
    /* Call it once before the others: empties the trace files of an earlier run. */
    HBA_STATUS (*LoadLibraryHandler)(void);
    /* Does nothing; handles that are open stay so. HBA_STATUS_OK. */
    HBA_STATUS (*FreeLibraryHandler)(void);

    /* Number of adapters, not a status. Each call looks anew. */
    HBA_UINT32 (*GetNumberOfAdaptersHandler)(void);
    /* Writes the name of adapter index (from 0) to name, which has room for 256 bytes.
       HBA_STATUS_ERROR_ILLEGAL_INDEX: there is none; name is then empty. */
    HBA_STATUS (*GetAdapterNameHandler)(HBA_UINT32 index, char* name);
    /* Opens an adapter by the number that ends its name, and starts collecting its events. Returns
       its handle, or 0. */
    HBA_HANDLE (*OpenAdapterHandler)(char* name);
    /* Gives back one registration for events and closes the handle. Close a handle once: closing it
       again still gives back a registration of its adapter. */
    void (*CloseAdapterHandler)(HBA_HANDLE handle);

    /* VendorSpecificID on entry chooses: 0x1ED0017, 0x1ED00FF and 0x1ED0000 are handed to the
       driver and no other member is filled (0x1ED0000 takes the driver's answer); with any other
       value all members are. A request that the driver fails gives its own status, which is none
       of HBA_STATUS_...; so does every failure of the first three, also of a bad handle. */
    HBA_STATUS (*GetAdapterAttributesHandler)(HBA_HANDLE handle, HBA_ADAPTERATTRIBUTES* attributes);
    /* The adapter's own port. A request that a driver below 7.05.03 fails gives its own status. */
    HBA_STATUS (*GetAdapterPortAttributesHandler)(
        HBA_HANDLE handle, HBA_UINT32 portIndex, HBA_PORTATTRIBUTES* attributes);
    /* Counters of that port. */
    HBA_STATUS (*GetPortStatisticsHandler)(
        HBA_HANDLE handle, HBA_UINT32 portIndex, HBA_PORTSTATISTICS* statistics);
    /* Type and state of a discovered port are not known. OSDeviceName is the device of its lowest
       logical unit, or empty. discoveredPortIndex counts them from 0;
       HBA_STATUS_ERROR_ILLEGAL_WWN: no such index. */
    HBA_STATUS (*GetDiscoveredPortAttributesHandler)(
        HBA_HANDLE handle, HBA_UINT32 portIndex, HBA_UINT32 discoveredPortIndex,
        HBA_PORTATTRIBUTES* attributes);
    /* The same of the discovered port whose port name is portWWN. */
    HBA_STATUS (*GetPortAttributesByWWNHandler)(
        HBA_HANDLE handle, HBA_WWN portWWN, HBA_PORTATTRIBUTES* attributes);

    /* Sends a Common Transport request of at least 8 bytes and receives the response. */
    HBA_STATUS (*SendCTPassThruHandler)(
        HBA_HANDLE handle, void* request, HBA_UINT32 requestSize, void* response,
        HBA_UINT32 responseSize);
    /* Does nothing: every call asks the driver. */
    void (*RefreshInformationHandler)(HBA_HANDLE handle);
    /* Returns the status of the management library, 0 = success. */
    HBA_STATUS (*ResetStatisticsHandler)(HBA_HANDLE handle, HBA_UINT32 portIndex);

    /* Every logical unit of the discovered ports that the operating system has a disk, tape or
       changer for, ascending by bus, target and logical unit. NumberOfEntries is the room on entry
       and the true number on return; HBA_STATUS_ERROR_MORE_DATA when not all of them fitted. */
    HBA_STATUS (*GetFcpTargetMappingHandler)(HBA_HANDLE handle, HBA_FCPTARGETMAPPING* mapping);
    /* HBA_STATUS_ERROR_NOT_SUPPORTED. */
    HBA_STATUS (*GetFcpPersistentBindingHandler)(HBA_HANDLE handle, HBA_FCPBINDING* binding);

    /* *count is the room on entry and the number of events on return. One call takes up to 32
       events from the adapter and loses those beyond the room: give it 32. Proprietary events carry
       no data. */
    HBA_STATUS (*GetEventBufferHandler)(
        HBA_HANDLE handle, HBA_EVENTINFO* events, HBA_UINT32* count);

    /* Sets IPVersion, UDPPort and IPAddress; the other members are not looked at. */
    HBA_STATUS (*SetRNIDMgmtInfoHandler)(HBA_HANDLE handle, HBA_MGMTINFO* info);
    /* Fills every member. As above, HBA_STATUS_ERROR_NOT_SUPPORTED on a driver below 7.05.03. */
    HBA_STATUS (*GetRNIDMgmtInfoHandler)(HBA_HANDLE handle, HBA_MGMTINFO* info);
    /* Sends RNID for general topology discovery to the node or port (wwnType) named wwn and
       receives the LS_ACC payload. Zero the response first: what stands in its first bytes is sent
       along. *responseSize is the room in bytes and is lowered to the payload's length. */
    HBA_STATUS (*SendRNIDHandler)(
        HBA_HANDLE handle, HBA_WWN wwn, HBA_WWNTYPE wwnType, void* response,
        HBA_UINT32* responseSize);

    /* No SCSI command is sent through this interface: HBA_STATUS_ERROR_NOT_SUPPORTED when portWWN
       is that of a discovered port, HBA_STATUS_ERROR_ILLEGAL_WWN for any other. A driver below
       7.05.03 that cannot list its discovered ports: what that failed with. fcLUN, EVPD and
       PageCode are not looked at, response and sense are not written. */
    HBA_STATUS (*ScsiInquiryHandler)(
        HBA_HANDLE handle, HBA_WWN portWWN, HBA_UINT64 fcLUN, HBA_UINT8 EVPD, HBA_UINT32 PageCode,
        void* response, HBA_UINT32 responseSize, void* sense, HBA_UINT32 senseSize);
    HBA_STATUS (*ReportLUNsHandler)(
        HBA_HANDLE handle, HBA_WWN portWWN, void* response, HBA_UINT32 responseSize, void* sense,
        HBA_UINT32 senseSize);
    HBA_STATUS (*ReadCapacityHandler)(
        HBA_HANDLE handle, HBA_WWN portWWN, HBA_UINT64 fcLUN, void* response,
        HBA_UINT32 responseSize, void* sense, HBA_UINT32 senseSize);
} HBA_ENTRYPOINTS;
/* clang-format on */

/* Stores the 24 handlers in the caller's table entryPoints, which must not be null. HBA_STATUS_OK.
 */
HBA_STATUS HBA_RegisterLibrary(HBA_ENTRYPOINTS* entryPoints);
/* The type of it, for entryPoints of a library that is loaded at run time. */
typedef HBA_STATUS (*HBA_REGISTERLIBRARY)(HBA_ENTRYPOINTS* entryPoints);

#ifdef __cplusplus
}
#endif

#endif /* HBAAPI_H */
