// fw update: images are looked at, the old contents kept, the new ones written, proven and started.
#include <algorithm>
#include <set>

#include "vxmgr/commands.h"
#include "vxmgr/update/update_folder.h"
#include "vxmgr/update/update_lock.h"
#include "vxmgr/update/update_region.h"
#include "vxmgr/update/update_task.h"

namespace vxmgr {
namespace {

constexpr Argument kUpdateArguments[] = {
    {.name = "FILE",
     .help = "firmware or boot code; several files make one update",
     .repeated = true},
    FlagOption("--resume", "finish the update that was interrupted"),
    FlagOption("--allow-older", "write an older version than there is"),
    FlagOption("--allow-same", "write a version that is stored already, where its bytes differ"),
    FlagOption("--allow-boot-from-san", "also when the host boots through the adapter"),
    FlagOption("--no-activate", "do not start what is written; some adapters do so themselves"),
    TextOption("--backup", "DIR", "where the old contents are kept (this machine's program data)"),
    FlagOption("--skip-backup", "keep no old contents: nothing can bring them back then"),
    FlagOption("--keep-going", "with several adapters, go on behind one that fails"),
};

// The update of one adapter, step by step.
class AdapterUpdate : UpdateTask {
  public:
    AdapterUpdate(Invocation& invocation, AdapterSession& session, UpdateResult& result)
        : UpdateTask(invocation, session, result) {}

    ExitCode Run() { return given_.Has("resume") ? Resume() : Update(); }

  private:
    ExitCode Update() {
        if (const auto interrupted = InterruptedUpdate(invocation_, session_.serial)) {
            Refuse(DescribeInterruption(*interrupted), kAfterInterruption);
        }
        PlanAll();
        if (const ExitCode exit = ReportAll(); exit != ExitCode::Done) {
            result_.outcome = AdapterOutcome::Refused;
            return exit;
        }
        std::erase_if(plans_, [&](const UpdatePlan& plan) { return IsThere(plan); });
        if (plans_.empty()) {
            result_.outcome = AdapterOutcome::Nothing;
            invocation_.Note("nothing to do: adapter " + session_.serial + " holds these versions",
                             "`fw show` tells whether they run; --allow-same writes what differs "
                             "in spite of its version");
            return ExitCode::Done;
        }
        CheckBoot();
        Estimate();
        if (invocation_.DryRun()) {
            invocation_.Note("dry run: adapter " + session_.serial + " is left as it is",
                             result_.command);
            return ExitCode::Done;
        }
        Ask();
        const UpdateGuard guard(invocation_, session_.First());
        UpdateRecord record = Begin();
        return Execute(record, Contents::New);
    }

    ExitCode Resume() {
        RequireBelievable(invocation_, session_.serial);
        auto record = InterruptedUpdate(invocation_, session_.serial);
        if (!record) {
            const UpdateGuard idle(invocation_, session_.First());  // or ends here, busy
            result_.outcome = AdapterOutcome::Nothing;
            invocation_.Note("nothing to do: no update of adapter " + session_.serial +
                             " was interrupted");
            return ExitCode::Done;
        }
        CheckChip(*record);
        result_.folder = record->Folder();
        result_.command = Command("--resume");
        AddRows(*record, Contents::New);
        CheckBoot();
        if (invocation_.DryRun()) {
            invocation_.Note("dry run: " + DescribeInterruption(*record) + " and would be finished",
                             result_.command);
            return ExitCode::Done;
        }
        Confirm("Finish it: " + DescribeInterruption(*record) + ".", {});
        const UpdateGuard guard(invocation_, session_.First());
        record = InterruptedUpdate(invocation_, session_.serial);
        if (!record) {
            Refuse("another program has taken the update up in the meantime",
                   "`fw history` tells how it ended");
        }
        return Execute(*record, Contents::New);
    }

    std::string Command(const std::string& what) const {
        return "vxmgr fw update " + what + " -a serial:" + session_.serial;
    }

    void PlanAll() {
        std::set<uint32_t> codes;
        std::string files;
        for (const std::string& file : given_.All("FILE")) {
            files += (files.empty() ? "" : " ") + QuotedPath(file);
            plans_.push_back(PlanUpdate(invocation_, session_, outlooks_,
                                        {file, "", false, {given_.Has("allow-older")}}));
            if (!codes.insert(plans_.back().region.code).second) {
                Refuse("two files are for region " + plans_.back().region.Name(),
                       "name one of them");
            }
        }
        for (const char* const option :
             {"allow-older", "allow-same", "allow-boot-from-san", "no-activate", "skip-backup"}) {
            files += given_.Has(option) ? " --" + std::string(option) : "";
        }
        if (given_.Has("backup")) {
            files += " --backup " + QuotedPath(given_.Text("backup"));
        }
        result_.command = Command(files);
        // Firmware comes last: where its write restarts the ports, they start all of it.
        std::stable_partition(plans_.begin(), plans_.end(), [](const UpdatePlan& plan) {
            return plan.region.code != HX_REGION_FIRMWARE;
        });
        for (const UpdatePlan& plan : plans_) {
            result_.regions.push_back(Row(plan));
            AddHarm(result_.regions.back());
        }
    }

