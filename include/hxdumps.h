/*
 * hxdumps.h - firmware dumps.
 * Part of the management API: include hxmgtapi.h, which states the rules of the whole interface.
 *
 * Copyright (c) 2026 The VXMGMT developers. MIT licence, see LICENSE.
 */
#ifndef HXDUMPS_H
#define HXDUMPS_H

#include <stdint.h>

#include "hxtypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------------------------------
 * Firmware dumps
 *
 * HXMGT_DATA_UNDERRUN: the driver gives a piece without data, or 1000 in a row that are smaller
 * than asked for.
 * --------------------------------------------------------------------------------------------- */

/* Makes the firmware dump now. */
HX_STATUS HXForceFwDump(uint32_t handle);

/*
 * Fetches a dump. buffer: bytes 0..3 hold the capacity in bytes on entry and the size of the dump
 * on return; bytes 8..47 take the dump's attributes; the dump stands from byte 72. The caller
 * provides 72 + capacity bytes; the first capacity bytes are cleared first.
 * HXMGT_BUFFER_TOO_SMALL: the size needed is in bytes 0..3. HXMGT_NO_FIRMWARE_DUMP: the size is 0.
 */
HX_STATUS HXGetFcDumpRaw(uint32_t handle, uint64_t reserved, void* buffer);
HX_STATUS HXGetMpiDumpRaw(uint32_t handle, uint64_t reserved, void* buffer);

/* Fetches a dump into buffer; *size is its room in bytes, then the size of the dump. */
HX_STATUS HXGetFcMctpDump(uint32_t handle, uint64_t reserved, void* buffer, uint32_t* size);
HX_STATUS HXGetMiniDump(uint32_t handle, uint64_t reserved, void* buffer, uint32_t* size);

/*
 * Writes the firmware dump as text to the file fileName. option is accepted and not used.
 * HXMGT_NOT_SUPPORTED: no text form for this chip; HXMGT_INCOMPATIBLE_VERSION: the dump's format is
 * too old; HXMGT_DUMP_FILE_NOT_OPENED; HXMGT_DATA_UNDERRUN: the dump ends early (the text holds
 * what there was).
 */
HX_STATUS HXGetFcDump(uint32_t handle, uint16_t option, const char* fileName);

#ifdef __cplusplus
}
#endif

#endif /* HXDUMPS_H */
