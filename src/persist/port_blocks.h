// A port's stored blocks of either layout, read whole and edited in place.
#pragma once

#include <cstdint>

#include "frame/owned.h"
#include "persist/blocks.h"
#include "persist/port_values.h"

namespace persist {

// A block as the registry held it when it was read: its length is that of Bytes(), whatever the
// registry says by now.
class StoredBlock {
  public:
    std::span<uint8_t> Bytes() { return {bytes_.get(), size_}; }
    std::span<const uint8_t> Bytes() const { return {bytes_.get(), size_}; }

    // Reads the block `data`, whose length the number `length` gives: 1 to longest bytes. False
    // when a length is wrong or memory ran out.
    bool Read(const PortValues& port, const char* length, const char* data, uint32_t longest);

  private:
    frame::Bytes bytes_;
    size_t size_ = 0;
};

// Adds the keys of all targets that the port holds. False when a block cannot be read; a block of
// which neither value exists is none.
bool AddTargets(const PortValues& port, HX_WWN_LIST& list);

// Frees every entry and record of the key. False when a block cannot be read or written.
bool DeleteTarget(const PortValues& port, const uint8_t* key);

// Deletes the port's values. False when one that should be there cannot be deleted.
bool DeleteValues(const PortValues& port);

}  // namespace persist
