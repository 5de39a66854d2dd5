#include "frame/trace.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "frame/hex_dump.h"
#include "frame/owned.h"
#include "transport/ext_ioctl.h"

namespace frame {
namespace {

constexpr int kApiTraceFiles = 32;

// "%s(%04d): " as part of a format: percent signs of the name are doubled.
size_t FormatPrefix(const char* sourceFile, uint32_t line, char* out) {
    char* end = out;
    for (const char* c = sourceFile; *c != 0; ++c) {
        if (*c == '%') {
            *end++ = '%';
        }
        *end++ = *c;
    }
    return static_cast<size_t>(end - out) +
           static_cast<size_t>(std::sprintf(end, "(%04d): ", static_cast<int>(line)));
}

}  // namespace

HX_STATUS EnableDebugTrace(const uint32_t* handle, const char* path, uint32_t level) {
    if (handle == nullptr || !SetTrace(*handle, OwnedStream(), 0)) {
        return HXMGT_INVALID_HANDLE;
    }
    if (path == nullptr) {
        return HXMGT_SUCCESS;
    }
    SetLastError(ERROR_SUCCESS);
    OwnedStream stream(std::fopen(path, "a"));
    if (!stream.Valid()) {
        const DWORD error = GetLastError();
        // The C runtime refuses some names without asking the system.
        return error != ERROR_SUCCESS ? error : ERROR_OPEN_FAILED;
    }
    return SetTrace(*handle, std::move(stream), level) ? HXMGT_SUCCESS : HXMGT_INVALID_HANDLE;
}

int TraceLineV(const char* sourceFile, uint32_t line, FILE* stream, const char* format,
               va_list arguments) {
    if (sourceFile == nullptr || stream == nullptr || format == nullptr) {
        return -1;
    }
    if (const char* const folder = std::strrchr(sourceFile, '\\')) {
        sourceFile = folder + 1;
    }
    // One formatted write, so that lines of several threads do not mix: prefix and format become
    // one format. 16 bytes hold "(%04d): " of any line number.
    const Bytes whole = UnclearedBytes(2 * std::strlen(sourceFile) + 16 + std::strlen(format) + 1);
    if (whole == nullptr) {
        return -1;
    }
    char* const text = reinterpret_cast<char*>(whole.get());
    std::strcpy(text + FormatPrefix(sourceFile, line, text), format);
    return std::vfprintf(stream, text, arguments);
}

void TraceLine(const char* sourceFile, uint32_t line, uint32_t handle, const char* format, ...) {
    const TraceHold trace(handle);
    va_list arguments;
    va_start(arguments, format);
    TraceLineV(sourceFile, line, trace.Stream(), format, arguments);
    va_end(arguments);
}

void TraceBytes(uint32_t handle, const void* data, uint32_t length, uint32_t came) {
    const TraceHold trace(handle);
    if (trace.Stream() != nullptr) {
        DumpBytes(trace.Stream(), data, length, came);
    }
}

void DumpBytes(FILE* stream, const void* data, uint32_t length, uint32_t came) {
    if (length > kDumpLimit) {
        std::fprintf(stream, "Actual Buffer Length %u\n", length);
    }
    uint8_t bytes[kDumpLimit] = {};
    const std::span<const uint8_t> shown(bytes, std::min<size_t>(length, kDumpLimit));
    if (const size_t taken = std::min<size_t>(shown.size(), came); taken != 0) {
        std::memcpy(bytes, data, taken);
    }
    std::fprintf(stream, "Length Showing = %u\n", static_cast<unsigned>(shown.size()));
    for (size_t offset = 0; offset < shown.size(); offset += kDumpRowBytes) {
        DumpRowText row;
        FormatDumpRow(shown, offset, row);
        std::fputs(row, stream);
    }
}

void DumpEnvelope(uint32_t handle, const void* envelope, uint32_t length) {
    const TraceHold trace(handle);
    FILE* const stream = trace.Stream();
    if (stream == nullptr) {
        return;
    }
    const auto* const srb = static_cast<const transport::SrbIoControl*>(envelope);
    uint32_t signature;
    std::memcpy(&signature, srb->signature, sizeof signature);
    std::fprintf(stream, "SRB_IO_CONTROL %u, 0x%x, %u, Code 0x%08x, Length %u\n", srb->headerLength,
                 signature, srb->timeout, srb->controlCode, srb->length);

    const auto* const body = reinterpret_cast<const transport::ExtIoctl*>(srb + 1);
    if (length >= transport::kExtIoctlLength &&
        std::memcmp(body->signature, transport::kSignature, sizeof body->signature) == 0) {
        std::fprintf(stream, "EXT_IOCTL SubCode 0x%08x, Instance %u, ReqLen %u\n", body->subCode,
                     body->instance, body->requestLen);
        DumpBytes(stream, body + 1, length - transport::kExtIoctlLength);
    } else {
        DumpBytes(stream, body, length);
    }
}

void ResetApiTraceFiles() {
    for (int i = 1; i <= kApiTraceFiles; ++i) {
        char name[32];
        wsprintfA(name, "ApiTrace%d.txt", i);
        // Neither stream is closed: intended.
        if (std::fopen(name, "r") != nullptr) {
            static_cast<void>(std::fopen(name, "w"));
        }
    }
}

}  // namespace frame
