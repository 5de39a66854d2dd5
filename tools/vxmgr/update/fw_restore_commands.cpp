// fw backup, fw restore, fw verify, fw history: what was there before an update, and what is now.
#include <algorithm>

#include "formats/rom_image.h"
#include "vxmgr/commands.h"
#include "vxmgr/update/update_folder.h"
#include "vxmgr/update/update_lock.h"
#include "vxmgr/update/update_messages.h"
#include "vxmgr/update/update_task.h"

namespace vxmgr {
namespace {

constexpr char kLatest[] = "latest";

constexpr Argument kVerifyArguments[] = {
    {.name = "FILE", .help = "the image that should be stored", .required = true},
};
constexpr Argument kBackupArguments[] = {
    {.name = "DIR", .help = "a new folder for the contents", .required = true},
};
constexpr Argument kRestoreArguments[] = {
    {.name = "FROM",
     .help = "latest: what was there before the last update; or a folder of `fw backup`",
     .required = true},
    FlagOption("--allow-boot-from-san", "also when the host boots through the adapter"),
    FlagOption("--no-activate", "do not start what is written; some adapters do so themselves"),
};

// ---- verify

struct Verified {
    UpdatePlan plan;
    uint64_t differences = 0;
    std::optional<uint64_t> first{};
    bool carried = false;  // all differences are the adapter's own identity

