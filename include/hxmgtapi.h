/*
 * hxmgtapi.h - management API of VXMGMT.DLL, the host-side management library for Fibre Channel
 * host bus adapters on Windows x64.
 *
 * Rules of the whole interface:
 *  1. Functions return an unsigned 32-bit status (hxstatus.h) unless their comment says otherwise.
 *     0 is success; HXGetErrorString gives the text of any status.
 *  2. A device handle is a number from 1 to 63 that HXOpenDevice or HXOpenScsiPort gave. A handle
 *     that is 0, above 64 or not open gives HXMGT_INVALID_HANDLE before anything else happens.
 *  3. The caller owns every buffer and gives its length. The library never returns memory to free.
 *     A null pointer where a record or a buffer is needed gives HXMGT_INVALID_PARAMETER.
 *  4. Any function may be called from any thread. Do not close a handle while another thread uses
 *     it: that thread's call ends with some status, and the number may be given to another adapter
 *     in the middle of it. A call that reaches the driver may block for up to about 80 seconds, as
 *     long as the driver reports busy.
 *  5. A driver request that fails gives the Windows error code of the transfer (bit 29 clear) or
 *     the library status that stands for the driver's own status; both are passed on unchanged.
 *  6. "Driver 7.05.03" means dwDriverVersion of at least 70503. Older drivers are asked with their
 *     legacy requests where those exist; a function without one returns HXMGT_NOT_SUPPORTED.
 *  7. Records are packed and little-endian; their sizes are part of the interface.
 *  8. Parameters mean the same everywhere: handle is a device handle; reserved parameters are not
 *     used, give 0; a size or length (bufferSize, dataInLength) is that of what its name begins
 *     with, in bytes.
 *
 * Copyright (c) 2026 The VXMGMT developers. MIT licence, see LICENSE.
 */
#ifndef HXMGTAPI_H
#define HXMGTAPI_H

#include <stdint.h>
#include <stdio.h>

#include "hxtypes.h"

