// What a port keeps outside the adapter's flash: settings and vital product data of chips without
// regions for them, the transceiver's pages, the version records.
#pragma once

#include <cstdint>

#include "flash/nvram_variables.h"
#include "model/host.h"
#include "model/profile/profile.h"
#include "model/storage/sfp_content.h"

namespace vxemu {

inline constexpr uint32_t kClassicVpdBytes = 256;
inline constexpr uint32_t kVersionRecordBytes = 2048;

struct PortEeprom {
    uint8_t nvram[flash::kClassicBlock];
    uint8_t vpd[kClassicVpdBytes];
    formats::SfpIdentity identity;
    formats::SfpDiagnostics diagnostics;
    uint8_t versionRecords[kVersionRecordBytes];
    uint8_t control;  // bit 4 rises when the adapter is to read the version records
};

struct Port;

// The port's own, made at the first call; null when there is no memory.
PortEeprom* EepromOf(Port& port);

// Writes to it, as far as power lasts; false when that was not all. The range lies within it.
bool WriteEeprom(Port& port, uint8_t* place, const void* bytes, uint32_t length);
void NoteEepromWritten(Port& port);

// What a port is delivered with.
void FillEeprom(const AdapterProfile& adapter, const PortProfile& port, PortEeprom& eeprom);

}  // namespace vxemu