    bool IsStored() const { return differences == 0 || carried; }
};

const Fields<Verified>& VerifyFields() {
    static const Fields<Verified> kFields = {
        {kPlanFields, &Verified::plan},
        {"verified", "Stored as it is", kFlag, &Verified::IsStored},
        {"differences", "Bytes that differ", kInteger, &Verified::differences},
        {"first_difference", "First of them", kInteger.OrNull(), &Verified::first},
        {"identity_carried", "Its own identity", kFlag, &Verified::carried,
         "they are what an adapter keeps of its own in boot code: subsystem vendor ID, settings, "
         "and the checksum over them"},
    };
    return kFields;
}

// The bytes of boot code that an adapter keeps as its own.
std::vector<bool> OwnBytes(Bytes image) {
    using namespace formats;
    std::vector<bool> own(image.size());
    const auto mark = [&own](size_t start, size_t count) {
        for (size_t at = start; at < std::min(start + count, own.size()); ++at) {
            own[at] = true;
        }
    };
    const RomChain chain = DecodeRomChain(image);
    for (const RomImage& rom : chain.images) {
        const auto bytes =
            image.subspan(rom.offset, std::min(rom.length, image.size() - rom.offset));
        mark(rom.offset + offsetof(RomHeader, subsystemVendor), sizeof(RomHeader::subsystemVendor));
        mark(rom.offset + rom.length - 1, 1);  // the checksum
        const auto found =
            std::search(bytes.begin(), bytes.end(), std::begin(kNvramMark), std::end(kNvramMark));
        if (found != bytes.end()) {
            mark(rom.offset + static_cast<size_t>(found - bytes.begin()) + kNvramMarkLead,
                 HX_NVRAM_EXTENDED_BYTES);
        }
    }
    return own;
}

void Compare(Verified& result) {
    const UpdatePlan& plan = result.plan;
    const std::vector<bool> own = OwnBytes(plan.bytes);
    result.carried = plan.image.kind == ImageKind::BootCode;
    for (size_t at = 0; at < plan.bytes.size(); ++at) {
        if (at < plan.before.size() && plan.bytes[at] == plan.before[at]) {
            continue;
        }
        result.first = result.first.value_or(at);
        result.carried = result.carried && own[at];
        ++result.differences;
    }
    result.carried = result.carried && result.differences != 0;
}

ExitCode FirmwareVerify(Invocation& invocation) {
    const AdapterSession session = OpenSelectedAdapter(invocation);
    Verified result{PlanUpdate(invocation, session, LookBeforeUpdate(invocation, session),
                               {invocation.Given().Text("FILE"), "", false, {true}})};
    if (result.plan.before.empty()) {
        invocation.Fail(ExitCode::Failed, "region " + result.plan.region.Name() +
                                              " cannot be read, so that nothing "
                                              "can be compared");
    }
    Compare(result);
    invocation.Result() = VerifyFields().Make(result);
    if (!result.IsStored()) {
        invocation.Fail(ExitCode::Failed,
                        session.Object() + ": region " + result.plan.region.Name() +
                            " holds something else than " + result.plan.file,
                        "`fw show` tells which version is stored");
    }
    return ExitCode::Done;
}

// ---- backup

struct BackupResult {
    std::string serial;
    std::string folder;
    std::vector<JournalRegion> regions;
};

const Fields<BackupResult>& BackupFields() {
    using Region = JournalRegion;
    static const Fields<Region> kRegion = {
        {"region", "", kInteger, &Region::code},
        {"region_key", "Region", "REGION", kText,
         [](const Region& region) { return RegionKey(region.code); }},
        {"version", "Version", "VERSION", kText.OrNull(), &Region::before},
        {"size", "Size", "SIZE", Integer("bytes"), &Region::size},
        {"sha256", "SHA-256", "SHA-256", kText, &Region::oldHash},
    };
    static const Fields<BackupResult> kFields = {
        {"serial", "Adapter", kSerial, &BackupResult::serial},
        {"adapter_serial", "", kSerial, &BackupResult::serial},
        {"folder", "Folder", kText, &BackupResult::folder},
        {"regions", "Regions", kRegion, &BackupResult::regions, ListLayout::Table, "none"},
    };
    return kFields;
}

ExitCode FirmwareBackup(Invocation& invocation) {
    const std::string folder = invocation.Given().Text("DIR");
    const AdapterSession session = OpenSelectedAdapter(invocation);
    const FlashLayout layout = ReadFlashLayout(invocation, session.First(), session.Handle());
    if (const uint32_t error = MakeNewFolder(folder); error != 0) {
        invocation.Fail(error, "the folder " + folder + " cannot be made anew");
    }
    UpdateRecord record = UpdateRecord::InFolder(session, UpdateKind::Backup, folder);
    for (const FlashRegion& place : layout.regions) {
        const RegionKind kind = RegionKindOf(place.code);
        if (kind != RegionKind::BootCode && kind != RegionKind::Firmware) {
            continue;
        }
        invocation.CheckStop();
        invocation.Progress("reading region " + std::to_string(place.code) + " (" + place.Name() +
                            ")");
        std::vector<uint8_t> bytes;
        const HX_STATUS status = ReadRegion(session.Handle(), layout, place, &bytes);
        if (status != HXMGT_SUCCESS) {
            invocation.Fail(status, "region " + place.Name() + " cannot be read", session.Object());
        }
        std::vector<uint8_t> again;
        if (ReadRegion(session.Handle(), layout, place, &again) != HXMGT_SUCCESS ||
            again != bytes) {
            FailAt(session.Object(), ExitCode::Failed,
                   "region " + place.Name() +
                       " reads differently each time: another program writes to it, or the adapter "
                       "reads wrong; there is no backup",
                   "try again; `flash lock show` tells who writes");
        }
        JournalRegion& region = record.journal.regions.emplace_back();
        region.code = place.code;
        region.size = place.size;
        region.image = place.Key();
        region.before = InspectImage(bytes).version;
        region.step = RegionStep::Verified;
        record.Keep(invocation, region, Contents::Old, bytes);
    }
    record.journal.phase = UpdatePhase::Done;
    record.journal.outcome = "kept";
    record.Save(invocation);
    invocation.Result() = BackupFields().Make({session.serial, folder, record.journal.regions});
    return ExitCode::Done;
}

// ---- restore

// The record to restore from; ends the command when there is none, or it is of another adapter.
UpdateRecord RecordOf(Invocation& invocation, const AdapterSession& session,
                      const std::string& from) {
    if (from == kLatest) {
        RequireBelievable(invocation, session.serial);
        std::vector<UpdateRecord> records = UpdatesOf(invocation, session.serial);
        // An update that wrote nothing has nothing to bring back.
        std::erase_if(records, [](const UpdateRecord& record) {
            return record.journal.phase == UpdatePhase::Failed ||
                   record.journal.phase == UpdatePhase::Planned;
        });
        if (records.empty()) {
            FailAt(session.Object(), ExitCode::NotFound,
                   "this machine knows of no update of adapter " + session.serial,
                   "`fw restore DIR` takes a folder that `fw backup` made");
        }
        return std::move(records.back());
    }
    std::string why;
    auto record = UpdateRecord::Load(from, &why);
    if (!record) {
        invocation.Fail(ExitCode::Refused, from + " is no backup that can be believed: " + why,
                        "`fw backup DIR` makes one");
    }
    if (record->journal.serial != session.serial) {
        invocation.Fail(ExitCode::Refused, from + " is of adapter " + record->journal.serial +
                                               ", and " + session.serial + " is selected");
    }
    return std::move(*record);
}

class AdapterRestore : UpdateTask {
  public:
    AdapterRestore(Invocation& invocation, AdapterSession& session, UpdateResult& result)
        : UpdateTask(invocation, session, result) {}

