/*
 * hxhealth.h - health of a port's hardware: temperature, locate LED, credit recovery, and the
 * registers and signals of SerDes and retimer.
 * Part of the management API: include hxmgtapi.h, which states the rules of the whole interface.
 *
 * All functions need driver 7.05.03, and the chips that are named; they may be called from any
 * thread. A record is written whole, and only after success; what the driver does not give is zero.
 *
 * Statuses of all of them, in the order of the checks: HXMGT_INVALID_HANDLE;
 * HXMGT_INVALID_PARAMETER a pointer is null; HXMGT_NOT_SUPPORTED a driver below 7.05.03; the status
 * of HXGetHbaDeviceChipProperty when the chip cannot be asked for; HXMGT_NOT_SUPPORTED another
 * chip; HXMGT_INVALID_PARAMETER a value out of its range; then what the driver says.
 *
 * "The newer chips" are all but those with PCI device IDs 0x71xx to 0x73xx. "The newest chips" are
 * those with device IDs from 0x7620 on.
 *
 * Temperature and registers travel in firmware mailbox commands:
 * HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER the firmware does not know the command,
 * HXMGT_DEVICE_NOT_FOUND nothing answers behind it, HXMGT_INVALID_PARAMETER the firmware refuses an
 * address or a value, HXMGT_MAILBOX_FAILED any other failure.
 *
 * Copyright (c) 2026 The VXMGMT developers. MIT licence, see LICENSE.
 */
#ifndef HXHEALTH_H
#define HXHEALTH_H

#include <stdint.h>

#include "hxtypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Whether buffer-to-buffer credit recovery is in use. */
enum HX_BBCR_STATE {
    HX_BBCR_ON = 1,           /* agreed with the attached port */
    HX_BBCR_OFF = 2,          /* HX_BBCR_REASON says why */
    HX_BBCR_NOT_SUPPORTED = 3 /* the port has no such thing */
};

/* Why it is off. */
enum HX_BBCR_REASON {
    HX_BBCR_REASON_NONE = 0,    /* it is not off */
    HX_BBCR_LINK_DOWN = 1,      /* the link is down */
    HX_BBCR_LOOP = 2,           /* a loop has none */
    HX_BBCR_NOT_CONFIGURED = 3, /* this port's BB_SC_N is 0 */
    HX_BBCR_REFUSED = 4         /* by the attached port */
};

/* The limit that the temperature has reached. */
enum HX_TEMPERATURE_STATE {
    HX_TEMPERATURE_NORMAL = 0,  /* none of its limits */
    HX_TEMPERATURE_WARNING = 1, /* its warning limit */
    HX_TEMPERATURE_CRITICAL = 2 /* its critical limit */
};

/* LEDs of a port: bits. */
enum HX_BEACON_LED {
    HX_BEACON_GREEN = 1, /* the green one */
    HX_BEACON_AMBER = 2  /* the amber one */
};

/* Modulation of a SerDes lane: two or four levels. */
enum HX_SERDES_MODULATION {
    HX_MODULATION_NRZ = 0, /* two levels */
    HX_MODULATION_PAM4 = 1 /* four levels */
};

#define HX_BEACON_MOST_SECONDS 86400u /* longest time that a beacon may be set for: a day */
#define HX_MAX_SERDES_LANES 16        /* lanes that HXReadSerdesParams may return */
#define HX_RETIMER_DEVICE 0x18        /* I2C address of the retimer behind the cage */

#pragma pack(push, 1)

/* Buffer-to-buffer credit recovery of a link (FC-FS), 64 bytes. */
typedef struct HX_BBCR_DATA {
    uint8_t state;             /*  0  HX_BBCR_... */
    uint8_t reason;            /*  1  HX_BBCR_REASON: why it is off */
    uint8_t configured;        /*  2  BB_SC_N of this port */
    uint8_t attached;          /*  3  BB_SC_N of the attached port */
    uint8_t negotiated;        /*  4  a BB_SC every 2^N frames: the larger one, 0 when either is */
    uint8_t reserved5;         /*  5  has no meaning */
    uint16_t attachedCredit;   /*  6  buffers that the attached port has for this one */
    uint16_t ownCredit;        /*  8  buffers that this port has */
    uint8_t reserved10[6];     /* 10  has no meaning */
    uint64_t scsSent;          /* 16  BB_SCs primitives */
    uint64_t scrSent;          /* 24  BB_SCr primitives */
    uint64_t scsReceived;      /* 32  BB_SCs primitives */
    uint64_t scrReceived;      /* 40  BB_SCr primitives */
    uint64_t creditsRecovered; /* 48  R_RDY primitives that were lost */
    uint64_t framesLost;       /* 56  frames that were found lost */
} HX_BBCR_DATA;

/* Temperature of the board, 16 bytes: in 1/256 degree Celsius (as SFF-8472 has temperatures). A
   limit of 0 is none. */
