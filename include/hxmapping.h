/*
 * hxmapping.h - which device of the operating system a logical unit of a target is, and which
 * volumes live on it.
 * Part of the management API: include hxmgtapi.h, which states the rules of the whole interface.
 *
 * The operating system addresses a logical unit by SCSI port, bus, target and LUN; the SCSI port is
 * the handle's (dwScsiPort), bus and target are those of the discovered port (HX_DISCOVERED_PORT).
 * All answers are the operating system's at the time of the call, which has to ask each of its
 * devices: whoever wants to know about many logical units takes HXListOsDevices and
 * HXListDiskVolumes, once, instead of a call for each. Devices that it refuses to tell
 * about are passed over; LUNs above 255 have no such address.
 *
 * Lists: *count is the room in records on entry and the true number on return;
 * HXMGT_BUFFER_TOO_SMALL when not all of them fitted (the first ones are written). With a room of 0
 * the list may be null. After any other failure *count means nothing.
 *
 * Copyright (c) 2026 The VXMGMT developers. MIT licence, see LICENSE.
 */
#ifndef HXMAPPING_H
#define HXMAPPING_H

#include <stdint.h>

#include "hxpassthru.h"
#include "hxtypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* What a device of the operating system is, and how it is called. */
enum HX_OS_DEVICE_TYPE {
    HX_OS_DEVICE_DISK = 1,   /* "\\.\PhysicalDrive%d" */
    HX_OS_DEVICE_TAPE = 2,   /* "\\.\Tape%d" */
    HX_OS_DEVICE_CHANGER = 3 /* "\\.\Changer%d" */
};

#pragma pack(push, 1)

/* A logical unit as the operating system and the adapter know it, 72 bytes. */
typedef struct HX_OS_DEVICE {
    char name[32];       /*  0  opens the device; terminated */
    uint32_t type;       /* 32  HX_OS_DEVICE_... */
    uint32_t number;     /* 36  device number: of a disk the one that HX_DISK_EXTENT names */
    uint16_t scsiPort;   /* 40  number of the SCSI port (HX_SCSI_PORT) that it is behind */
    uint16_t bus;        /* 42  of its SCSI address, at most 255 */
    uint16_t target;     /* 44  of its SCSI address, at most 255 */
    uint16_t lun;        /* 46  of its SCSI address, at most 255 */
    uint8_t nodeName[8]; /* 48  of the discovered port at bus and target; zero when there is none */
    uint8_t portName[8]; /* 56  of the same port; zero when there is none */
    uint8_t portId[3];   /* 64  domain, area, port; zero when there is none */
    uint8_t discovered;  /* 67  1: the adapter knows a port at bus and target; else 0 */
    uint8_t reserved[4]; /* 68  zero */
} HX_OS_DEVICE;

/* A volume that lives, in part or whole, on a disk, 344 bytes. */
typedef struct HX_VOLUME {
    char name[64];          /*   0  "\\?\Volume{...}\", terminated */
    char path[260];         /*  64  the first place it is mounted at, "E:\" or a folder, terminated;
                                    empty when there is none or it is longer */
    uint32_t extents;       /* 324  stretches of disk that the volume consists of */
    uint32_t extentsOnDisk; /* 328  those of them on this disk */
    uint32_t reserved;      /* 332  zero */
    uint64_t bytesOnDisk;   /* 336  length of these stretches together */
} HX_VOLUME;

/* A stretch of disk, 24 bytes. */
typedef struct HX_DISK_EXTENT {
    uint32_t disk;     /*  0  device number: N of "\\.\PhysicalDriveN" */
    uint32_t reserved; /*  4  zero */
    uint64_t offset;   /*  8  first byte on the disk */
    uint64_t length;   /* 16  bytes */
} HX_DISK_EXTENT;

/* A disk that a volume lives on, 352 bytes. */
typedef struct HX_DISK_VOLUME {
    uint32_t disk;     /*  0  device number: N of "\\.\PhysicalDriveN" */
    uint32_t reserved; /*  4  zero */
    HX_VOLUME volume;  /*  8  with what of it is on this disk */
} HX_DISK_VOLUME;

#pragma pack(pop)

/*
 * The operating system's device of a logical unit, and the volumes on it (a tape or changer has
 * none). target names a discovered port, or bus and target numbers, and the LUN. device may be
 * null. Statuses: HXMGT_INVALID_PARAMETER the type of target's address is none;
 * HXMGT_DEVICE_NOT_FOUND the port is not discovered, or the operating system has no device for the
 * logical unit.
 */
HX_STATUS HXMapScsiTargetToVolumes(uint32_t handle, const HX_SCSI_ADDRESS* target,
                                   HX_OS_DEVICE* device, HX_VOLUME* volumes, uint32_t* count);

/*
 * The logical units behind the handle's port that a volume lives on. volume is a drive ("E:" or
 * "E:\"), a folder that a volume is mounted at, or a volume name ("\\?\Volume{...}\"), at most 259
 * characters. Statuses: HXMGT_INVALID_PARAMETER null, empty or too long; HXMGT_DEVICE_NOT_FOUND the
 * volume is on no disk of this port; or the Windows error of the volume.
 */
HX_STATUS HXMapVolumeToScsiTarget(uint32_t handle, const char* volume, HX_OS_DEVICE* devices,
                                  uint32_t* count);

/* The stretches of disk (extents) that a volume consists of, of whatever adapter. Statuses as
 * above. */
HX_STATUS HXGetDiskExtents(const char* volume, HX_DISK_EXTENT* extents, uint32_t* count);

/*
 * Every disk, tape and changer of the operating system that has a SCSI address, of whatever
 * adapter, ascending by SCSI port, bus, target and LUN. Nothing is said of remote ports (discovered
 * is 0): they are those at bus and target in the port database. No adapter is asked. Statuses: or
 * the Windows error of the list of devices.
 */
HX_STATUS HXListOsDevices(HX_OS_DEVICE* devices, uint32_t* count);

/*
 * Every volume with each disk that it lives on: a record for each pair, of whatever adapter. A
 * volume that does not tell, such as an empty drive, is on no disk.
 */
HX_STATUS HXListDiskVolumes(HX_DISK_VOLUME* volumes, uint32_t* count);

#ifdef __cplusplus
}
#endif

#endif /* HXMAPPING_H */