    ExitCode Run() {
        const std::string from = given_.Text("FROM");
        UpdateRecord source = RecordOf(invocation_, session_, from);
        CheckChip(source);
        result_.folder = source.Folder();
        result_.command = "vxmgr fw restore " + QuotedPath(from) + " -a serial:" + session_.serial;
        AddRows(source, Contents::Old);
        std::vector<uint64_t> sizes;
        const bool there = Compare(source, &sizes);
        result_.seconds = static_cast<uint64_t>(SecondsFor(sizes)) + 1;
        if (there && !source.IsOpen()) {
            result_.outcome = AdapterOutcome::Nothing;
            invocation_.Note("nothing to do: adapter " + session_.serial + " holds these contents");
            return ExitCode::Done;
        }
        CheckBoot();
        if (invocation_.DryRun()) {
            invocation_.Note("dry run: the old contents would be written", result_.command);
            return ExitCode::Done;
        }
        Confirm("Bring the contents of " + source.journal.started.substr(0, 19) + "Z back.", {});
        const UpdateGuard guard(invocation_, session_.First());
        if (source.journal.kind == UpdateKind::Backup) {
            UpdateRecord record = RecordFrom(source);
            return Execute(record, Contents::New);
        }
        for (JournalRegion& region : source.journal.regions) {
            region.step = RegionStep::Waiting;
            region.reached = 0;
        }
        return Execute(source, Contents::Old);
    }

  private:
    // Looks at what the regions hold; true when all hold their old contents. sizes: of the others.
    bool Compare(const UpdateRecord& source, std::vector<uint64_t>* sizes) {
        for (size_t i = 0; i < source.journal.regions.size(); ++i) {
            const JournalRegion& region = source.journal.regions[i];
            UpdateRegionResult& row = result_.regions[i];
            invocation_.CheckStop();
            const std::vector<uint8_t> held = Held(region);
            const bool same = held == source.Get(invocation_, region, Contents::Old);
            row.stored = InspectImage(held).version;
            row.outcome = same ? RegionOutcome::Nothing : RegionOutcome::Planned;
            row.reset = same ? std::string() : Restart();
            if (!same) {
                sizes->push_back(region.size);
            }
        }
        return sizes->empty();
    }

    // Empty: it cannot be read.
    std::vector<uint8_t> Held(const JournalRegion& region) {
        std::vector<uint8_t> held;
        if (const FlashRegion* const place = layout_.Find(region.code)) {
            ReadRegion(session_.Handle(), layout_, *place, &held);
        }
        return held;
    }