typedef struct HX_BOARD_TEMPERATURE {
    int16_t now;           /*  0  at the time of the call */
    int16_t warning;       /*  2  limit of HX_TEMPERATURE_WARNING */
    int16_t critical;      /*  4  limit of HX_TEMPERATURE_CRITICAL */
    int16_t shutdown;      /*  6  limit of the hardware's own shutdown */
    int16_t highest;       /*  8  since the adapter started */
    uint16_t state;        /* 10  HX_TEMPERATURE_...; at a limit it counts as reached */
    uint32_t secondsAbove; /* 12  seconds above the warning limit */
} HX_BOARD_TEMPERATURE;

/* The LED that locates a port, 16 bytes. */
typedef struct HX_BEACON {
    uint32_t on;        /*  0  0 or 1 */
    uint32_t seconds;   /*  4  in: 0 = until it is switched off, at most HX_BEACON_MOST_SECONDS;
                               back: seconds left */
    uint32_t leds;      /*  8  HX_BEACON_LED bits: lit at this moment */
    uint32_t supported; /* 12  1 */
} HX_BEACON;

/* Signal of one SerDes lane, 32 bytes. Steps are those of the chip's registers. */
typedef struct HX_SERDES_LANE {
    uint8_t lane;          /*  0  number */
    uint8_t speed;         /*  1  HX_SPEED_... */
    uint8_t locked;        /*  2  1 = the receiver follows the signal */
    uint8_t modulation;    /*  3  HX_MODULATION_... */
    int8_t txPre;          /*  4  tap of the transmit equaliser before the main one, steps */
    int8_t txMain;         /*  5  its main tap, steps */
    int8_t txPost;         /*  6  its tap behind the main one, steps */
    uint8_t reserved7;     /*  7  has no meaning */
    uint16_t txAmplitude;  /*  8  millivolts */
    uint16_t eyeHeight;    /* 10  millivolts */
    uint16_t eyeWidth;     /* 12  1/1000 unit interval */
    int16_t ctle;          /* 14  receive equaliser, 1/10 decibel */
    int16_t dfe[4];        /* 16  decision feedback equaliser, steps */
    uint8_t reserved24[8]; /* 24  has no meaning */
} HX_SERDES_LANE;

#pragma pack(pop)

/* Credit recovery on the port's link, on any chip. One that has none says so in its state. */
HX_STATUS HXGetBBCRData(uint32_t handle, HX_BBCR_DATA* record);

/* Temperature of the adapter's board; its ports share it. The newer chips. */
HX_STATUS HXGetBoardTemp(uint32_t handle, HX_BOARD_TEMPERATURE* record);

/*
 * The LED that locates the port, on any chip. An update switches it on for the seconds given, or
 * off; on and seconds alone are read from beacon. HXMGT_NOT_SUPPORTED: the port has none;
 * HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER: the driver does not know of it.
 */
HX_STATUS HXGetBeaconControl(uint32_t handle, HX_BEACON* beacon);
HX_STATUS HXUpdateBeaconControl(uint32_t handle, const HX_BEACON* beacon);

/* A register of SerDes lane 0: 16-bit address and value. The newest chips. Writing changes the
   signal of a link that is up. */
HX_STATUS HXGetFCSerDesRegister(uint32_t handle, uint16_t address, uint16_t* value);
HX_STATUS HXSetFCSerDesRegister(uint32_t handle, uint16_t address, uint16_t value);

/* A register of any lane: 32-bit address and value. The newest chips. */
HX_STATUS HXGetFCSerDesRegisterEx(uint32_t handle, uint16_t lane, uint32_t address,
                                  uint32_t* value);
HX_STATUS HXSetFCSerDesRegisterEx(uint32_t handle, uint16_t lane, uint32_t address, uint32_t value);

/*
 * Settings, eyes and state of the lanes of the port. *count is the room of lanes in records on
 * entry and the number of lanes on return, at most HX_MAX_SERDES_LANES; lanes may be null when it
 * is 0. The newest chips. HXMGT_BUFFER_TOO_SMALL: not all fitted, the first ones are written;
 * HXMGT_DATA_UNDERRUN: the driver names more lanes than it gives. After any other status than 0 and
 * HXMGT_BUFFER_TOO_SMALL *count is as it was.
 */
HX_STATUS HXReadSerdesParams(uint32_t handle, HX_SERDES_LANE* lanes, uint32_t* count);

/*
 * A register of a device on the I2C bus of the transceiver cage. device is its 7-bit address
 * (HX_RETIMER_DEVICE), a register has 8 bits: HXMGT_INVALID_PARAMETER a larger device or value.
 * Which addresses there are the device decides. The newest chips.
 */
HX_STATUS HXGetQuarnI2CRegister(uint32_t handle, uint16_t device, uint16_t address,
                                uint16_t* value);
HX_STATUS HXSetQuarnI2CRegister(uint32_t handle, uint16_t device, uint16_t address, uint16_t value);

#ifdef __cplusplus
}
#endif

#endif /* HXHEALTH_H */
