// Trace of a device handle: lines and dumps of driver requests.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <cstdio>

#include "compiler.h"
#include "frame/handle_table.h"
#include "hxmgtapi.h"

namespace frame {

HX_STATUS EnableDebugTrace(const uint32_t* handle, const char* path, uint32_t level);

int TraceLineV(const char* sourceFile, uint32_t line, FILE* stream, const char* format,
               va_list arguments);

// Dumps length bytes of data, the first 256 of them; those behind the first `came` as zeros.
void DumpBytes(FILE* stream, const void* data, uint32_t length, uint32_t came = UINT32_MAX);

// The same to the trace of a handle, while it has one.
void TraceLine(const char* sourceFile, uint32_t line, uint32_t handle, const char* format, ...)
    VX_PRINTF_FORMAT(4, 5);
void TraceBytes(uint32_t handle, const void* data, uint32_t length, uint32_t came = UINT32_MAX);

// Dumps a request to the handle's trace. An extended envelope is followed by its data over
// length - 88 bytes; any other by the bytes behind the header over length.
void DumpEnvelope(uint32_t handle, const void* envelope, uint32_t length);

// Empties the standard API's trace files "ApiTrace1.txt" to "ApiTrace32.txt" where they exist.
void ResetApiTraceFiles();

}  // namespace frame

// A trace line with the caller's own file and line; does nothing for a handle without a trace.
#define VX_TRACE(handle, ...)                                                \
    do {                                                                     \
        if (frame::IsTraced(handle)) {                                       \
            frame::TraceLine(VX_SOURCE_FILE, __LINE__, handle, __VA_ARGS__); \
        }                                                                    \
    } while (false)
