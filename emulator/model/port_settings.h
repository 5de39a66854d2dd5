// NVRAM and VPD of a port, wherever its chip keeps them, and the bank that is in use.
#pragma once

#include <cstdint>
#include <span>

#include "flash/region_rules.h"
#include "model/port.h"
#include "model/storage/flash.h"

namespace vxemu {

properties::Chip ChipOf(const Port& port);

// The region of the port's settings in a bank; none on chips without such regions.
PlacedRegion SettingsRegion(const Port& port, const flash::PortRegionRules& rules,
                            flash::Bank bank);
inline flash::Bank ActiveBank(const Port& port) {
    return port.secondBank != 0 ? flash::Bank::Second : flash::Bank::First;
}

// The settings in use; how many bytes there are. 0: no memory, or no region. A block has room for
// kSettingsBytes.
uint32_t ReadNvram(Port& port, uint8_t* block);
uint32_t ReadVpd(Port& port, uint8_t* block);

// To be told of every write to the flash.
void NoteSettingsWritten(Port& port, uint32_t offset, uint32_t length);

// What the firmware does when it starts: it switches to the bank that was written meanwhile, and
// takes over the NVRAM. NvramChecksum, and nothing changed, when that does not hold.
transport::DriverStatus TakeOverSettings(Port& port);

// What it does when it errs: the bank that is not in use is, whatever stands there. Nothing on
// chips with one bank.
void UseOtherBank(Port& port);

}  // namespace vxemu
