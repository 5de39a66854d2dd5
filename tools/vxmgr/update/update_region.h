// Writing one region of the flash, and proving that it was.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "vxmgr/flash/flash_layout.h"
#include "vxmgr/update/update_adapter.h"

namespace vxmgr {

// What reading a region back showed.
enum class RegionState : uint8_t { Unknown, Old, New, Mixed };

const char* StateName(RegionState state);

struct RegionWrite {
    const FlashLayout& layout;
    const FlashRegion& region;
    std::vector<uint8_t> before;  // its contents; empty: they could not be read
    std::vector<uint8_t> image;   // as it goes out; the library may change it
};

struct RegionOutcome {
    HX_STATUS status = HXMGT_SUCCESS;      // of the write
    HX_STATUS readStatus = HXMGT_SUCCESS;  // of reading it back
    RegionState state = RegionState::Unknown;
    size_t firstDifference = 0;  // Mixed: up to here it is the image
    bool interrupted = false;    // Ctrl-C came meanwhile: nothing more may be started

    // Written, although the library could not restart the ports behind it.
    bool NeedsRestart() const { return status == HXMGT_FLASH_UPDATE_NOT_ACTIVATED; }
    bool Proven() const {
        return state == RegionState::New && (status == HXMGT_SUCCESS || NeedsRestart());
    }
};

// Takes the update lock, writes, reads back and compares. Ends the command only when the lock is
// not to be had, or another program has changed the region: nothing is written then.
RegionOutcome UpdateRegion(tools::Invocation& invocation, const AdapterSession& session,
                           RegionWrite& write);

// Reports what did not go well; the exit code that it leads to.
tools::ExitCode ReportOutcome(tools::Invocation& invocation, const AdapterSession& session,
                              const RegionWrite& write, const RegionOutcome& outcome);

}  // namespace vxmgr