    UpdateRegionResult Row(const UpdatePlan& plan) const {
        UpdateRegionResult row{.code = plan.region.code,
                               .file = plan.file,
                               .content = kImageKinds[static_cast<size_t>(plan.image.kind)],
                               .chips = ChipsText(plan.image.chips),
                               .running = plan.running,
                               .stored = plan.stored,
                               .wanted = plan.image.version,
                               .size = plan.bytes.size(),
                               .staged = IsStaged(plan.region)};
        if (IsThere(plan)) {
            row.outcome = RegionOutcome::Nothing;
            return row;
        }
        row.reset = Restart();
        row.unsafe = HarmOfPowerCut(plan.region);
        return row;
    }

    bool IsThere(const UpdatePlan& plan) const {
        const auto order = CompareVersions(plan.image.version, plan.stored);
        return plan.same || (!given_.Has("allow-same") && order && *order == 0);
    }

    ExitCode ReportAll() {
        ExitCode exit = ExitCode::Done;
        for (const UpdatePlan& plan : plans_) {
            if (ReportFindings(invocation_, plan) != ExitCode::Done) {
                exit = ExitCode::Refused;
            }
        }
        return exit;
    }

    void Estimate() {
        uint64_t bytes = 0;
        double seconds = 0;
        std::vector<uint64_t> sizes;
        for (const UpdatePlan& plan : plans_) {
            bytes += plan.before.size();
            seconds += plan.readSeconds;
            sizes.push_back(plan.bytes.size());
        }
        rates_ = RatesOf(bytes, seconds, UpdatesOf(invocation_, session_.serial));
        result_.seconds = static_cast<uint64_t>(SecondsFor(sizes)) + 1;
    }

    void Ask() {
        if (given_.Has("skip-backup")) {
            Confirm(
                "Keep no backup: nothing can bring the old contents back then, and an update "
                "that is interrupted can only be finished.",
                {});
        }
        std::vector<std::string> lines;
        for (const UpdateRegionResult& row : result_.regions) {
            if (row.outcome == RegionOutcome::Planned) {
                lines.push_back("  " + RegionName(row.code) + ": " +
                                (row.stored.empty() ? "without a version" : row.stored) + " -> " +
                                row.wanted + ", " + row.file);
            }
        }
        Confirm("Update the adapter:", lines);
    }

    // The journal and the contents, before anything is written.
    UpdateRecord Begin() {
        UpdateRecord record(invocation_, session_, UpdateKind::Update, given_.Text("backup"));
        record.journal.writeRate = static_cast<uint64_t>(rates_.write);
        for (const UpdatePlan& plan : plans_) {
            AddRegion(record, plan, plan.region, plan.before);
            const FlashRegion* const copy = layout_.Find(HX_REGION_BOOT_CODE_SECOND);
            if (copy != nullptr && plan.region.code == HX_REGION_BOOT_CODE) {
                std::vector<uint8_t> held;
                ReadRegion(session_.Handle(), layout_, *copy, &held);
                AddRegion(record, plan, *copy, held).image.clear();
            }
        }
        record.Save(invocation_);
        return record;
    }

    JournalRegion& AddRegion(UpdateRecord& record, const UpdatePlan& plan, const FlashRegion& place,
                             const std::vector<uint8_t>& held) {
        const bool keeps = !given_.Has("skip-backup");
        if (held.empty() && keeps) {
            Refuse("region " + place.Name() + " cannot be read, so that there would be no backup",
                   "--skip-backup does without one");
        }
        JournalRegion& region = record.journal.regions.emplace_back();
        region.code = place.code;
        region.size = plan.bytes.size();
        region.image = plan.file;
        region.before = plan.stored;
        region.after = plan.image.version;
        if (keeps) {
            record.Keep(invocation_, region, Contents::Old, held);
        }
        record.Keep(invocation_, region, Contents::New, plan.bytes);
        return region;
    }

    std::vector<UpdatePlan> plans_;
};

ExitCode FirmwareUpdate(Invocation& invocation) {
    const Options& given = invocation.Given();
    if (given.All("FILE").empty() == !given.Has("resume")) {
        invocation.Fail(ExitCode::Usage, "an update takes FILE, or --resume without one");
    }
    return ForEachAdapter(invocation, [&](AdapterSession& session, UpdateResult& result) {
        return AdapterUpdate(invocation, session, result).Run();
    });
}

}  // namespace

CommandRows FwUpdateCommands() {
    static const Command kCommands[] = {
        {.path = "fw update",
         .risk = Risk::Irrecoverable,
         .help = "write firmware and boot code, prove it, and start it",
         .arguments = kUpdateArguments,
         .run = FirmwareUpdate,
         .example = "fw update firmware.bin boot.bin -a serial:EMU7740A0001",
         .result = ShapeOf<UpdateResultFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
