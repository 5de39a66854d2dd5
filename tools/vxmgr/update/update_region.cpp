#include "vxmgr/update/update_region.h"

#include <algorithm>

#include "common/status_codes.h"
#include "vxmgr/app/size_text.h"
#include "vxmgr/app/values.h"
#include "vxmgr/flash/flash_regions.h"
#include "vxmgr/update/update_interrupt.h"
#include "vxmgr/update/update_lock.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::Severity;

constexpr const char* kStates[] = {"unknown", "old", "new", "mixed"};

std::string Quoted(const FlashRegion& region) {
    return "region " + std::to_string(region.code) + " (" + RegionName(region.code) + ")";
}

void ReadBack(const AdapterSession& session, const RegionWrite& write, RegionOutcome& outcome) {
    std::vector<uint8_t> now;
    outcome.readStatus = ReadRegion(session.Handle(), write.layout, write.region, &now);
    if (outcome.readStatus != HXMGT_SUCCESS) {
        return;
    }
    const size_t length = std::min(now.size(), write.image.size());
    const auto different =
        std::mismatch(now.begin(), now.begin() + static_cast<std::ptrdiff_t>(length),
                      write.image.begin())
            .first;
    outcome.firstDifference = static_cast<size_t>(different - now.begin());
    if (outcome.firstDifference == write.image.size()) {
        outcome.state = RegionState::New;
    } else {
        outcome.state = now == write.before ? RegionState::Old : RegionState::Mixed;
    }
}

// The look at the region and the question may have taken a while.
void CheckBase(const AdapterSession& session, const RegionWrite& write) {
    std::vector<uint8_t> now;
    if (!write.before.empty() &&
        ReadRegion(session.Handle(), write.layout, write.region, &now) == HXMGT_SUCCESS &&
        now != write.before) {
        throw tools::CommandError{
            ExitCode::Refused,
            {Severity::Error,
             "another program changed " + Quoted(write.region) + " meanwhile; nothing was written",
             "look at it again with `fw check`",
             session.Object(),
             {}}};
    }
}

// What to say of a region that does not hold the image.
struct TroubleRow {
    RegionState state;
    ExitCode exit;  // when the write itself failed, its own exit code may say more
    const char* text;
    const char* hint;
};
constexpr TroubleRow kTroubles[] = {
    {RegionState::Old, ExitCode::Failed, "was not written: it holds what it held before",
     "the adapter works as before; the cause is in the status"},
    {RegionState::New, ExitCode::NotProven,
     "holds the whole image, but the adapter reported a failure",
     "look at `fw show` before the adapter is restarted"},
    {RegionState::Mixed, ExitCode::Failed, "holds neither its old contents nor the image",
     "write the region again before the adapter is restarted"},
    {RegionState::Unknown, ExitCode::Failed, "was not written whole, and cannot be read back",
     "read it with `flash read` once the adapter answers, and write it again"},
};

const TroubleRow& TroubleOf(RegionState state) {
    for (const TroubleRow& row : kTroubles) {
        if (row.state == state) {
            return row;
        }
    }
    return kTroubles[0];
}

}  // namespace

const char* StateName(RegionState state) {
    return kStates[static_cast<size_t>(state)];
}

RegionOutcome UpdateRegion(tools::Invocation& invocation, const AdapterSession& session,
                           RegionWrite& write) {
    const std::string region = Quoted(write.region);
    RegionOutcome outcome;
    const FinishFirst finish(invocation, "the region");
    const UpdateLock lock(invocation, session.Handle(), session.First());
    CheckBase(session, write);
    // Runs before the lock's own hook, which needs an answer of the adapter.
    const tools::AbandonHooks::Registration whenGivenUp(
        invocation.Hooks(), [&invocation, region, object = session.Object()] {
            invocation.Changed();
            invocation.Add({Severity::Error,
                            region + " was being written and may hold half of the image",
                            "read it with `flash read` once the adapter answers, and write it "
                            "again before the adapter is restarted",
                            object,
                            {}});
        });
    invocation.CheckStop();  // from here on it waits
    invocation.Progress("writing " + region + ", " + SizeText(write.image.size()));
    outcome.status = WriteRegion(session.Handle(), write.layout, write.region, write.image);
    invocation.Progress("reading " + region + " back");
    ReadBack(session, write, outcome);
    outcome.status = invocation.CauseOf(outcome.status, session.Object());
    outcome.readStatus = invocation.CauseOf(outcome.readStatus, session.Object());
    outcome.interrupted = finish.Interrupted();
    return outcome;
}

ExitCode ReportOutcome(tools::Invocation& invocation, const AdapterSession& session,
                       const RegionWrite& write, const RegionOutcome& outcome) {
    const std::string region = Quoted(write.region);
    if (outcome.Proven()) {
        return ExitCode::Done;
    }
    const bool accepted = outcome.status == HXMGT_SUCCESS || outcome.NeedsRestart();
    if (accepted && outcome.state == RegionState::Unknown) {
        invocation.Add(
            {Severity::Error,
             region + " was written, but cannot be read back: " + StatusMessage(outcome.readStatus),
             "read it with `flash read` and compare before the adapter is restarted",
             session.Object(), outcome.readStatus});
        return outcome.readStatus == kWentAway ? ExitCode::NotFound : ExitCode::NotProven;
    }
    const TroubleRow& trouble = TroubleOf(outcome.state);
    std::string text = region + " " + trouble.text;
    if (outcome.state == RegionState::Mixed) {
        text += "; it is the image up to byte " + std::to_string(outcome.firstDifference);
    }
    if (accepted) {
        invocation.Add({Severity::Error,
                        text + ", although the adapter reported success",
                        trouble.hint,
                        session.Object(),
                        {}});
        return ExitCode::Failed;
    }
    invocation.Add({Severity::Error, text + ": " + StatusMessage(outcome.status), trouble.hint,
                    session.Object(), outcome.status});
    return outcome.state == RegionState::Old || outcome.status == kWentAway
               ? tools::ExitCodeOf(outcome.status)
               : trouble.exit;
}

}  // namespace vxmgr
