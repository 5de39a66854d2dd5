#include "model/storage/block_store.h"

#include <cstring>

#include "model/bytes/pattern.h"

namespace vxemu {

struct BlockStore::Chunk {
    Chunk* next;
    DiskKey disk;
    uint64_t position;  // in chunks
    uint8_t bytes[kStoreChunkBytes];
};

namespace {

bool Same(const DiskKey& left, const DiskKey& right) {
    return left.lun == right.lun &&
           std::memcmp(left.portName, right.portName, sizeof left.portName) == 0;
}

uint32_t SeedOf(const DiskKey& disk) {
    uint32_t seed = disk.lun;
    for (uint8_t byte : disk.portName) {
        seed = seed * 31 + byte;
    }
    return seed;
}

// Calls visit(chunk position, offset in the chunk, offset in the range, length) for each part of a
// range of bytes that lies in one chunk, until it returns false.
template <typename Visit>
bool ForEachPart(uint64_t offset, uint32_t length, Visit visit) {
    for (uint32_t done = 0; done < length;) {
        const auto inChunk = static_cast<uint32_t>((offset + done) % kStoreChunkBytes);
        const uint32_t rest = kStoreChunkBytes - inChunk;
        const uint32_t part = length - done < rest ? length - done : rest;
        if (!visit((offset + done) / kStoreChunkBytes, inChunk, done, part)) {
            return false;
        }
        done += part;
    }
    return true;
}

}  // namespace

BlockStore::Chunk* BlockStore::Find(const DiskKey& disk, uint64_t position) const {
    Chunk* chunk = first_;
    while (chunk != nullptr && !(chunk->position == position && Same(chunk->disk, disk))) {
        chunk = chunk->next;
    }
    return chunk;
}

void BlockStore::Read(const DiskKey& disk, uint64_t offset, uint8_t* bytes, uint32_t length) const {
    ForEachPart(offset, length,
                [&](uint64_t position, uint32_t inChunk, uint32_t done, uint32_t part) {
                    const Chunk* chunk = Find(disk, position);
                    if (chunk != nullptr) {
                        std::memcpy(bytes + done, chunk->bytes + inChunk, part);
                    } else {
                        FillPattern(SeedOf(disk), offset + done, bytes + done, part);
                    }
                    return true;
                });
}

bool BlockStore::Write(const Host& host, const DiskKey& disk, uint64_t offset, const uint8_t* bytes,
                       uint32_t length) {
    const bool room =
        ForEachPart(offset, length, [&](uint64_t position, uint32_t, uint32_t, uint32_t) {
            if (Find(disk, position) != nullptr) {
                return true;
            }
            if (count_ == kMaxStoreChunks) {
                return false;
            }
            auto* chunk = static_cast<Chunk*>(host.allocate(host.context, sizeof(Chunk)));
            if (chunk == nullptr) {
                return false;
            }
            chunk->disk = disk;
            chunk->position = position;
            FillPattern(SeedOf(disk), position * kStoreChunkBytes, chunk->bytes, kStoreChunkBytes);
            chunk->next = first_;
            first_ = chunk;
            ++count_;
            return true;
        });
    return room &&
           ForEachPart(offset, length,
                       [&](uint64_t position, uint32_t inChunk, uint32_t done, uint32_t part) {
                           std::memcpy(Find(disk, position)->bytes + inChunk, bytes + done, part);
                           return true;
                       });
}

void BlockStore::Forget(const Host& host, const DiskKey& disk) {
    for (Chunk** link = &first_; *link != nullptr;) {
        Chunk* chunk = *link;
        if (!Same(chunk->disk, disk)) {
            link = &chunk->next;
            continue;
        }
        *link = chunk->next;
        host.release(host.context, chunk);
        --count_;
    }
}

void BlockStore::Clear(const Host& host) {
    while (first_ != nullptr) {
        Chunk* chunk = first_;
        first_ = chunk->next;
        host.release(host.context, chunk);
    }
    count_ = 0;
}

}  // namespace vxemu
