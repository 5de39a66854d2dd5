/*
 * hxpassthru.h - SCSI, fabric and link service pass-through, diagnostics.
 * Part of the management API: include hxmgtapi.h, which states the rules of the whole interface.
 *
 * Copyright (c) 2026 The VXMGMT developers. MIT licence, see LICENSE.
 */
#ifndef HXPASSTHRU_H
#define HXPASSTHRU_H

#include <stdint.h>

#include "hxtypes.h"

#ifdef __cplusplus
extern "C" {
#endif

#pragma pack(push, 1)

/*
 * Address of a remote port or logical unit, 12 bytes.
 */
typedef struct HX_SCSI_ADDRESS {
    uint16_t type;      /*  0  HX_ADDRESS_... */
    uint8_t address[8]; /*  2  node or port name (8 bytes); port identifier (domain, area, port); or
                               16-bit bus and 16-bit target number */
    uint16_t lun;       /* 10  logical unit number; drivers below 7.05.03 take its low byte */
} HX_SCSI_ADDRESS;

/* What the address of a remote port holds. */
enum HX_ADDRESS_TYPE {
    HX_ADDRESS_NODE_NAME = 1, /* world wide name of a node, 8 bytes */
    HX_ADDRESS_PORT_NAME = 2, /* world wide name of a port, 8 bytes */
    HX_ADDRESS_PORT_ID = 3,   /* domain, area, port */
    HX_ADDRESS_BUS_TARGET = 4 /* two 16-bit numbers: SCSI bus, target */
};

/* How a loopback test ended. */
enum HX_LOOPBACK_COMPLETION {
    HX_LOOPBACK_COMPLETE = 1,      /* the firmware's 0x4000 */
    HX_LOOPBACK_BAD_PARAMETER = 2, /* the firmware's 0x4006 */
    HX_LOOPBACK_COMMAND_ERROR = 3, /* the firmware's 0x400B */
    HX_LOOPBACK_OTHER = 4          /* any other completion of the firmware */
};

/* Result of HXRunDiagLoopback, 48 bytes. */
typedef struct HX_LOOPBACK_RESULT {
    uint16_t completion;  /*  0  HX_LOOPBACK_... */
    uint8_t firmware[30]; /*  2  rest of the firmware's result block */
    uint32_t value32;     /* 32  as the driver gives it */
    uint8_t reserved[4];  /* 36  not written */
    uint64_t value40;     /* 40  as the driver gives it */
} HX_LOOPBACK_RESULT;

/* Result of HXRunDiagLoopbackEx, 12 bytes. */
typedef struct HX_LOOPBACK_EX_RESULT {
    uint16_t completion;  /*  0  HX_LOOPBACK_... */
    uint16_t counters[5]; /*  2  the firmware's: CRC errors, disparity errors, frame length errors,
                                 iterations done (high word), iterations done (low word) */
} HX_LOOPBACK_EX_RESULT;

/* Results of a D-port test as the firmware gives them, 72 bytes. */
typedef struct HX_DPORT_RESULT {
    uint8_t bytes[72]; /* 0  of the firmware's format */
} HX_DPORT_RESULT;

/* The same with results of each lane, 1088 bytes. */
typedef struct HX_DPORT_RESULT_EX2 {
    uint8_t bytes[1088]; /* 0  of the firmware's format */
} HX_DPORT_RESULT_EX2;

#pragma pack(pop)

/* ------------------------------------------------------------------------------------------------
 * SCSI pass-through
 *
 * Commands go to a logical unit of a remote port. A SCSI status other than GOOD is the result
 * (HXMGT_SCSI_...); with HXMGT_SCSI_CHECK_CONDITION the sense data (SPC) is in sense, up to 256
 * bytes. A driver below 7.05.03 finds the target in its list (HXMGT_INVALID_PARAMETER when it is
 * not there), moves at most 4096 bytes of data and gives back bytes 2, 7, 12 and 13 of the sense
 * data in a buffer of at least 14 bytes. dataIn takes what comes in.
 * --------------------------------------------------------------------------------------------- */

/*
 * cdb: 1 to 255 bytes (drivers below 7.05.03: 16). Data goes out when dataOut and its length are
 * given, else comes in; dataIn takes exactly dataInLength bytes after a success. sense may be null.
 */
HX_STATUS HXSendScsiPassThruFC(uint32_t handle, const HX_SCSI_ADDRESS* target, const uint8_t* cdb,
                               uint32_t cdbLength, const void* dataOut, uint32_t dataOutLength,
                               void* dataIn, uint32_t dataInLength, uint8_t* sense,
                               uint32_t senseLength);
/* INQUIRY with an allocation length of at most 255. */
HX_STATUS HXSendScsiInquiryCmdFC(uint32_t handle, const HX_SCSI_ADDRESS* target, void* dataIn,
                                 uint32_t dataInLength, uint8_t* sense, uint32_t senseLength);
/* READ CAPACITY (10). */
HX_STATUS HXSendScsiReadCapacityCmdFC(uint32_t handle, const HX_SCSI_ADDRESS* target, void* dataIn,
                                      uint32_t dataInLength, uint8_t* sense, uint32_t senseLength);
/*
 * REPORT LUNS. Where the target refuses it, LUNs 0 to 7 are asked one by one and the list is made
 * from the answers: HXMGT_BUILT_BY_API (bytes 4..7 of the list stay as they were), or
 * HXMGT_BUFFER_TOO_SMALL with as many entries as fit.
 */
HX_STATUS HXSendScsiReportLunsCmdFC(uint32_t handle, const HX_SCSI_ADDRESS* target, void* dataIn,
                                    uint32_t dataInLength, uint8_t* sense, uint32_t senseLength);

/* Kept for older callers: each returns HXMGT_NOT_SUPPORTED and does nothing. */
HX_STATUS HXSendScsiPassThru(void);
HX_STATUS HXSendScsiInquiryCmd(void);
HX_STATUS HXSendScsiReadCapacityCmd(void);
HX_STATUS HXSendScsiReportLunsCmd(void);
HX_STATUS HXSendElsEcho(void);
HX_STATUS HXRunDportDiag(void);
HX_STATUS HXForceFcMctpDump(void);

/* ------------------------------------------------------------------------------------------------
 * Fabric and link services
 * --------------------------------------------------------------------------------------------- */

/*
 * Sends a Common Transport request (FC-GS) and receives its response, both of at least 8 bytes.
 * HXMGT_MS_NO_RESPONSE: the first 8 bytes of the response are not those of the request.
 * HXMGT_NOT_SUPPORTED on the oldest chip family. A driver below 7.05.03 may give a Windows error.
 */
HX_STATUS HXSendCTPassThru(uint32_t handle, const void* request, uint32_t requestSize,
                           void* response, uint32_t responseSize);

/*
 * Sends an extended link service request (FC-LS) of 1 to 252 bytes to a port, which destination
 * names by port name or identifier. *responseSize is the room of response in bytes and is not
 * changed; the length of the answer is in its payload. option is handed to the driver.
 * HXMGT_ELS_REJECTED: the port answered LS_RJT. Driver 7.05.03.
 */
HX_STATUS HXSendElsPassThru(uint32_t handle, uint64_t reserved, const HX_SCSI_ADDRESS* destination,
                            const void* payload, int32_t payloadSize, void* response,
                            const uint32_t* responseSize, uint8_t option);

/*
 * As HXSendElsPassThru, with the same destination and option, but *responseSize becomes the number
 * of bytes of the answer, and with HXMGT_ELS_REJECTED the response holds the LS_RJT payload (none,
 * when the driver hands on none).
 */
HX_STATUS HXSendElsPassThruEx(uint32_t handle, uint64_t reserved,
                              const HX_SCSI_ADDRESS* destination, const void* payload,
                              int32_t payloadSize, void* response, uint32_t* responseSize,
                              uint8_t option);

/*
 * Sends RNID (FC-LS) to a node or port name, or (destination of type 0) to the attached port, and
 * receives the LS_ACC payload; format is the node identification data format that is asked for. On
 * entry the response may hold a port name in bytes 0..7 and a port identifier (port, area, domain)
 * in bytes 8..10 for the driver; else its first 12 bytes are zero. The last 4 bytes of a reply of
 * responseSize bytes are lost. Driver 7.05.03; not on the oldest chip family.
 */
HX_STATUS HXSendElsRnid(uint32_t handle, const HX_SCSI_ADDRESS* destination, uint8_t format,
                        uint8_t* response, uint32_t responseSize);

/*
 * Reads or sets the SCM management values of the port. settings has 9 bytes: byte 0 the operation
 * flags (bit 3 = read); a read fills bytes 1..8, a set sends byte 1. Driver 7.05.03.
 */
HX_STATUS HXSendSCMMgmt(uint32_t handle, uint64_t reserved, uint8_t* settings);

/* ------------------------------------------------------------------------------------------------
 * Diagnostics
 * --------------------------------------------------------------------------------------------- */

/*
 * Loopback of at most 2048 bytes, as older drivers run it, iterations times; options is handed to
 * the driver, result takes how it ended. After a success both buffers hold what the driver
 * returned: receiveData, and sendData, too.
 */
HX_STATUS HXRunDiagLoopback(uint32_t handle, uint64_t reserved, uint16_t options, void* sendData,
                            uint16_t sendLength, void* receiveData, uint16_t receiveLength,
                            uint16_t iterations, HX_LOOPBACK_RESULT* result);

/*
 * Loopback of the length bytes of sendData, of any length, 64 KiB at a time, each piece iterations
 * times; options is handed to the driver. Each piece's echo goes to the start of receiveData.
 * A driver below 8.01.00 returns 0 without testing and leaves result as it was.
 */
HX_STATUS HXRunDiagLoopbackEx(uint32_t handle, uint64_t reserved, uint16_t options,
                              const void* sendData, uint32_t length, void* receiveData,
                              uint32_t receiveLength, uint32_t iterations,
                              HX_LOOPBACK_EX_RESULT* result);

/* The result of the D-port test (driver 7.05.03, newest chips; else HXMGT_NOT_SUPPORTED). */
HX_STATUS HXRunDportDiagEx(uint32_t handle, uint64_t reserved, HX_DPORT_RESULT* result);
/*
 * The same, the result of each lane among it. HXMGT_DIAGNOSTIC_TEST_RUNNING: only the first 6 bytes
 * are written. On a driver without it the shorter results stand at 2 (16 bits), 4 (32 bits)
 * and 8..71.
 */
HX_STATUS HXRunDportDiagEx2(uint32_t handle, uint64_t reserved, HX_DPORT_RESULT_EX2* result);

/*
 * Sends a raw firmware mailbox command: inCount registers of inRegisters, 1 to 32 (the first is the
 * command); outCount of them come back to outRegisters, 0 to 64, which are written whatever the
 * status. HXMGT_INVALID_REQUEST: a command that only the library's own functions may send.
 */
HX_STATUS HXMailboxPassthru(uint32_t handle, uint64_t reserved, const uint16_t* inRegisters,
                            int16_t inCount, uint16_t* outRegisters, int16_t outCount);

#ifdef __cplusplus
}
#endif

#endif /* HXPASSTHRU_H */
