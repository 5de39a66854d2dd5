// The table of open adapters, and the functions that fill and empty it.
#pragma once

#include <windows.h>

#include <cstdint>

#include "frame/shared_area.h"
#include "hxmgtapi.h"

namespace frame {

inline constexpr uint32_t kHighestHandle = 64;      // accepted by checks, never given out
inline constexpr uint32_t kHighestOpenHandle = 63;  // the highest that an open gives

// Driver versions at which requests change.
inline constexpr uint32_t kExtendedRequestsVersion = 70503;

// The record of an open handle, or null.
HXMGT_API_HANDLE* OpenRecord(uint32_t handle);

// Record of any number up to 64, open or not, else null.
HXMGT_API_HANDLE* AnyRecord(uint32_t handle);

HXMGT_API_HANDLE* FirstRecord();

// Trace stream of an open handle, or null.
FILE* TraceOf(uint32_t handle);

// Event mutex of an open handle: one name for all processes that have the adapter open.
HANDLE EventMutex(uint32_t handle);

HX_STATUS OpenDevice(uint32_t adapterIndex, uint32_t* outHandle);

// Opens a port without counting: its record has no adapter index and no event mutex.
HX_STATUS OpenScsiPort(uint32_t scsiPort, uint32_t* outHandle);

// Gives an open handle its adapter index and event mutex, where it has none yet.
HX_STATUS CountAdapter(uint32_t handle, uint32_t& adapterIndex);

HX_STATUS CloseDevice(uint32_t handle);

}  // namespace frame
