/*
 * hxflash.h - flash of an adapter: update lock, option ROM, NVRAM, VPD, transceiver, firmware.
 * Part of the management API: include hxmgtapi.h, which states the rules of the whole interface.
 *
 * Firmware and boot code belong to the adapter (all ports with one serial number), NVRAM, VPD and
 * transceiver to the port. An update goes: HXStartFlashUpdate, the writes,
 * HXSendFlashUpdateFWAttributes and HXOnlineActivateFlashUpdate (or HXReloadNvramAndInitFw),
 * HXEndFlashUpdate. Calls that write the same adapter must not run at the same time.
 *
 * Copyright (c) 2026 The VXMGMT developers. MIT licence, see LICENSE.
 */
#ifndef HXFLASH_H
#define HXFLASH_H

#include <stdint.h>

#include "hxtypes.h"

#ifdef __cplusplus
extern "C" {
#endif

#define HX_MAX_FLASH_REGIONS 255    /* most regions of a flash */
#define HX_NVRAM_CLASSIC_BYTES 256  /* block of 16-bit words */
#define HX_NVRAM_EXTENDED_BYTES 512 /* block of 32-bit words: newer chips */
#define HX_NVRAM_VARIABLES 188      /* number of NVRAM variables, of any chip */

/* Flash regions by their codes. Older chips, and second banks, have VPD and NVRAM under other
   codes, too. */
enum HX_FLASH_REGION_CODE {
    HX_REGION_FIRMWARE = 1,          /* firmware of the adapter */
    HX_REGION_BOOT_CODE = 7,         /* PCI expansion ROM images */
    HX_REGION_BOOT_CODE_SECOND = 17, /* copy of the boot code on some chips */
    HX_REGION_VPD_0 = 20,            /* VPD of PCI function 0 */
    HX_REGION_NVRAM_0 = 21,          /* NVRAM of PCI function 0 */
    HX_REGION_VPD_1 = 22,            /* VPD of PCI function 1 */
    HX_REGION_NVRAM_1 = 23,          /* NVRAM of PCI function 1 */
    HX_REGION_VPD_2 = 212,           /* VPD of PCI function 2 */
    HX_REGION_NVRAM_2 = 213,         /* NVRAM of PCI function 2 */
    HX_REGION_VPD_3 = 214,           /* VPD of PCI function 3 */
    HX_REGION_NVRAM_3 = 215          /* NVRAM of PCI function 3 */
};

#pragma pack(push, 1)

/* One region of the flash, 8 bytes. */
typedef struct HX_FLASH_REGION {
    uint32_t code; /* 0  region code in the low 16 bits, region flags in bits 16 to 23 */
    uint32_t size; /* 4  bytes */
} HX_FLASH_REGION;

/* Table of the flash regions; a caller with less room may end it after any region. */
typedef struct HX_FLASH_LAYOUT {
    uint32_t size;  /* 0  size of the driver's table in bytes */
    uint32_t count; /* 4  in: regions there is room for; out: regions of the flash */
    HX_FLASH_REGION regions[HX_MAX_FLASH_REGIONS]; /* 8  as many as count says */
} HX_FLASH_LAYOUT;

/* One region as the extended table describes it, 16 bytes. */
typedef struct HX_FLASH_REGION_EX {
    uint16_t code;     /*  0  region code */
    uint8_t flags;     /*  2  HX_REGION_FLAG_... */
    uint8_t reserved3; /*  3  not written */
    uint32_t size;     /*  4  bytes */
    uint32_t start;    /*  8  as the driver gives it: first byte of the region in the flash */
    uint32_t end;      /* 12  as the driver gives it: last byte of the region */
} HX_FLASH_REGION_EX;

#define HX_REGION_FLAG_SECURE 1u /* the region that secure updates go through */

/* The extended table of the flash regions; it may end after any region, too. */
typedef struct HX_FLASH_LAYOUT_EX {
    uint32_t size;  /* 0  size of the driver's table in bytes */
    uint32_t count; /* 4  in: regions there is room for; out: regions of the flash */
    HX_FLASH_REGION_EX regions[HX_MAX_FLASH_REGIONS]; /* 8  as many as count says */
} HX_FLASH_LAYOUT_EX;

/* Head of the record of HXOrvoMgt, 16 bytes; the data follows it. */
typedef struct HX_COMPANION_REQUEST {
    uint32_t flags;     /*  0  operation flags, handed to the companion chip */
    uint32_t totalSize; /*  4  update: bytes of data; information: bytes that came (out) */
    uint32_t version;   /*  8  version query: the version (out) */
    uint32_t capacity;  /* 12  information: room for data, in bytes */
} HX_COMPANION_REQUEST;

/* Where an NVRAM variable stands in its block, 4 bytes. */
typedef struct HX_VARIABLE_FIELD {
    uint16_t firstBit; /*  0  bit 0 is the lowest bit of the block's first byte */
    uint16_t width;    /*  2  bits; 0: the chip has no such variable */
} HX_VARIABLE_FIELD;

#pragma pack(pop)

/* What HXOrvoMgt does. */
enum HX_COMPANION_OPERATION {
    HX_COMPANION_RESET = 1,      /* starts the companion chip anew */
    HX_COMPANION_VERSION = 2,    /* reads its version */
    HX_COMPANION_UPDATE = 3,     /* writes its firmware */
    HX_COMPANION_INFORMATION = 4 /* reads its management information */
};

/* Parts of the NVRAM that HXGetNVRam and HXUpdateNVRam work on. */
enum HX_NVRAM_MODE {
    HX_NVRAM_BLOCK = 1,    /* read or write the block */
    HX_NVRAM_VERIFIED = 2, /* read: the block, its checksum verified; write: the settings alone */
    HX_NVRAM_RESTART = 3   /* write: the block, and have the driver take it over */
};

/* ------------------------------------------------------------------------------------------------
 * Update control
 * --------------------------------------------------------------------------------------------- */

/*
 * Takes the update lock of the adapter. All processes and all ports of the adapter share it; the
 * taker itself is refused, too, while it is held. It is freed by HXEndFlashUpdate, at the latest
 * after 15 minutes, and when the process ends or unloads the library; after more than 900 seconds
 * another start takes it over. *lockKey takes the key for the end (the process ID), 0 when it is
 * refused. The lock is advisory: two starts at the same instant may both succeed. Statuses:
 * HXMGT_SESSION_IN_PROGRESS held; HXMGT_OUT_OF_MEMORY no lock for this adapter (256 adapters have
 * one, or its serial number cannot be read; *lockKey is not written).
 */
HX_STATUS HXStartFlashUpdate(uint32_t handle, uint64_t reserved, uint32_t* lockKey);

/* Gives the lock back; lockKey is the key of its start, and any process with it may.
   HXMGT_INVALID_REQUEST: not held, or held with another key. */
HX_STATUS HXEndFlashUpdate(uint32_t handle, uint64_t reserved, uint32_t lockKey);

/*
 * *capabilities is 4 when the adapter activates updates online (secure-flash chip,
 * firmware 9.1.16.20 or newer), else 0 with HXMGT_NOT_SUPPORTED. From then on, updates of firmware
 * and boot code through this handle need the update lock.
 */
HX_STATUS HXGetFlashUpdateCapabilities(uint32_t handle, uint64_t reserved, uint64_t* capabilities);

/*
 * The 6 bytes that tell which flash regions are in use; regions[2] is 2 for the second bank of
 * NVRAM and VPD. They are written also when the query fails. HXMGT_NOT_SUPPORTED: no secure-flash
 * chip; HXMGT_PORT_DISABLED: nothing is asked and nothing written.
 */
HX_STATUS HXGetActiveRegions(uint32_t handle, uint64_t reserved, uint8_t* regions);

/* The firmware's 64 bytes of lockdown state. 0, or HXMGT_FIRMWARE_LOCKDOWN (state is written, too),
   or HXMGT_NOT_SUPPORTED for any failure. */
HX_STATUS HXGetAdapterLockdownState(uint32_t handle, uint64_t reserved, uint8_t* state);

/*
 * Notes in the handle's record what an online activation expects: the firmware attribute word
 * (firmwareAttributes), and the seconds that the activation of this port may take (timeoutSeconds,
 * 0 = any). Always returns 0; a handle above
 * 64 notes nothing, others are not checked.
 */
HX_STATUS HXSendFlashUpdateFWAttributes(uint32_t handle, uint64_t reserved,
                                        uint64_t firmwareAttributes, uint32_t timeoutSeconds);

/*
 * Activates the written firmware on every port of the adapter that this process has open.
 * HXMGT_FLASH_UPDATE_NOT_ACTIVATED: the firmware's attribute word is not the expected one;
 * HXMGT_ACTIVATION_TIMED_OUT: a port took longer than its allowance, later ones are not activated.
 */
HX_STATUS HXOnlineActivateFlashUpdate(uint32_t handle);

/* Reads NVRAM anew and restarts the port's firmware. */
HX_STATUS HXReloadNvramAndInitFw(uint32_t handle);

/* ------------------------------------------------------------------------------------------------
 * Option ROM
 *
 * Buffers and images are bytes of the flash; boot code is a chain of PCI expansion ROM images in
 * the standard PCI firmware format. Driver 7.05.03.
 * --------------------------------------------------------------------------------------------- */

/*
 * The regions of the flash. layout may be null to ask only whether there are any. A table that does
 * not fit gives HXMGT_BUFFER_TOO_SMALL and the true count, and writes nothing else.
 */
HX_STATUS HXGetOptionRomLayout(uint32_t handle, uint64_t reserved, HX_FLASH_LAYOUT* layout);
HX_STATUS HXGetOptionRomLayoutEx(uint32_t handle, uint64_t reserved, HX_FLASH_LAYOUT_EX* layout);

/*
 * Reads the whole flash of a chip without regions (128 KiB) into buffer.
 * HXMGT_CALLER_BUFFER_TOO_SMALL; HXMGT_INVALID_REQUEST: this chip is read by region.
 */
HX_STATUS HXGetOptionRom(uint32_t handle, uint64_t reserved, void* buffer, uint32_t bufferSize);

/*
 * Reads the region with the code regionCode; bufferSize is at least its size. A region above 64 KiB
 * comes in whole KiB: what follows its end in the last one is written, too, as far as bufferSize
 * goes. HXMGT_OPTION_ROM_REGION_INVALID: no such region; HXMGT_OPTION_ROM_SIZE_TOO_BIG: it is
 * larger than the buffer.
 */
HX_STATUS HXGetOptionRomEx(uint32_t handle, uint64_t reserved, void* buffer, uint32_t bufferSize,
                           uint32_t regionCode);

/*
 * Reads to buffer, or writes from data, length bytes from flashOffset on, without any check of what
 * they are. Newer chips
 * need an offset that is a multiple of 256 (HXMGT_INVALID_PARAMETER).
 */
HX_STATUS HXGetOptionRomOffset(uint32_t handle, uint64_t reserved, void* buffer, uint32_t length,
                               uint32_t flashOffset);
HX_STATUS HXUpdateOptionRomOffset(uint32_t handle, uint64_t reserved, const void* data,
                                  uint32_t length, uint32_t flashOffset);

/*
 * Writes the whole flash of a chip without regions. The adapter's own subsystem vendor ID and NVRAM
 * block are first carried over into image, which is changed in place with its checksum.
 * HXMGT_OPTION_ROM_CHECKSUM_ERROR: image tells a length that it does not have; nothing is written.
 */
HX_STATUS HXUpdateOptionRom(uint32_t handle, uint64_t reserved, void* image, uint32_t imageSize);

/*
 * Writes image to the region with the code regionCode. Boot code is first prepared as by
 * HXUpdateOptionRom (image is changed in place); firmware of large-ROM chips is checked. Chips with
 * a region layout are served by HXUpdateOptionRomEx2. Nothing is written with
 * HXMGT_OPTION_ROM_REGION_INVALID no such region, HXMGT_OPTION_ROM_SIZE_TOO_BIG,
 * HXMGT_OPTION_ROM_INCOMPATIBLE_FIRMWARE segments that do not fit, HXMGT_OPTION_ROM_CHECKSUM_ERROR.
 */
HX_STATUS HXUpdateOptionRomEx(uint32_t handle, uint64_t reserved, void* image, uint32_t imageSize,
                              uint32_t regionCode);

/*
 * Writes image to the region with the code regionCode, of a chip with a region layout; imageSize
 * must be the region's size, else
 * HXMGT_INVALID_REQUEST. HXMGT_NO_FLASH_UPDATE_TOKEN: the update lock is needed and this process
 * does not hold it. Some regions end with a reset of the adapter's ports;
 * HXMGT_FLASH_UPDATE_NOT_ACTIVATED: written, but a port could not be reset. Where the adapter
 * demands secure updates this is HXUpdateSecureOptionRomEx.
 */
HX_STATUS HXUpdateOptionRomEx2(uint32_t handle, uint64_t reserved, void* image, uint32_t imageSize,
                               uint32_t regionCode);

/* Kept for older callers: always HXMGT_INVALID_REQUEST; handle, image and regionCode are not looked
   at. */
HX_STATUS HXUpdateOptionRomEx3(uint32_t handle, uint64_t reserved, void* image, uint32_t imageSize,
                               uint32_t regionCode);

/*
 * Writes image to the region with the code regionCode, with the adapter checking the image's
 * signature before it takes effect. A
 * failure leaves the old contents in force. HXMGT_OPTION_ROM_INVALID_FIRMWARE: the signature was
 * refused; HXMGT_OPTION_ROM_WRITE_ERROR; those of HXUpdateOptionRomEx2.
 */
HX_STATUS HXUpdateSecureOptionRomEx(uint32_t handle, uint64_t reserved, const void* image,
                                    uint32_t imageSize, uint32_t regionCode);

/*
 * Called before each piece (at most 64 KiB) of a read or write by region or offset, and behind the
 * last one: done of total bytes have been moved. context is that of HXSetFlashProgress. regionCode
 * is 0xFFFF for transfers by offset, among them the look at the flash with which an update of boot
 * code begins, and 255 for the write of a whole flash, which is one piece. Runs on the thread that
 * transfers. 0 goes on; with any other status the transfer ends and returns it, the pieces before
 * having been moved: a region that is being written is then half written. What is returned behind
 * the last piece does not count. Before the first piece of an update the caller's image is what
 * will be written, the adapter's identity carried over; what the function changes in it then is
 * written so. It must not close the handle.
 */
typedef HX_STATUS (*HX_FLASH_PROGRESS)(void* context, uint32_t regionCode, uint32_t done,
                                       uint32_t total);

/*
 * Has progress called, with context, for all transfers through the handle from now on; null ends
 * that, as closing the handle does. Not while a transfer through the handle runs on another thread.
 */
HX_STATUS HXSetFlashProgress(uint32_t handle, HX_FLASH_PROGRESS progress, void* context);

/* ------------------------------------------------------------------------------------------------
 * NVRAM
 *
 * Older chips have a block of HX_NVRAM_CLASSIC_BYTES, large-ROM and region-layout chips one of
 * HX_NVRAM_EXTENDED_BYTES in a flash region of the port. Both begin with "KPU ". On chips with two
 * banks, reads come from the bank in use and writes go to the other one; while the port is
 * disabled, or when it does not tell, the first bank counts as the one in use.
 * --------------------------------------------------------------------------------------------- */

/*
 * Reads the block into buffer; mode is HX_NVRAM_BLOCK or HX_NVRAM_VERIFIED (on drivers
 * below 7.05.03 at least 86 bytes). Statuses: HXMGT_INVALID_PARAMETER mode or size,
 * HXMGT_BUFFER_TOO_SMALL the region is larger, HXMGT_INVALID_REQUEST the port has no NVRAM region.
 */
HX_STATUS HXGetNVRam(uint32_t handle, uint64_t reserved, uint32_t mode, void* buffer,
                     uint32_t size);

/*
 * Writes the block; mode is one of HX_NVRAM_MODE. An extended block (size is that of its region, at
 * least 512) gets its checksum in buffer first; a classic one is the caller's business.
 */
HX_STATUS HXUpdateNVRam(uint32_t handle, uint64_t reserved, uint32_t mode, void* buffer,
                        uint32_t size);

/* 0, or HXMGT_NVRAM_CHECKSUM_INVALID for any failure, a bad handle too. */
HX_STATUS HXVerifyHbaNVRam(uint32_t handle, uint64_t reserved);

/*
 * NVRAM variables 0 to HX_NVRAM_VARIABLES - 1 of a block of the handle's chip: 256 or 512 bytes.
 * Variable 0 is the 4-character signature, first character in the low byte. The value of an unknown
 * variable is 0. Instead of a value, HXMGT_INVALID_HANDLE may come back.
 */
uint32_t HXGetVariableValue(uint32_t handle, const void* block, uint32_t variable);
/* Returns 1 when the block was changed, 0 when the value was there already or is unknown; value is
   cut to the variable's width. */
uint32_t HXSetVariableValue(uint32_t handle, void* block, uint32_t variable, uint32_t value);
/*
 * Where the variables stand in a block of the handle's chip, all with one question to the driver:
 * fields[N] is the place of variable N. *count is the room in records on entry and
 * HX_NVRAM_VARIABLES on return; HXMGT_BUFFER_TOO_SMALL when the room was less (the first ones are
 * written), with a room of 0 the list may be null. After any other failure *count is 0: that of the
 * question for the chip.
 */
HX_STATUS HXGetVariableFields(uint32_t handle, HX_VARIABLE_FIELD* fields, uint32_t* count);
/* What a variable is; null for HX_NVRAM_VARIABLES and above. */
const char* HXGetVariableDescription(uint32_t reserved, uint32_t variable);
/* Not 0 when a variable may not be changed on the chip family of a classic block. */
uint32_t HXIsVariableReadOnly(const void* block, uint32_t variable);

/*
 * Writes the variables of a classic block to the text file path: 188 lines, the signature in
 * quotation marks with its characters as they are. 1, or 0 when it cannot be written.
 */
int32_t WriteNVRamFile(const void* block, const char* path);

/*
 * Reads such a file, path, into a classic block. mode 1 clears the block first. Variables that are
 * read-only on the block's family keep their values unless keepFlag is not 0. A line sets the
 * first variable not yet set whose name it begins with; the number behind its last '=' is cut to
 * the variable's width; lines without a name, an '=' or a number are passed over, as are those that
 * begin with ';'. 1, or 0 when the file cannot be opened (mode 1 has cleared the block then).
 */
int32_t ReadNVRamFile(const char* path, void* block, uint32_t mode, int32_t keepFlag);

/* ------------------------------------------------------------------------------------------------
 * VPD
 *
 * Vital product data (PCI Local Bus), moved as bytes: neither tags nor checksum are looked at.
 * --------------------------------------------------------------------------------------------- */

/*
 * Reads the VPD into buffer. *size is the room in bytes, then the bytes returned, or the bytes
 * needed with HXMGT_BUFFER_TOO_SMALL. HXMGT_INVALID_REQUEST: the port has no VPD region.
 */
HX_STATUS HXGetVpd(uint32_t handle, uint64_t reserved, void* buffer, uint32_t* size);

/* Writes the VPD from buffer; on chips with a VPD region, size must be the region's. */
HX_STATUS HXUpdateVpd(uint32_t handle, uint64_t reserved, void* buffer, uint32_t size);

/* ------------------------------------------------------------------------------------------------
 * Transceiver and auxiliary firmware
 * --------------------------------------------------------------------------------------------- */

/*
 * Reads to buffer, or writes from data, up to 256 bytes at offset of a two-wire device, e.g. the
 * pages 0xA0 and 0xA2 of a transceiver (SFF-8472). options bit 0: no data phase (a write then takes
 * no data, whatever length). *deviceStatus takes the device's status word whatever the result; it
 * may be null.
 */
HX_STATUS HXReadSFPData(uint32_t handle, uint64_t reserved, uint16_t device, void* buffer,
                        uint16_t length, uint16_t offset, uint16_t options, uint16_t* deviceStatus);
HX_STATUS HXWriteSFPData(uint32_t handle, uint64_t reserved, uint16_t device, const void* data,
                         uint16_t length, uint16_t offset, uint16_t options,
                         uint16_t* deviceStatus);

/*
 * Reads the transceiver's memory (SFF-8472) into buffer in one request: the 256 bytes of device
 * 0xA0, then those of device 0xA2. *size is the room in bytes, then the bytes read. Statuses:
 * HXMGT_SFP_DATA_UNAVAILABLE there is no transceiver; HXMGT_SFP_TRANSFER_ERROR.
 */
HX_STATUS HXGetSFPData(uint32_t handle, uint64_t reserved, void* buffer, uint32_t* size);

/*
 * Loads a firmware image into the transceiver. HXMGT_SFP_FIRMWARE_INCOMPATIBLE: not for this
 * transceiver; HXMGT_SFP_FIRMWARE_UPDATE_ERROR: it stopped.
 */
HX_STATUS HXLoadSFPFirmware(uint32_t handle, uint64_t reserved, const void* image,
                            uint32_t imageSize);

/*
 * 0, HXMGT_FLASH_UPDATE_NOT_ACTIVATED when the port boots from the SAN (it cannot be activated
 * online), or HXMGT_BOOT_FROM_SAN_UNKNOWN when the driver cannot tell.
 */
HX_STATUS HXGetBFSInfo(uint32_t handle);

/*
 * Manages the companion chip; operation is one of HX_COMPANION_OPERATION, another one gives
 * HXMGT_INVALID_REQUEST. request is an HX_COMPANION_REQUEST with its data behind it: an update
 * takes totalSize bytes of image (at least 12), the information fills at most capacity bytes.
 */
HX_STATUS HXOrvoMgt(uint32_t handle, uint32_t operation, void* request);

#ifdef __cplusplus
}

/* The NVRAM text file: one variable of a classic block on each line. */
class CNVRamFile {
  public:
    static bool Write(const void* block, const char* path) {
        return WriteNVRamFile(block, path) != 0;
    }
    static bool Read(const char* path, void* block, uint32_t mode, bool keepFlag) {
        return ReadNVRamFile(path, block, mode, keepFlag ? 1 : 0) != 0;
    }
};
#endif

#endif /* HXFLASH_H */
