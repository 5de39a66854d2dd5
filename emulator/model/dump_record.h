// The firmware dump that is written as text, made piece by piece: nothing of it is kept.
#pragma once

#include <cstdint>

#include "dumps/dump_format.h"
#include "model/fabric/fabric.h"

namespace vxemu {

class DumpRecord {
  public:
    explicit DumpRecord(const Port& port);

    // Whether the chip has such a dump.
    bool Exists() const { return column_ < dumps::kLayouts; }
    uint64_t Bytes() const { return dumps::RecordBytes(column_, extents_); }
    const dumps::Extents& Extents() const { return extents_; }

    // length bytes from offset; both lie within the dump.
    void Put(uint64_t offset, uint8_t* bytes, uint32_t length) const;

  private:
    dumps::RecordHeader Header() const;

    const Port& port_;
    dumps::Extents extents_;
    uint32_t column_;
    uint32_t seed_;
};

// Differs from dump to dump of a port.
uint32_t DumpSeed(const Port& port);

}  // namespace vxemu
