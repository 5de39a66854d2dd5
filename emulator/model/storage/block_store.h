// What has been written to the emulated disks. A disk holds a pattern until it is written to, so
// that disks of any size take no memory; what is written is kept until the model goes.
#pragma once

#include <cstdint>

#include "model/host.h"

namespace vxemu {

inline constexpr uint32_t kStoreChunkBytes = 4096;
inline constexpr uint32_t kMaxStoreChunks = 1024;

// A LUN of a target, by the target's port name.
struct DiskKey {
    uint8_t portName[8];
    uint16_t lun;
};

class BlockStore {
  public:
    void Read(const DiskKey& disk, uint64_t offset, uint8_t* bytes, uint32_t length) const;

    // False when there is no room for all of it; then nothing is written.
    bool Write(const Host& host, const DiskKey& disk, uint64_t offset, const uint8_t* bytes,
               uint32_t length);

    // Forgets what was written to a disk, or to all of them.
    void Forget(const Host& host, const DiskKey& disk);
    void Clear(const Host& host);

  private:
    struct Chunk;

    Chunk* Find(const DiskKey& disk, uint64_t position) const;

    Chunk* first_;
    uint32_t count_;
};

}  // namespace vxemu
