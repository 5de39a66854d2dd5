// Writes one thing after the other into limited room and counts all of it, so that whoever made a
// reply knows how long it would have been.
#pragma once

#include "formats/bytes.h"

namespace vxemu {

using formats::BigEndian;

class ByteWriter {
  public:
    ByteWriter(uint8_t* bytes, uint32_t room) : bytes_(bytes), room_(room) {}

    void Put(const void* bytes, uint32_t length) {
        if (length_ < room_) {
            std::memcpy(bytes_ + length_, bytes,
                        length < room_ - length_ ? length : room_ - length_);
        }
        length_ += length;
    }
    void Zeros(uint32_t count) {
        for (; count != 0; --count) {
            Put8(0);
        }
    }
    template <typename Record>
    void PutRecord(const Record& record) {
        Put(&record, sizeof record);
    }
    void Put8(uint8_t value) { Put(&value, sizeof value); }
    // Big-endian, as on the wire.
    void Put16(uint32_t value) { PutNumber(value, 2); }
    void Put32(uint32_t value) { PutNumber(value, 4); }
    void Put64(uint64_t value) { PutNumber(value, 8); }

    uint32_t Length() const { return length_; }

  private:
    void PutNumber(uint64_t value, uint32_t size) {
        while (size-- != 0) {
            Put8(static_cast<uint8_t>(value >> (8 * size)));
        }
    }

    uint8_t* bytes_;
    uint32_t room_;
    uint32_t length_ = 0;
};

}  // namespace vxemu
