// Bringing the regions of an update to their new or their old contents, journal in hand: safe to be
// repeated, and to be cut off at any point.
#pragma once

#include "vxmgr/flash/flash_layout.h"
#include "vxmgr/update/update_adapter.h"
#include "vxmgr/update/update_checks.h"
#include "vxmgr/update/update_progress.h"
#include "vxmgr/update/update_record.h"

namespace vxmgr {

// What reading and writing takes, in bytes a second.
struct FlashRates {
    double read = 0;
    double write = 0;

    double ReadSeconds(uint64_t bytes) const { return static_cast<double>(bytes) / read; }
    double WriteSeconds(uint64_t bytes) const { return static_cast<double>(bytes) / write; }
    // To look at a region, write it and read it back.
    double RegionSeconds(uint64_t bytes) const {
        return 2 * ReadSeconds(bytes) + WriteSeconds(bytes);
    }
};

// read: as measured; the rate of writing is that of the last update of the chip, or, without one,
// that of reading.
FlashRates RatesOf(uint64_t bytesRead, double seconds, const std::vector<UpdateRecord>& before);

// Writes what does not hold its contents yet, and proves it; the journal is ahead of each step.
// Ends the command where a region could not be brought there, and where it was told to stop.
void WriteRegions(Invocation& invocation, const AdapterSession& session, const FlashLayout& layout,
                  UpdateRecord& record, Contents which, const FlashRates& rates,
                  UpdateProgress& progress);

// How the adapter came to run what was written, or will.
enum class StartOutcome : uint8_t { Running, Started, Pending, Failed };

// Starts what is stored with the least restart that works. How it went is told.
struct StartResult {
    StartOutcome how;
    ExitCode exit;
};
StartResult StartStored(Invocation& invocation, AdapterSession& session,
                        const std::vector<UpdateOutlook>& outlooks, const UpdateRecord& record,
                        Contents which, bool wanted);

}  // namespace vxmgr
