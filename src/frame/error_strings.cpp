#include "frame/error_strings.h"

#include <windows.h>

#include <algorithm>
#include <iterator>

namespace frame {
namespace {

constexpr HX_STATUS kLibraryCodeBit = 0x20000000;

struct StatusText {
    HX_STATUS status;
    const char* text;
};

#define VX_STATUS_TEXT(name, code, text) {code, text},
constexpr StatusText kStatusTexts[] = {HX_STATUS_TABLE(VX_STATUS_TEXT)};
#undef VX_STATUS_TEXT
static_assert(std::size(kStatusTexts) == 129);
static_assert(std::is_sorted(std::begin(kStatusTexts), std::end(kStatusTexts),
                             [](const StatusText& a, const StatusText& b) {
                                 return a.status < b.status;
                             }));

const char* TextOf(HX_STATUS status) {
    const auto row = std::lower_bound(
        std::begin(kStatusTexts), std::end(kStatusTexts), status,
        [](const StatusText& entry, HX_STATUS wanted) { return entry.status < wanted; });
    return row != std::end(kStatusTexts) && row->status == status ? row->text : nullptr;
}

}  // namespace

const char* GetErrorString(HX_STATUS status) {
    thread_local char buffer[256];
    if (status != HXMGT_SUCCESS && (status & kLibraryCodeBit) == 0) {
        // Not checked: an unknown system code shows what the buffer held before. Intended.
        FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, status, 0, buffer, sizeof buffer,
                       nullptr);
        return buffer;
    }
    if (const char* const text = TextOf(status)) {
        return text;
    }
    wsprintfA(buffer, "...Unknown 0x%x...", status);
    return buffer;
}

}  // namespace frame
