// Text of a firmware dump. Free of platform headers.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "dumps/dump_format.h"

namespace dumps {

// A point in local time.
struct LocalTime {
    uint16_t year, month, day, hour, minute, second, millisecond;
};

// Where the text goes, and what only the platform knows.
class DumpSink {
  public:
    virtual void Write(std::string_view text) = 0;
    virtual LocalTime ToLocal(uint64_t fileTime) = 0;

  protected:
    ~DumpSink() = default;
};

enum class DumpEnd {
    Complete,
    NoRecord,  // the dump does not begin with a record
    CutShort,  // it ends inside a record; what there was has been written
};

DumpEnd WriteDumpText(std::span<const uint8_t> dump, uint32_t layoutColumn, const Extents& extents,
                      DumpSink& sink);

}  // namespace dumps
