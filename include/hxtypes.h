/*
 * hxtypes.h - what every header of the management API needs.
 *
 * Copyright (c) 2026 The VXMGMT developers. MIT licence, see LICENSE.
 */
#ifndef HXTYPES_H
#define HXTYPES_H

#include <stdint.h>

#include "hxstatus.h"

typedef uint32_t HX_STATUS; /* hxstatus.h */

#endif /* HXTYPES_H */
