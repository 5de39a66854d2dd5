/*
 * hxpersist.h - discovered ports, persistent target binding and LUN masking.
 * Part of the management API: include hxmgtapi.h, which states the rules of the whole interface.
 *
 * The driver keeps a list of bound targets and a LUN mask per target. What it works with now is
 * the live state; what it reads at its next start is the store, in the registry under its service
 * key. A flag chooses between the two: writing the store does not tell the driver, and what the
 * driver is told live does not outlive it.
 *
 * The store has no lock: callers that use it from several threads or processes take turns. A write
 * that fails may leave a port's values half written; the next read then gives
 * HXMGT_REGISTRY_INVALID, and a new write mends it.
 *
 * Copyright (c) 2026 The VXMGMT developers. MIT licence, see LICENSE.
 */
#ifndef HXPERSIST_H
#define HXPERSIST_H

#include <stdint.h>

#include "hxpassthru.h"
#include "hxtypes.h"

#ifdef __cplusplus
extern "C" {
#endif

#define HX_MAX_TARGETS 256   /* entries or records of a block, names of a list */
#define HX_MAX_LUNS 2048     /* logical units of a LUN record */
#define HX_LUN_MASK_SIZE 256 /* bytes of a LUN mask: a bit for each of HX_MAX_LUNS */

#define HX_LUN_MASKED 0x80u /* of a LUN byte: the LUN is hidden from the host */

#pragma pack(push, 1)

/* One bound target, 32 bytes. A first name of zeros marks a free slot. */
typedef struct HX_TARGET_ENTRY {
    uint16_t targetNumber; /*  0  as in HX_DEVICE_RECORD */
    uint8_t bus;           /*  2  not written by a live read */
    uint8_t target;        /*  3  target ID */
    uint8_t reserved4[4];  /*  4  give 0; stored as it is */
    uint8_t bindingFlags;  /*  8  the driver's; handed to it when the binding is applied */
    uint8_t reserved9;     /*  9  give 0; stored as it is */
    uint16_t lunBase;      /* 10  the target's LUN 0 is this LUN byte of its LUN record */
    uint8_t portId[3];     /* 12  domain, area, port */
    uint8_t reserved15;    /* 15  give 0; stored as it is */
    uint8_t nodeName[8];   /* 16  first name: the key of the target */
    uint8_t portName[8];   /* 24  second name */
} HX_TARGET_ENTRY;

/* The bound targets of a port, 8224 bytes. */
typedef struct HX_TARGET_DATA {
    uint16_t header;                         /*  0  carried unchanged */
    uint16_t count;                          /*  2  entries in use, free slots among them */
    uint8_t reserved4[28];                   /*  4  give 0; stored as it is */
    HX_TARGET_ENTRY entries[HX_MAX_TARGETS]; /* 32  the first count of them are looked at */
} HX_TARGET_DATA;

/* The LUN mask of one target, 2080 bytes. A first name of zeros marks a free record. */
typedef struct HX_LUN_RECORD {
    uint8_t nodeName[8];       /*  0  first name: the key of the target */
    uint8_t portName[8];       /*  8  second name */
    uint8_t reserved16[16];    /* 16  give 0; not stored in version 1 */
    uint8_t luns[HX_MAX_LUNS]; /* 32  a byte per LUN: HX_LUN_MASKED; other bits are carried */
} HX_LUN_RECORD;

/* The LUN masks of a port, 532512 bytes. */
typedef struct HX_LUN_DATA {
    uint16_t version;                      /*  0  stored form: 1 = LUNs 0 to 255 alone, 2 = all */
    uint16_t count;                        /*  2  records in use, free ones among them */
    uint8_t reserved4[28];                 /*  4  give 0; not stored in version 1 */
    HX_LUN_RECORD records[HX_MAX_TARGETS]; /* 32  the first count of them are looked at */
} HX_LUN_DATA;

/* Names, 2048 bytes; a slot of eight zero bytes is free. */
typedef struct HX_WWN_LIST {
    uint8_t names[HX_MAX_TARGETS][8]; /* 0  each name once, in the order they were found */
} HX_WWN_LIST;

/* Target address of the calls without "FC", 6 bytes. */
typedef struct HX_BUS_TARGET_LUN {
    uint16_t bus;    /* 0  SCSI bus number */
    uint16_t target; /* 2  target ID */
    uint16_t lun;    /* 4  sent to the driver, not looked up */
} HX_BUS_TARGET_LUN;

/* Target address of the "FC" calls: type, then name, port identifier or bus and target. */
typedef HX_SCSI_ADDRESS DESTINATIONADDRESS;

/* One device of the port database, 290 bytes. */
typedef struct HX_DEVICE_RECORD {
    uint8_t nodeName[8];       /*   0  first name */
    uint8_t portName[8];       /*   8  second name */
    uint8_t portId[3];         /*  16  domain, area, port */
    uint8_t bindingFlags;      /*  19  the driver's; 0 = not bound, or not told */
    uint16_t bus;              /*  20  SCSI bus number; of one to add or swap, at most 255 */
    uint16_t target;           /*  22  target ID; of one to add or swap, at most 255 */
    uint16_t lun;              /*  24  as the driver gives it; no part of a device to add or swap */
    uint8_t symbolicName[128]; /*  26  symbolic port name, not terminated when 128 characters
                                       long */
    uint32_t roleAndState;     /* 154  bits 0 and 1 its role: 1 = target, 2 = initiator, 3 =
                                       both, 0 = not told; the other bits as the driver gives
                                       them */
    uint16_t targetNumber;     /* 158  loop identifier as the driver gives it; below 7.05.03 it
                                       is odd */
    uint16_t portFlags;        /* 160  as the driver gives them */
    uint8_t reserved162[128];  /* 162  zero */
} HX_DEVICE_RECORD;

/* Head of the port database, 8 bytes; the device records follow it. */
typedef struct HX_PORT_DATABASE {
    uint32_t type;      /* 0  as the driver gives it; below 7.05.03 that of the call */
    uint16_t count;     /* 4  of the devices */
    uint16_t reserved6; /* 6  zero */
} HX_PORT_DATABASE;

/* Bytes of a port database with room for that many devices. */
#define HX_PORT_DATABASE_SIZE(devices) \
    (sizeof(HX_PORT_DATABASE) + (devices) * sizeof(HX_DEVICE_RECORD))

/* What a discovered port and a discovered target have in common, 26 bytes. */
typedef struct HX_DISCOVERED_DEVICE {
    uint8_t nodeName[8];  /*  0  first name */
    uint8_t portName[8];  /*  8  second name */
    uint8_t portId[3];    /* 16  domain, area, port */
    uint8_t bindingFlags; /* 19  the driver's; 0 = not bound, or not told */
    uint16_t bus;         /* 20  SCSI bus number */
    uint16_t target;      /* 22  target ID */
    uint16_t lun;         /* 24  as the driver gives it */
} HX_DISCOVERED_DEVICE;

/* A discovered port, 60 bytes. */
typedef struct HX_DISCOVERED_PORT {
    HX_DISCOVERED_DEVICE device; /*  0  its names and addresses */
    uint8_t reserved26[34];      /* 26  has no meaning */
} HX_DISCOVERED_PORT;

/* A discovered target, 64 bytes. */
typedef struct HX_DISCOVERED_TARGET {
    HX_DISCOVERED_DEVICE device; /*  0  its names and addresses */
    uint8_t reserved26[2];       /* 26  has no meaning */
    uint32_t numberOfLuns;       /* 28  logical units, as the driver counts them */
    uint8_t reserved32[32];      /* 32  has no meaning */
} HX_DISCOVERED_TARGET;

#pragma pack(pop)

/* ------------------------------------------------------------------------------------------------
 * Discovered ports and targets
 * --------------------------------------------------------------------------------------------- */

/*
 * The devices that the port knows: an HX_PORT_DATABASE and as many HX_DEVICE_RECORDs as buffer
 * (size bytes) holds. type is handed to the driver; 7 asks for every device. A driver below 7.05.03
 * gives names, identifier, bus, target and target number; the other fields are zero.
 * HXMGT_BUFFER_TOO_SMALL: count is that of all devices, not of the records that fitted; with less
 * than 8 bytes nothing is written.
 */
HX_STATUS HXGetPortDatabase(uint32_t handle, uint32_t type, void* buffer, uint32_t size);

/*
 * The discoveredIndex-th (from 0) discovered port or target, in record. port and reserved are not
 * used. A driver below 7.05.03 has no target query (HXMGT_NOT_SUPPORTED) and gives
 * HXMGT_DEVICE_NOT_FOUND for a port index beyond its list.
 */
HX_STATUS HXGetDiscPortProperty(uint32_t handle, uint32_t port, uint32_t discoveredIndex,
                                uint32_t reserved, HX_DISCOVERED_PORT* record);
HX_STATUS HXGetDiscTargetProperty(uint32_t handle, uint32_t port, uint32_t discoveredIndex,
                                  uint32_t reserved, HX_DISCOVERED_TARGET* record);

/* ------------------------------------------------------------------------------------------------
 * Target binding
 *
 * port is not used: a handle has one port. Statuses of the store: HXMGT_REGISTRY_INVALID the
 * registry names no driver, a value is missing, damaged or half written, or cannot be written;
 * those of HXGetHbaDevicePortProperty; HXMGT_OUT_OF_MEMORY.
 * --------------------------------------------------------------------------------------------- */

/*
 * fromRegistry not 0: the stored block; after a failure block is as it was. 0: count, names,
 * identifier, flags, target ID and target number of every device that the driver knows; what else
 * stands in block stays.
 */
HX_STATUS HXGetTargetData(uint32_t handle, uint16_t port, HX_TARGET_DATA* block,
                          uint16_t fromRegistry);
/*
 * toRegistry not 0: stores the block. 0: binds each target of the block in the driver, in order;
 * HXMGT_DEVICE_NOT_FOUND: the driver does not know a target or its LUNs. The targets before a
 * failure stay bound.
 */
HX_STATUS HXSetTargetData(uint32_t handle, uint16_t port, HX_TARGET_DATA* block,
                          uint16_t toRegistry);

/*
 * Adapter ports that have stored data, and keys of all targets in any port's stored data: of every
 * driver service, present adapters or not. At most 256 names, each once; what is beyond is left
 * out. HXMGT_PERSISTENT_STORAGE_ERROR: a name or block is damaged; the list then holds what was
 * found.
 */
HX_STATUS HXGetPersistentDeviceEntryList(HX_WWN_LIST* list);
HX_STATUS HXGetPersistentTargetEntryList(HX_WWN_LIST* list);

/*
 * Delete the stored data of an adapter port (portName, 8 bytes), or a target (targetName, its key
 * of 8 bytes) from the stored data of every port. A name that is stored nowhere is no error. Counts
 * stay: the freed entries are left as free slots. HXMGT_PERSISTENT_STORAGE_ERROR: not everything
 * could be deleted.
 */
HX_STATUS HXDeletePersistentDeviceEntry(const uint8_t* portName);
HX_STATUS HXDeletePersistentTargetEntry(const uint8_t* targetName);

/* Ask the driver to add device as a target, or to put newDevice in the place of oldDevice. */
HX_STATUS HXAddTargetDevice(uint32_t handle, const HX_DEVICE_RECORD* device);
HX_STATUS HXSwapTargetDevice(uint32_t handle, const HX_DEVICE_RECORD* oldDevice,
                             const HX_DEVICE_RECORD* newDevice);

/* ------------------------------------------------------------------------------------------------
 * LUN masking
 *
 * address is that of the target. mask is a bitmap: LUN n is bit (n mod 8) of byte (n div 8), set =
 * visible, clear = masked. At most 256 bytes of it are used; a driver below 7.05.03 and a stored
 * block of version 1 have LUNs 0 to 255 alone. HXMGT_DEVICE_NOT_FOUND: the target or its mask is
 * not known.
 * --------------------------------------------------------------------------------------------- */

/*
 * The mask of one target. fromRegistry not 0: the stored one; HXMGT_REGISTRY_INVALID the stored
 * data is missing or damaged. Give mask 256 bytes of room then, whatever maskSize says: a stored
 * block of version 2 writes all of them. 0: the driver's; at most maskSize bytes are written.
 */
HX_STATUS HXGetHbaTargetLunMask(uint32_t handle, uint64_t reserved,
                                const HX_BUS_TARGET_LUN* address, uint32_t fromRegistry,
                                uint8_t* mask, uint32_t maskSize);
HX_STATUS HXGetHbaTargetLunMaskFC(uint32_t handle, uint64_t reserved,
                                  const DESTINATIONADDRESS* address, uint32_t fromRegistry,
                                  uint8_t* mask, uint32_t maskSize);

/* Sets the mask of one target in the driver. toRegistry not 0: HXMGT_NOT_SUPPORTED. */
HX_STATUS HXUpdateHbaTargetLunMask(uint32_t handle, uint64_t reserved,
                                   const HX_BUS_TARGET_LUN* address, int32_t toRegistry,
                                   const uint8_t* mask, uint32_t maskSize);
/*
 * The same by name, identifier or bus and target. toRegistry not 0: in the store, by name only
 * (else HXMGT_NOT_SUPPORTED); LUNs that the mask does not reach keep their state. A target without
 * a record gets one, with those LUNs masked; its other name comes from the stored targets, and is
 * the one given when they do not have it. HXMGT_REGISTRY_INVALID: there is no stored data, it is
 * damaged or full, or it could not be written.
 */
HX_STATUS HXUpdateHbaTargetLunMaskFC(uint32_t handle, uint64_t reserved,
                                     const DESTINATIONADDRESS* address, int32_t toRegistry,
                                     const uint8_t* mask, uint32_t maskSize);

/*
 * The LUN masks of all targets. fromRegistry not 0: the stored block; after a failure block is as
 * it was. 0: made from the driver's masks of LUNs 0 to 255; hand in a zeroed block, since bits are
 * only set. A target without a mask in the driver has all of them masked.
 */
HX_STATUS HXGetLunData(uint32_t handle, uint16_t port, HX_LUN_DATA* block, uint16_t fromRegistry);
/*
 * First sets version to what the driver takes: 1 below 7.05.03, else 2. toRegistry not 0: stores
 * the block. 0: sets the driver's mask of every target in the block that it knows, LUNs above 255
 * masked. Statuses of the store: those of target binding.
 */
HX_STATUS HXSetLunData(uint32_t handle, uint16_t port, HX_LUN_DATA* block, uint16_t toRegistry);

/* The functions above for port 0, under their older names; block, list, fromRegistry and
   toRegistry, portName and targetName are theirs. */
HX_STATUS IHXFoGetTargetData(uint32_t handle, uint64_t reserved1, uint64_t reserved2,
                             HX_TARGET_DATA* block, uint16_t fromRegistry);
HX_STATUS IHXFoSetTargetData(uint32_t handle, uint64_t reserved1, uint64_t reserved2,
                             HX_TARGET_DATA* block, uint16_t toRegistry);
HX_STATUS IHXFoGetLunData(uint32_t handle, uint64_t reserved1, uint64_t reserved2,
                          HX_LUN_DATA* block, uint16_t fromRegistry);
HX_STATUS IHXFoSetLunData(uint32_t handle, uint64_t reserved1, uint64_t reserved2,
                          HX_LUN_DATA* block, uint16_t toRegistry);
HX_STATUS IHXFoGetPersistentTargetEntryList(HX_WWN_LIST* list);
HX_STATUS IHXFoGetPersistentDeviceEntryList(HX_WWN_LIST* list);
HX_STATUS IHXFoDeletePersistentTargetEntry(const uint8_t* targetName);
HX_STATUS IHXFoDeletePersistentDeviceEntry(const uint8_t* portName);

#ifdef __cplusplus
}
#endif

#endif /* HXPERSIST_H */