    // A restore from a folder is an update like others: what it writes over is kept as well.
    UpdateRecord RecordFrom(const UpdateRecord& source) {
        UpdateRecord record(invocation_, session_, UpdateKind::Restore, {});
        for (const JournalRegion& kept : source.journal.regions) {
            JournalRegion& region = record.journal.regions.emplace_back();
            region.code = kept.code;
            region.size = kept.size;
            region.image = source.Folder();
            region.after = kept.before;
            const std::vector<uint8_t> held = Held(kept);
            region.before = InspectImage(held).version;
            record.Keep(invocation_, region, Contents::Old, held);
            record.Keep(invocation_, region, Contents::New,
                        source.Get(invocation_, kept, Contents::Old));
        }
        record.Save(invocation_);
        return record;
    }
};

ExitCode FirmwareRestore(Invocation& invocation) {
    return ForEachAdapter(invocation, [&](AdapterSession& session, UpdateResult& result) {
        return AdapterRestore(invocation, session, result).Run();
    });
}

// ---- history

const Fields<UpdateRecord>& HistoryRowFields() {
    using Row = UpdateRecord;
    static const Fields<JournalRegion> kRegion = {
        {"region", "", kInteger, &JournalRegion::code},
        {"region_key", "", kText,
         [](const JournalRegion& region) { return RegionKey(region.code); }},
        {"version_before", "", kText.OrNull(), &JournalRegion::before},
        {"version_after", "", kText.OrNull(), &JournalRegion::after},
        {"step", "", Choice(kRegionSteps),
         [](const JournalRegion& region) {
             return kRegionSteps[static_cast<size_t>(region.step)];
         }},
        {"reached", "", Integer("bytes"), &JournalRegion::reached},
    };
    static const Fields<Row> kFields = {
        {"started", "Started", "STARTED", kText,
         [](const Row& row) { return row.journal.started; }},
        {"ended", "Last change", kText, [](const Row& row) { return row.journal.changed; }},
        {"adapter_serial", "Adapter", "ADAPTER", kSerial,
         [](const Row& row) { return row.journal.serial; }},
        {"kind", "Kind", "KIND", Choice(kUpdateKinds),
         [](const Row& row) { return kUpdateKinds[static_cast<size_t>(row.journal.kind)]; }},
        {"phase", "Phase", "PHASE", Choice(kUpdatePhases),
         [](const Row& row) { return kUpdatePhases[static_cast<size_t>(row.journal.phase)]; }},
        {"interrupted", "Interrupted", kFlag, &Row::IsInterrupted},
        {"versions", "Versions", "VERSIONS", kText,
         [](const Row& row) {
             std::string text;
             for (const JournalRegion& region : row.journal.regions) {
                 if (!region.IsCompanion()) {
                     text += (text.empty() ? "" : ", ") + RegionKey(region.code) + " " +
                             region.before + (region.after.empty() ? "" : " -> " + region.after);
                 }
             }
             return text;
         }},
        {"user", "By", "BY", kText.OrNull(), [](const Row& row) { return row.journal.user; }},
        {"outcome", "Outcome", kText.OrNull(), [](const Row& row) { return row.journal.outcome; }},
        {"tool", "Tool", kText, [](const Row& row) { return row.journal.tool; }},
        {"library", "Library", kText, [](const Row& row) { return row.journal.library; }},
        {"folder", "Folder", kText, &Row::Folder},
        {"regions", "Regions", kRegion, [](const Row& row) { return row.journal.regions; }},
    };
    return kFields;
}

using UpdateRecords = std::vector<UpdateRecord>;

const Fields<UpdateRecords>& HistoryFields() {
    static const auto kFields =
        ListOf<UpdateRecords>("updates", "Updates", HistoryRowFields(), ListLayout::Table,
                              "This machine knows of no updates.");
    return kFields;
}

// Also of adapters that are gone: without a selection, whatever this machine knows.
ExitCode FirmwareHistory(Invocation& invocation) {
    std::vector<std::string> serials;
    if (invocation.Given().Has("adapter") || invocation.Given().Has("port")) {
        const std::vector<Port> ports = ReadPorts(invocation);
        const std::vector<Adapter> adapters = GroupAdapters(ports);
        for (const Adapter* adapter : SelectAdapters(invocation, adapters)) {
            serials.push_back(adapter->First().Serial());
        }
    } else {
        serials = AdaptersWithUpdates();
    }
    UpdateRecords records;
    for (const std::string& serial : serials) {
        for (const std::string& folder : UpdateFolders(serial)) {
            std::string why;
            if (auto record = UpdateRecord::Load(folder, &why)) {
                records.push_back(std::move(*record));
            } else {
                invocation.Warn("the update in " + folder + " is passed over: " + why);
            }
        }
    }
    std::ranges::stable_sort(records, {},
                             [](const UpdateRecord& record) { return record.journal.started; });
    invocation.Result() = HistoryFields().Make(records);
    return ExitCode::Done;
}

}  // namespace

CommandRows FwRestoreCommands() {
    static const Command kCommands[] = {
        {.path = "fw verify",
         .help = "whether an adapter's flash holds what a file holds",
         .arguments = kVerifyArguments,
         .run = FirmwareVerify,
         .example = "fw verify firmware.bin -a serial:EMU7740A0001",
         .result = ShapeOf<VerifyFields>},
        {.path = "fw backup",
         .help = "keep an adapter's firmware and boot code in a new folder",
         .arguments = kBackupArguments,
         .run = FirmwareBackup,
         .example = "fw backup before-the-update -a serial:EMU7740A0001",
         .result = ShapeOf<BackupFields>},
        {.path = "fw restore",
         .risk = Risk::Irrecoverable,
         .help = "bring back what was there before an update",
         .arguments = kRestoreArguments,
         .run = FirmwareRestore,
         .example = "fw restore latest -a serial:EMU7740A0001",
         .result = ShapeOf<UpdateResultFields>},
        {.path = "fw history",
         .help =
             "what was written to the adapters from this machine, when, by whom, and how it ended",
         .run = FirmwareHistory,
         .example = "fw history",
         .result = ShapeOf<HistoryFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
