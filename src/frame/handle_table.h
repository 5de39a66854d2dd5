// The table of open adapters, and the functions that fill and empty it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>

#include "frame/owned.h"
#include "frame/shared_area.h"
#include "hxmgtapi.h"

namespace frame {

inline constexpr uint32_t kHighestHandle = 64;      // accepted by checks, never given out
inline constexpr uint32_t kHighestOpenHandle = 63;  // the highest that an open gives

// Driver versions at which requests change.
inline constexpr uint32_t kExtendedRequestsVersion = 70503;

// The record of an open handle, or null. Another thread may close the handle at any time, also
// while a request is inside the driver: what a call needs later it takes with CopyOfRecord at its
// begin.
HXMGT_API_HANDLE* OpenRecord(uint32_t handle);
std::optional<HXMGT_API_HANDLE> CopyOfRecord(uint32_t handle);

// Record of any number up to 64, open or not, else null.
HXMGT_API_HANDLE* AnyRecord(uint32_t handle);

HXMGT_API_HANDLE* FirstRecord();

// Device of an open handle, else the invalid one.
HANDLE DeviceOf(uint32_t handle);

// A reference of the caller's own to the event mutex of an open handle: one name for all processes
// that have the adapter open. Empty when the handle has none.
OwnedObject EventMutex(uint32_t handle);

// True for an open handle with a trace.
bool IsTraced(uint32_t handle);

// The trace stream of a handle for as long as the object lives: nobody closes it meanwhile. Free of
// cost for a handle without a trace. Not to be held over a request or over another one.
class TraceHold {
  public:
    explicit TraceHold(uint32_t handle);
    TraceHold(const TraceHold&) = delete;
    TraceHold& operator=(const TraceHold&) = delete;
    ~TraceHold();

    FILE* Stream() const { return stream_; }

  private:
    bool held_ = false;
    FILE* stream_ = nullptr;
};

// Gives an open handle another trace, or none. False when the handle is not open.
bool SetTrace(uint32_t handle, OwnedStream stream, uint32_t level);

HX_STATUS OpenDevice(uint32_t adapterIndex, uint32_t* outHandle);

// Opens a port without counting: its record has no adapter index and no event mutex.
HX_STATUS OpenScsiPort(uint32_t scsiPort, uint32_t* outHandle);

// Gives an open handle its adapter index and event mutex, where it has none yet.
HX_STATUS CountAdapter(uint32_t handle, uint32_t& adapterIndex);

HX_STATUS CloseDevice(uint32_t handle);

}  // namespace frame