#ifdef __cplusplus
extern "C" {
#endif

#define HX_VERSION_PACKED 0x011C00C5u /* 1.28.0.197: major, minor, build, revision */

#define HX_MAX_HANDLE_RECORDS 65 /* records of the handle table; record 0 is never used */
#define HX_MAX_SCSI_PORTS 64     /* SCSI port numbers 0 to 63 are searched for adapters */

#define HX_ADAPTER_NOT_COUNTED 0xFFFFFFFFu /* adapter index of a port that was opened uncounted */

/* ------------------------------------------------------------------------------------------------
 * Records
 * --------------------------------------------------------------------------------------------- */

/*
 * One record of the table of open adapters. Natural alignment (120 bytes), not packed.
 * Read it, never write it.
 */
typedef struct HXMGT_API_HANDLE {
    void* hDevice;            /* open SCSI port device; all ones when the record is free */
    char szModel[32];         /* PCI device ID as four numbers, one per hexadecimal digit: "7740" */
    FILE* pTraceFile;         /* trace stream, or null */
    uint32_t dwTraceLevel;    /* level given with the trace file; kept for callers */
    char szDeviceName[32];    /* "\Device\ScsiPort%d" */
    uint32_t dwDriverVersion; /* major x 10000 + minor x 100 + patch */
    uint32_t dwAdapterIndex;  /* index given to HXOpenDevice, or HX_ADAPTER_NOT_COUNTED */
    uint32_t dwScsiPort;      /* SCSI port number */
    uint32_t dwActivationTimeout;          /* seconds allowed for an online activation; 0 = any */
    uint64_t qwExpectedFirmwareAttributes; /* attribute word awaited before an activation */
    uint64_t qwFlashUpdateCapabilities;    /* recorded flash update capabilities */
} HXMGT_API_HANDLE;

#pragma pack(push, 1)

/*
 * Node (adapter) properties, 388 bytes. On a driver below 7.05.03 the model is the handle's
 * szModel, the driver version is made from the handle's version code, ports is 1, and the bytes
 * 252..259 are zero; modelDescription, flags and the reserved bytes are left as they were.
 */
typedef struct HX_NODE_PROPERTY {
    uint8_t nodeName[8];         /*   0  world wide node name */
    char manufacturer[80];       /*   8  text */
    char model[16];              /*  88  text, not terminated when 16 characters long */
    char modelDescription[16];   /* 104  text block */
    uint8_t serialPresent;       /* 120  1 when serialNumber holds a text, 0 when there is none */
    char serialNumber[31];       /* 121  text, terminated; means nothing when serialPresent is 0 */
    char driverVersion[32];      /* 152  text */
    char firmwareVersion[32];    /* 184  text, dotted decimal */
    char optionRomVersion[32];   /* 216  at most four characters and a terminator are meaningful */
    uint16_t numberOfPorts;      /* 248  that the handle's driver speaks for: 1 where each port
                                         has one of its own */
    uint16_t adapterGeneration;  /* 250  2 = oldest chip family, 1 = any other (older drivers) */
    uint32_t vendorSpecificId;   /* 252  vendor-specific attribute value */
    uint32_t firmwareAttributes; /* 256  firmware attribute word */
    uint32_t flags;              /* 260  HX_NODE_FLAG_..., driver 7.05.03 on */
    uint8_t serialBytes[3];      /* 264  b0, b1, b2 of the numeric serial */
    uint8_t reserved[121];       /* 267  not written */
} HX_NODE_PROPERTY;

#define HX_NODE_FLAGS_CARRIED 0x7Fu  /* the flag bits that the driver's reply hands on */
#define HX_NODE_FLAG_TEXT_SERIAL 16u /* manufacturer and serial number come as text */

/*
 * Port properties, 112 bytes; the library writes at most the first 109. Fields marked V2 are
 * written by the second version only, fields marked F only with firmware 8.1.2 or newer; whatever
 * is not written stays as the caller had it. A driver below 7.05.03 has bytes 0..49 alone.
 */
typedef struct HX_PORT_PROPERTY {
    uint8_t portName[8];        /*   0  world wide port name */
    uint8_t portId[3];          /*   8  port identifier: domain, area, port (FC-FS) */
    uint8_t role;               /*  11  1 = initiator, 2 = any other, 0 = not known (legacy) */
    uint8_t state;              /*  12  HX_PORT_STATE_...; on a driver below 7.05.03 written only
                                        when the link is down: preset it before the call */
    uint8_t topology;           /*  13  1 = point to point or fabric, 2 = loop or not known; on a
                                        driver below 7.05.03 its three-bit port type */
    uint16_t discoveredDevices; /*  14  remote ports that the driver knows, of any role */
    uint16_t discoveredTargets; /*  16  equal to discoveredDevices on a driver below 7.05.03 */
    char deviceName[32];        /*  18  "\Device\ScsiPort%d", terminated */
    uint8_t currentSpeed;       /*  50  F  speed code, HX_SPEED_... */
    uint8_t reserved51[3];      /*  51  not written */
    uint16_t maxFrameSize;      /*  54  bytes */
    uint16_t bbCredits;         /*  56  buffer-to-buffer credits */
    uint16_t npivMaximum;       /*  58  virtual ports supported */
    uint16_t npivInUse;         /*  60  virtual ports in use */
    uint8_t supportedSpeeds;    /*  62  F  supported-speed code: the highest speed's code */
    uint8_t reserved63[19];     /*  63  not written */
    uint16_t maxTargets;        /*  82  V2  most targets that it can have */
    uint16_t maxLunsPerTarget;  /*  84  V2  most logical units of each */
    uint16_t executionThrottle; /*  86  V2  as the driver gives it; the NVRAM has a variable of
                                        that name */
    uint16_t reserved88;        /*  88  not written */
    uint16_t loginTimeout;      /*  90  V2  seconds */
    uint16_t linkDownTimeout;   /*  92  V2  seconds */
    uint16_t portDownRetry;     /*  94  V2  seconds */
    uint16_t reserved96;        /*  96  not written */
    uint8_t transceiverType[2]; /*  98  V2  SFF-8472 identifier and connector codes */
    uint8_t fecActive;          /* 100  V2  not 0: forward error correction in use */
    uint8_t trunkState;         /* 101  V2  as the driver gives it */
    uint32_t featureMask;       /* 102  V2  as the driver gives it */
    uint8_t nvmeEnabled;        /* 106  V2  0 or 1 */
    uint8_t fcpEnabled;         /* 107  V2  0 or 1 */
    uint8_t diagnosticState;    /* 108  V2  0 = none */
    uint8_t reserved109[3];     /* 109  not written */
} HX_PORT_PROPERTY;

/* State of a port's link. */
enum HX_PORT_STATE {
    HX_PORT_STATE_ONLINE = 1,   /* it works, or the driver says neither of the others */
    HX_PORT_STATE_OFFLINE = 2,  /* the port is offline */
    HX_PORT_STATE_LINK_DOWN = 3 /* there is no link */
};

/* Speed codes of links, as the driver gives them: above 8 not the gigabits per second. */
enum HX_SPEED {
    HX_SPEED_UNKNOWN = 0, /* not known, or no link */
    HX_SPEED_1GBIT = 1,   /* 1 Gbit/s */
    HX_SPEED_2GBIT = 2,   /* 2 Gbit/s */
    HX_SPEED_4GBIT = 4,   /* 4 Gbit/s */
    HX_SPEED_8GBIT = 8,   /* 8 Gbit/s */
    HX_SPEED_10GBIT = 16, /* 10GFC (FCoE) */
    HX_SPEED_16GBIT = 22, /* 16 Gbit/s */
    HX_SPEED_32GBIT = 50, /* 32 Gbit/s */
    HX_SPEED_64GBIT = 100 /* 64 Gbit/s */
};

/*
 * PCI identity of the adapter's chip, 80 bytes; the library writes bytes 0..31 and 48..58 (a driver
 * below 7.05.03: 0..31). Fields follow the PCI configuration space (PCI Local Bus / PCI Express).
 */
typedef struct HX_CHIP_PROPERTY {
    uint16_t vendorId;          /*  0  0x1ED0 for adapters of the family */
    uint16_t deviceId;          /*  2  tells the chip, and so what it can */
    uint16_t subsystemVendorId; /*  4  of the board's maker */
    uint16_t subsystemDeviceId; /*  6  board ID */
    uint16_t revision;          /*  8  of the chip */
    uint16_t classWord;         /* 10  base class and sub-class */
    uint32_t baseAddresses[4];  /* 12  zero on a driver below 7.05.03 */
    uint16_t pciCommand;        /* 28  command register; zero on a driver below 7.05.03 */
    uint16_t pciStatus;         /* 30  status register */
    uint8_t reserved32[16];     /* 32  not written */
    uint16_t linkCapabilities;  /* 48  bits 0..3 highest speed, 4..9 highest width */
    uint16_t linkStatus;        /* 50  bits 0..3 current speed, 4..9 current width */
    uint32_t busLocation;       /* 52  bus number x 256 + device number */
    uint8_t functionBits;       /* 56  PCI function number in the top three bits */
    uint8_t flashRegionFlag;    /* 57  not 0: flashRegionCode holds */
    uint8_t flashRegionCode;    /* 58  the port's own NVRAM or VPD flash region */
    uint8_t reserved59[21];     /* 59  not written */
} HX_CHIP_PROPERTY;

/* Driver properties, 74 bytes. A driver below 7.05.03 gives fixed values from byte 32 on; its
   bytes 70..73 stay as the caller had them. */
typedef struct HX_DRIVER_PROPERTY {
    char version[32];             /*  0  text */
    uint16_t driverModel;         /* 32  1 = miniport of a current system, 8 = of an older one */
    uint16_t driverModelRevision; /* 34  as the driver gives it; 0 below 7.05.03 */
    uint16_t maxScatterGather;    /* 36  elements of one request */
    uint64_t maxTransferLength;   /* 38  bytes of one request */
    uint16_t maxQueueDepth;       /* 46  as the driver gives it; 0 below 7.05.03 */
    uint16_t interruptMode;       /* 48  0 = line, 1 = MSI, 2 = MSI-X */
    uint32_t numberOfPorts;       /* 50  as in HX_NODE_PROPERTY */
    uint8_t buildText[16];        /* 54  text, not terminated when 16 characters long; empty
                                         below 7.05.03 */
    uint32_t buildNumber;         /* 70  as the driver gives it */
} HX_DRIVER_PROPERTY;

/* Firmware properties, 40 bytes. */
typedef struct HX_FIRMWARE_PROPERTY {
    char version[32];              /*  0  text, dotted decimal */
    uint32_t attributes;           /* 32  attribute word of the firmware; 0 on a driver below
                                          7.05.03 */
    uint32_t activationAttributes; /* 36  the word an online activation compares; left as the caller
                                          had it on a driver below 7.05.03 */
} HX_FIRMWARE_PROPERTY;

/* One SCSI port as the registry describes it, 264 bytes. */
typedef struct HX_SCSI_PORT {
    uint32_t scsiPort;     /*   0  number of the port, 0 to 63 */
    uint32_t familyDriver; /*   4  1 when the driver service is one of the family's, else 0 */
    char driver[256];      /*   8  name of the driver service, always terminated; empty when the
                                   registry names none, or one of more than 255 characters */
} HX_SCSI_PORT;

/* One asynchronous event, 16 bytes. */
typedef struct HX_EVENT {
    uint32_t type;    /*  0  HX_EVENT_... */
    uint32_t data[3]; /*  4  as the driver gives it; HX_EVENT_RSCN: data[0] = affected
                             N_Port page (FC-LS) */
} HX_EVENT;

/* Types of events; the driver may give others. */
enum HX_EVENT_TYPE {
    HX_EVENT_LIP = 1,         /* loop initialisation occurred */
    HX_EVENT_LINK_UP = 2,     /* the link came up */
    HX_EVENT_LINK_DOWN = 3,   /* the link went down */
    HX_EVENT_LIP_RESET = 4,   /* loop reset occurred */
    HX_EVENT_RSCN = 5,        /* registered state change notification */
    HX_EVENT_PORT_UPDATE = 6, /* the list of discovered ports changed */
    HX_EVENT_TEST = 8         /* raised by HXForceZetaAEN */
};

#pragma pack(pop)

/* ------------------------------------------------------------------------------------------------
 * Library, handles, discovery
 * --------------------------------------------------------------------------------------------- */

/*
 * Opens the adapter that is the adapterIndex-th (from 0) of the family among SCSI ports 0 to 63, in
 * ascending port order, and stores its handle (1 to 63) in *outHandle. Each call probes the ports
 * anew, so adapters that come and go are seen at once.
 * Statuses: HXMGT_DEVICE_NOT_FOUND index beyond the adapters found (*outHandle is not written), or
 * no security descriptor or event mutex; HXMGT_INVALID_HANDLE no free record;
 * HXMGT_MUTEX_NOT_RESERVED; HXMGT_INCOMPATIBLE_VERSION the driver rejected a probe;
 * HXMGT_INVALID_PARAMETER outHandle is null; or the Windows error of the open.
 * *outHandle is 0 after a failure that came once the port was found and a record was chosen.
 */
HX_STATUS HXOpenDevice(uint32_t adapterIndex, uint32_t* outHandle);

/*
 * Lists the SCSI ports 0 to 63 that the registry knows, in ascending order. The registry alone is
 * read: no port is opened and no driver asked, so a port whose driver hangs is listed at once. A
 * driver of another name may serve an adapter of the family too; only asking tells
 * (IsKorvexAdapter). *count is the room of ports in records and takes the number of ports there
 * are; ports may be null when it is 0. Statuses: HXMGT_BUFFER_TOO_SMALL more ports than room, as
 * many as fit are written; HXMGT_INVALID_PARAMETER.
 */
HX_STATUS HXListScsiPorts(HX_SCSI_PORT* ports, uint32_t* count);

/*
 * Opens the adapter at a SCSI port (0 to 63) and stores its handle in *outHandle. No other port is
 * asked, so one that hangs does not matter. The handle is as good as one of HXOpenDevice, but its
 * dwAdapterIndex is HX_ADAPTER_NOT_COUNTED until HXEnableAen counts the adapters before it.
 * Statuses: HXMGT_INVALID_PARAMETER outHandle is null or scsiPort above 63 (*outHandle is not
 * written); HXMGT_INVALID_HANDLE no free record; HXMGT_MUTEX_NOT_RESERVED;
 * HXMGT_INCOMPATIBLE_VERSION the driver rejected a probe; or the Windows error of the open, such as
 * 2 for a port that is not there. *outHandle is 0 after a failure that came once a record was
 * chosen.
 */
HX_STATUS HXOpenScsiPort(uint32_t scsiPort, uint32_t* outHandle);

/* Closes a handle and its trace file. Status: HXMGT_INVALID_HANDLE. */
HX_STATUS HXCloseDevice(int32_t handle);

/* The first of the HX_MAX_HANDLE_RECORDS records of the handle table; index it by handle. */
HXMGT_API_HANDLE* HXGetGlobalDevice(void);

/*
 * Writes "1.28.0.197 VXMGMT.DLL", at most length characters, with a terminating zero in
 * buffer[length - 1]. Returns HX_VERSION_PACKED, not a status; a null buffer or a length of 0
 * writes nothing.
 */
uint32_t HXGetVersion(char* buffer, uint32_t length);

/*
 * Resolves a Windows device name ("PhysicalDrive0" or "\\.\PhysicalDrive0") to its
 * STORAGE_DEVICE_NUMBER record, written to out (12 bytes; outLength is its room in bytes).
 * Every call keeps one handle of the device open until the process ends. Statuses:
 * HXMGT_INVALID_PARAMETER (null or empty name, or one of more than 255 characters), or the Windows
 * error.
 */
HX_STATUS HXGetDeviceNumber(const char* name, void* out, uint32_t outLength);

/*
 * Deletes the persistent registry key of the port portName (8 bytes) under the driver service
 * "vx" + driverSuffix. handle is not used. confirm must not be 0.
 * Statuses: HXMGT_INVALID_PARAMETER, HXMGT_DEVICE_NOT_FOUND no such key, HXMGT_REGISTRY_INVALID the
 * key could not be deleted.
 */
HX_STATUS HXRemoveDevice(uint32_t handle, const uint8_t* portName, const char* driverSuffix,
                         int32_t confirm);

/*
 * The driver service name of a SCSI port (empty when the registry names none) when the port carries
 * an adapter of the family, else null. mode is accepted and ignored. The text stands in a buffer of
 * the calling thread that its next call overwrites.
 */
const char* IsKorvexAdapter(uint32_t port, uint32_t mode);

/* Kind of driver behind a handle: 0 or 1, or 2 when the driver cannot be asked. */
uint8_t GetDriverType(uint32_t handle);

/*
 * Text of any status. Constant, or in a 256-byte buffer of the calling thread that its next call
 * overwrites; neither free nor keep it. Windows error codes give the system's own text.
 */
const char* HXGetErrorString(HX_STATUS status);

/* HXMGT_SUCCESS when the firmware properties can be read, else HXMGT_FIRMWARE_STATE_INVALID. */
HX_STATUS HXVerifyHbaState(uint32_t handle);

/*
 * Copies the adapter's model name to record + 68: up to and including the first blank, then a zero;
 * at most 12 bytes, without terminator when none of them is a blank. record needs 81 bytes.
 * Statuses: those of HXGetHbaDeviceNodeProperty.
 */
HX_STATUS VXUpdateAdapterModelInBios(uint32_t handle, uint8_t* record);

/*
 * Parameters of the driver behind a handle: the name=value texts of its service's registry string,
 * which the driver reads at its next start; all adapters of that driver share them. Letter case of
 * names does not count. value takes the text with its terminator (valueSize is its room in bytes);
 * a null value removes the parameter. Statuses: HXMGT_DEVICE_NOT_FOUND no such parameter, or the
 * registry names no driver; HXMGT_BUFFER_TOO_SMALL; HXMGT_INVALID_PARAMETER a name or value that is
 * empty or holds a blank, ';' or (a name) '='; HXMGT_REGISTRY_INVALID the string could not be
 * written, or is not a text.
 */
HX_STATUS HXGetDriverParameter(uint32_t handle, const char* name, char* value, uint32_t valueSize);
HX_STATUS HXSetDriverParameter(uint32_t handle, const char* name, const char* value);

/* ------------------------------------------------------------------------------------------------
 * Trace
 * --------------------------------------------------------------------------------------------- */

/*
 * Starts appending the handle's trace to the file path, or ends it when path is null. *handle is
 * the device handle. level is kept in dwTraceLevel; every level traces everything. Other threads
 * may use the handle meanwhile. Statuses: HXMGT_INVALID_HANDLE, or the Windows error of the file.
 */
HX_STATUS HXEnableDebugTrace(const uint32_t* handle, const char* path, uint32_t level);

/*
 * Writes one trace line: "%s(%04d): " with the file name of sourceFile and line, then format with
 * its arguments. stream must belong to the C runtime this library uses (a handle's pTraceFile
 * does). Returns the number of characters written, or a negative number.
 */
int HXfprintf(const char* sourceFile, uint32_t line, FILE* stream, const char* format, ...);

/* ------------------------------------------------------------------------------------------------
 * Driver requests
 * --------------------------------------------------------------------------------------------- */

/*
 * Sends one extended request (SRB_IO_CONTROL + EXT_IOCTL over IOCTL_SCSI_MINIPORT). input and
 * output may be the same buffer. *returned takes the number of reply bytes copied to output; for
 * the NVRAM write code it is read first, as that request's flag. returned may be null. With a
 * sub-code (subCode; 0 is none), a flash read takes its place in the flash from input and a flash
 * write from output: two 16-bit words, or two 32-bit words for sub-code 0xFFFF (a write: 0xFFFD
 * on), also where that length is 0. Statuses: HXMGT_INVALID_PARAMETER a null buffer with a length
 * or a place cut short, HXMGT_OUT_OF_MEMORY, and rule 5.
 */
HX_STATUS SRBWithHeaderDeviceIoControl(uint32_t handle, uint32_t code, uint16_t subCode,
                                       const void* input, uint32_t inputLength, void* output,
                                       uint32_t outputLength, uint32_t* returned);

/*
 * Sends one plain request (SRB_IO_CONTROL only) with the bytes of input, as drivers below 7.05.03
 * take them. On success always outputLength bytes are written to output, zeros where the driver
 * filled nothing.
 */
HX_STATUS SendMiniPortControl(int32_t handle, uint32_t code, const void* input,
                              uint32_t inputLength, void* output, uint32_t outputLength);

/* ------------------------------------------------------------------------------------------------
 * Adapter and port properties
 *
 * Every query fills the caller's record; after a failure the record may be partly written.
 * --------------------------------------------------------------------------------------------- */

/* Properties of the adapter that the handle's port is on. */
HX_STATUS HXGetHbaDeviceNodeProperty(uint32_t handle, HX_NODE_PROPERTY* record);

/* The same after the driver has read the adapter anew (driver 7.05.03 on). */
HX_STATUS HXGetHbaDeviceNodePropertyResync(uint32_t handle, HX_NODE_PROPERTY* record);

/*
 * Port properties: the second version, or the first when the driver does not know the second. A
 * handle has one port; port is accepted for callers that number them and is not sent.
 */
HX_STATUS HXGetHbaDevicePortProperty(uint32_t handle, uint64_t port, HX_PORT_PROPERTY* record);
HX_STATUS HXGetHbaDevicePortPropertyV1(uint32_t handle, uint16_t port, HX_PORT_PROPERTY* record);
/* HXMGT_INVALID_SUBCODE on a driver that does not know the second version. */
HX_STATUS HXGetHbaDevicePortPropertyV2(uint32_t handle, uint64_t port, HX_PORT_PROPERTY* record);

/* PCI identity of the adapter's chip. */
HX_STATUS HXGetHbaDeviceChipProperty(uint32_t handle, HX_CHIP_PROPERTY* record);

/* Properties of the driver, and of the firmware that the port runs. */
HX_STATUS HXGetHbaDeviceDriverProperty(uint32_t handle, HX_DRIVER_PROPERTY* record);
HX_STATUS HXGetHbaDeviceFirmwareProperty(uint32_t handle, HX_FIRMWARE_PROPERTY* record);

/* 0 enabled, HXMGT_PORT_DISABLED disabled, HXMGT_INVALID_REQUEST when the driver cannot tell. */
HX_STATUS HXGetHbaPortDisableInfo(uint32_t handle);

/* SmartSAN switch of the driver service, for all its adapters; it takes effect at the next start of
   the driver. The status query always returns 0 and writes 1 (on) or 0 to *enabled. A failed write
   gives HXMGT_REGISTRY_INVALID. */
HX_STATUS HXGetSmartSANStatusFC(uint32_t handle, uint8_t* enabled);
HX_STATUS HXEnableSmartSANFC(uint32_t handle);
HX_STATUS HXDisableSmartSANFC(uint32_t handle);

/* ------------------------------------------------------------------------------------------------
 * Asynchronous events (driver 7.05.03 on, else HXMGT_NOT_SUPPORTED)
 *
 * The driver hands each event out once; the library passes it on to every process and handle that
 * enabled events for the adapter. Eight processes at a time hold an event slot, from loading the
 * library to unloading it; a ninth can enable but not fetch. The slot of a process that was killed
 * goes to the next that loads the library and finds none free. A handle's queue keeps the newest 31
 * events. Handles from 1 to 64 are looked at without a check that they are open; a number above 64
 * gives HXMGT_INVALID_HANDLE.
 * --------------------------------------------------------------------------------------------- */

/*
 * A handle of HXOpenScsiPort gets its adapter index here, at its first call: the adapters at the
 * ports before it are counted, which asks each of these ports once and may block for up to about 80
 * seconds per port whose driver reports busy. HXMGT_DEVICE_NOT_FOUND: the port itself is no longer
 * one of the family's, or its event mutex cannot be made.
 */
HX_STATUS HXEnableAen(uint32_t handle);

/* Does nothing for a handle of HXOpenScsiPort that never enabled events. */
HX_STATUS HXDisableAen(uint32_t handle);

/*
 * Fetches up to bufferBytes / 16 events (HX_EVENT) and stores their number in *count. Returns at
 * once when there is none. HXMGT_DEVICE_BUSY: this process has no event slot, or the adapter's
 * event mutex was not free within 30 seconds. HXMGT_INVALID_REQUEST: a handle of HXOpenScsiPort on
 * which events were never enabled.
 */
HX_STATUS HXGetAen(uint32_t handle, uint8_t* buffer, uint32_t bufferBytes, uint32_t* count);

/* Asks the driver to raise a test event. */
HX_STATUS HXForceZetaAEN(int32_t handle);

#ifdef __cplusplus
}
#endif

/* The rest of the interface, by subject. */
#include "hxdumps.h"
#include "hxfabric.h"
#include "hxflash.h"
#include "hxhealth.h"
#include "hxmapping.h"
#include "hxpassthru.h"
#include "hxpersist.h"
#include "hxstatistics.h"

#endif /* HXMGTAPI_H */
