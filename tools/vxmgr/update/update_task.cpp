#include "vxmgr/update/update_task.h"

#include <algorithm>

#include "vxmgr/flash/flash_regions.h"
#include "vxmgr/update/update_lock.h"
#include "vxmgr/update/update_messages.h"
#include "vxmgr/update/update_region.h"
#include "vxmgr/update/update_stored.h"

namespace vxmgr {
namespace {

constexpr double kSecondsToStart = 1;  // a port

RegionOutcome OutcomeOf(const JournalRegion& region) {
    switch (region.step) {
        case RegionStep::Verified:
            return RegionOutcome::Written;
        case RegionStep::Writing:
            return RegionOutcome::Failed;
        default:
            return RegionOutcome::NotReached;
    }
}

}  // namespace

UpdateTask::UpdateTask(Invocation& invocation, AdapterSession& session, UpdateResult& result)
    : invocation_(invocation),
      given_(invocation.Given()),
      session_(session),
      result_(result),
      outlooks_(LookBeforeUpdate(invocation, session)),
      layout_(ReadFlashLayout(invocation, session.First(), session.Handle())) {
    for (const UpdateOutlook& outlook : outlooks_) {
        result_.warnings.insert(result_.warnings.end(), outlook.warnings.begin(),
                                outlook.warnings.end());
    }
}

void UpdateTask::Refuse(const std::string& text, const std::string& hint) {
    result_.outcome = AdapterOutcome::Refused;
    FailAt(session_.Object(), ExitCode::Refused, text + ", nothing was written", hint);
}

void UpdateTask::CheckChip(const UpdateRecord& record) {
    if (record.journal.chip != result_.chip) {
        Refuse("what was kept is of chip " + record.journal.chip + ", this is " + result_.chip,
               "`fw history` lists what there is");
    }
}

void UpdateTask::CheckBoot() {
    for (size_t i = 0; i < outlooks_.size(); ++i) {
        if (outlooks_[i].bootsFromSan.value_or(false) && !given_.Has("allow-boot-from-san")) {
            Refuse("the host boots through " + session_.ports[i].Name(),
                   "have a way to boot without it, then give --allow-boot-from-san");
        }
    }
}

bool UpdateTask::StartsOnline() const {
    return std::all_of(outlooks_.begin(), outlooks_.end(), [](const UpdateOutlook& outlook) {
        return outlook.activatesOnline && !outlook.bootsFromSan.value_or(false);
    });
}

void UpdateTask::AddRows(const UpdateRecord& record, Contents which) {
    for (const JournalRegion& region : record.journal.regions) {
        const bool back = which == Contents::Old;
        const FlashRegion* const place = layout_.Find(region.code);
        result_.regions.push_back({.code = region.code,
                                   .file = region.image,
                                   .running = RunningVersion(session_.First(), region.code),
                                   .stored = back ? region.after : region.before,
                                   .wanted = back ? region.before : region.after,
                                   .size = region.size,
                                   .staged = place != nullptr && IsStaged(*place),
                                   .unsafe = place != nullptr ? HarmOfPowerCut(*place) : "",
                                   .reset = Restart()});
        AddHarm(result_.regions.back());
    }
}

void UpdateTask::AddHarm(const UpdateRegionResult& row) {
    if (!row.unsafe.empty()) {
        result_.warnings.push_back(RegionName(row.code) + ": " + row.unsafe);
    }
}

void UpdateTask::Confirm(const std::string& action, const std::vector<std::string>& lines) {
    Question question = QuestionAbout(session_, action);
    question.lines.insert(question.lines.end(), lines.begin(), lines.end());
    question.lines.push_back(
        "The firmware of all its ports may restart: I/O through them stops then.");
    for (const std::string& warning : result_.warnings) {
        question.lines.push_back("Warning: " + warning);
    }
    invocation_.Confirm(question);
    invocation_.CheckStop();
}

double UpdateTask::StartSeconds() const {
    return kSecondsToStart * static_cast<double>(session_.ports.size());
}

double UpdateTask::SecondsFor(const std::vector<uint64_t>& sizes) const {
    double seconds = StartSeconds();
    for (const uint64_t size : sizes) {
        seconds += rates_.RegionSeconds(size);
    }
    return seconds;
}

ExitCode UpdateTask::Execute(UpdateRecord& record, Contents which) {
    result_.outcome = AdapterOutcome::Failed;
    result_.folder = record.Folder();
    std::vector<uint64_t> sizes;
    for (const JournalRegion& region : record.journal.regions) {
        sizes.push_back(region.size);
    }
    record.Adopt();
    record.journal.outcome.clear();
    UpdateProgress progress(invocation_, session_.serial, SecondsFor(sizes));
    try {
        WriteRegions(invocation_, session_, layout_, record, which, rates_, progress);
    } catch (const CommandError& error) {
        NoteRegions(record);
        result_.status = error.message.status;
        throw;
    } catch (const tools::Stopped&) {
        NoteRegions(record);
        TellWhereItStopped(record);
        throw;
    }
    NoteRegions(record);
    record.journal.phase = UpdatePhase::Activating;
    record.Save(invocation_);
    progress.Begin("starting what is stored", 0, StartSeconds());
    const StartResult start =
        StartStored(invocation_, session_, outlooks_, record, which, !given_.Has("no-activate"));
    progress.Finish();
    Finish(record, which, start);
    return start.exit;
}

void UpdateTask::Finish(UpdateRecord& record, Contents which, const StartResult& start) {
    struct Row {
        AdapterOutcome outcome;
        const char* text;
    };
    constexpr Row kRows[] = {
        {AdapterOutcome::Done, "written, proven, and running"},
        {AdapterOutcome::Done, "written, proven, started, and running"},
        {AdapterOutcome::Pending, "written and proven; not started yet"},
        {AdapterOutcome::Failed, "written and proven; could not be started"},
    };
    const Row& row = kRows[static_cast<size_t>(start.how)];
    result_.outcome = row.outcome;
    result_.after = RunningFirmware(session_.First());
    record.journal.phase = which == Contents::Old ? UpdatePhase::Restored : UpdatePhase::Done;
    record.journal.outcome = row.text;
    if (!record.TrySave()) {
        invocation_.Warn("the journal in " + record.Folder() +
                         " cannot be written: it says less than was done");
    }
}

void UpdateTask::NoteRegions(const UpdateRecord& record) {
    for (const JournalRegion& region : record.journal.regions) {
        for (UpdateRegionResult& row : result_.regions) {
            if (row.code == region.code) {
                row.outcome = OutcomeOf(region);
            }
        }
    }
}

void UpdateTask::TellWhereItStopped(UpdateRecord& record) {
    const JournalRegion* const next = record.StoppedAt();
    if (!record.HasBegun()) {
        record.journal.phase = UpdatePhase::Failed;
    }
    record.journal.outcome = "stopped by the user or the time limit";
    record.TrySave();
    if (!record.HasBegun()) {
        invocation_.Note("nothing was written");
    } else if (next == nullptr) {
        invocation_.Warn("all of it is written and proven, and not started", kAfterInterruption);
    } else {
        invocation_.Warn("stopped before region " + std::to_string(next->code) + " (" +
                             RegionName(next->code) + "); those before it are whole",
                         kAfterInterruption);
    }
}

}  // namespace vxmgr
