// An update that may be made: image, region and adapter looked at together, nothing written.
#pragma once

#include "vxmgr/flash/flash_image_check.h"
#include "vxmgr/flash/flash_layout.h"
#include "vxmgr/update/update_adapter.h"
#include "vxmgr/update/update_checks.h"

namespace vxmgr {

// What is to be written, and where.
struct UpdateGiven {
    std::string file;
    std::string region;  // as it was typed; empty: where images of the kind belong
    bool pad = false;    // fill a shorter image up to the region's size
    ImageLeave leave;
};

struct UpdatePlan {
    const AdapterSession* session = nullptr;
    std::string file;
    FlashLayout layout;
    FlashRegion region;
    std::vector<uint8_t> bytes;   // of the image, as they would go out
    std::vector<uint8_t> before;  // of the region; empty: it cannot be read
    double readSeconds = 0;       // that this took
    ImageInfo image;
    std::string stored;   // version in the region; empty: none
    std::string running;  // version that was started from it; the same
    bool same = false;    // the region holds these bytes already
    bool mayRestart = false;
    std::vector<std::string> warnings;
    std::vector<Finding> findings;
};

// An image file of a plausible size.
std::vector<uint8_t> ReadImage(Invocation& invocation, const std::string& path);

// Ends the command when the adapter has no such region. outlooks: of its ports. The session has to
// live as long as the plan.
UpdatePlan PlanUpdate(Invocation& invocation, const AdapterSession& session,
                      const std::vector<UpdateOutlook>& outlooks, const UpdateGiven& given);

// Tells the findings; Refused when one of them forbids the update.
ExitCode ReportFindings(Invocation& invocation, const UpdatePlan& plan);

extern const Fields<UpdatePlan> kPlanFields;

Question QuestionAbout(const UpdatePlan& plan);

}  // namespace vxmgr
