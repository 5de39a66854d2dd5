// The flash of one physical adapter, which its ports share, and what happens to it: checks before a
// write, power that fails, images that are verified before they count.
#pragma once

#include <cstdint>

#include "model/storage/flash_keeping.h"
#include "model/storage/flash_memory.h"
#include "transport/ext_ioctl.h"

namespace vxemu {

struct Port;

// What an image that comes in pieces is for.
enum class StagingUse : uint8_t { None, SecureUpdate, TransceiverFirmware };

// Steps of a secure update, as its status tells them.
enum class SecureStage : uint32_t { None, Begun, Announced, Verified, Committed };

// An image on its way. A new one takes the place of another.
struct Staging {
    StagingUse use;
    SecureStage stage;
    uint32_t result;    // of a secure update, once it is verified
    uint32_t region;    // secure update
    uint32_t crc;       // as announced
    uint32_t headHash;  // of the first bytes, as announced
    uint32_t size;
    uint32_t received;  // bytes, from the start on
    uint8_t* bytes;
};

// Firmware of the companion chip: which version came, and which one runs.
struct Companion {
    uint32_t running;  // 0: as delivered
    uint32_t stored;
    uint32_t received;
    uint32_t total;
};

// A block of these comes zeroed from the host.
struct Flash {
    FlashMemory memory;
    FlashKeeping keeping;
    Staging staging;
    Companion companion;
    bool failsSoon;     // power is lost once bytesUntilFailure more bytes have been written
    bool withoutPower;  // no port of the adapter answers, until one is reset
    uint32_t bytesUntilFailure;
};

// The stored firmware runs from now on; one that came in part has to come anew.
inline void StartCompanion(Companion& companion) {
    companion = {companion.stored != 0 ? companion.stored : companion.running, companion.stored, 0,
                 0};
}

// Detail status of a write that the adapter's firmware refuses.
inline constexpr uint32_t kWriteRefused = 0x4006;

struct WriteResult {
    transport::DriverStatus status;
    uint32_t detail;
};

// Whether the port may change what the adapter stores; why not.
WriteResult CheckWrite(const Port& port);

// The same for a range of the flash: read-only regions, and signed ones where updates must be
// secure, are refused.
WriteResult CheckWrite(const Port& port, uint32_t offset, uint32_t length);

// Writes a range that lies within the flash, unless CheckWrite objects.
WriteResult WriteFlash(Port& port, uint32_t offset, const uint8_t* bytes, uint32_t length);

// The same without a check, and without power that fails; false when there is no memory.
bool StoreBytes(const Port& port, uint32_t offset, const uint8_t* bytes, uint32_t length);

// Takes length bytes off what may still be written; returns how many of them are.
uint32_t SpendPower(Flash& flash, uint32_t length);

// Begins an image of size bytes; false when there is no memory.
bool StartStaging(const Host& host, Staging& staging, StagingUse use, uint32_t size);
void DropStaging(const Host& host, Staging& staging);

void ReleaseFlash(const Host& host, Flash& flash);

}  // namespace vxemu
