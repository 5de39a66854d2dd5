// What an adapter stores outlasts the driver: its flash, and what its ports and its companion chip
// have beside it, in a file of the host. A change has lasted once the request that made it is
// answered. The file begins with the first change; without it everything is as delivered.
#pragma once

#include <cstdint>

#include "model/storage/flash_file.h"

namespace vxemu {

struct Fabric;
struct Flash;
struct Port;

// What of a port stands in the flash beside the regions: the bank in use, and what waits in the
// other one.
struct KeptPort {
    uint8_t secondBank;
    uint8_t nvramWaits;
    uint8_t vpdWaits;
};

// Zero is a flash that goes with the driver.
struct FlashKeeping {
    FlashKeep state;
    FlashFile file;
    bool changed;        // since the last call of KeepChanges
    uint64_t mostBytes;  // the file is written anew when it is longer
    uint32_t companion;  // as kept
};

// Takes over what the adapter's file holds, and starts from it as after a power cycle. A file that
// is not sound, or not the adapter's, is left alone: the flash is as delivered, and what is written
// to it goes with the driver.
void StartKeeping(Fabric& fabric, Flash& flash);

// To be told of bytes that were written to the flash, and of other changes of what an adapter
// stores; by requests that run alone.
void KeepBytes(Flash& flash, uint32_t offset, const uint8_t* bytes, uint32_t length);
void NoteStored(const Port& port);

// At the end of a request that changed what the adapter stores.
void KeepChanges(const Fabric& fabric, Flash& flash);

// Everything that the adapter stores is as delivered again, and the file is gone. False when it
// cannot be removed; nothing has changed then.
bool ForgetStored(Fabric& fabric, Flash& flash);

}  // namespace vxemu
