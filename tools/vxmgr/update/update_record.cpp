#include "vxmgr/update/update_record.h"

#include <windows.h>

#include <algorithm>
#include <chrono>

#include "common/console.h"
#include "frame/owned.h"
#include "vxmgr/app/answer_memory.h"
#include "vxmgr/app/document.h"
#include "vxmgr/app/library.h"
#include "vxmgr/app/sha256.h"
#include "vxmgr/app/values.h"
#include "vxmgr/flash/flash_regions.h"
#include "vxmgr/update/update_folder.h"
#include "vxmgr/update/update_messages.h"

namespace vxmgr {
namespace {

constexpr size_t kMostJournalBytes = 1u << 20;

uint64_t Ticks(const FILETIME& time) {
    return uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

// When a process began; 0 when it cannot be told.
uint64_t StartOf(HANDLE process) {
    FILETIME start{};
    FILETIME unused{};
    return GetProcessTimes(process, &start, &unused, &unused, &unused) ? Ticks(start) : 0;
}

bool Lives(uint64_t processId, const std::string& start) {
    const frame::OwnedObject process(OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION,
                                                 FALSE, static_cast<DWORD>(processId)));
    if (!process.Valid()) {
        return GetLastError() == ERROR_ACCESS_DENIED;
    }
    return WaitForSingleObject(process.Get(), 0) == WAIT_TIMEOUT &&
           std::to_string(StartOf(process.Get())) == start;
}

std::string UserName() {
    wchar_t name[257] = {};
    DWORD length = static_cast<DWORD>(std::size(name));
    return GetUserNameW(name, &length) ? tools::console::ToUtf8(name) : std::string();
}

std::string Now() {
    return FormatUtc(std::chrono::system_clock::now());
}

Bytes BytesOfText(const std::string& text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

UpdateJournal NewJournal(const AdapterSession& session, UpdateKind kind) {
    UpdateJournal journal;
    journal.kind = kind;
    journal.serial = session.serial;
    journal.model = ModelOf(session.First());
    journal.chip = ChipTextOf(session);
    journal.started = Now();
    return journal;
}

}  // namespace

UpdateRecord::UpdateRecord(Invocation& invocation, const AdapterSession& session, UpdateKind kind,
                           const std::string& backup)
    : journal(NewJournal(session, kind)) {
    folder_ = MakeUpdateFolder(invocation, session.serial);
    if (!backup.empty()) {
        journal.backup = JoinPath(AbsolutePath(backup), Name());
        if (const uint32_t error = tools::console::MakeFolder(journal.backup); error != 0) {
            invocation.Fail(error, "the folder " + journal.backup + " cannot be made");
        }
    }
    Adopt();
}

UpdateRecord UpdateRecord::InFolder(const AdapterSession& session, UpdateKind kind,
                                    const std::string& folder) {
    UpdateRecord record;
    record.journal = NewJournal(session, kind);
    record.folder_ = folder;
    record.Adopt();
    return record;
}

std::optional<UpdateRecord> UpdateRecord::Load(const std::string& folder, std::string* why) {
    UpdateRecord record;
    record.folder_ = folder;
    std::vector<uint8_t> bytes;
    const uint32_t error =
        IsTrusted(folder) ? LoadTrusted(JoinPath(folder, kJournalFile), kMostJournalBytes, &bytes)
                          : uint32_t{ERROR_INVALID_OWNER};
    if (error == ERROR_INVALID_OWNER) {
        *why = "it belongs to neither the administrators nor you";
        return std::nullopt;
    }
    if (error != ERROR_SUCCESS) {
        *why = tools::console::SystemErrorText(error);
        return std::nullopt;
    }
    try {
        record.journal = ReadJournal({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    } catch (const DocumentError& wrong) {
        *why = wrong.text;
        return std::nullopt;
    }
    return record;
}

std::string UpdateRecord::Name() const {
    return folder_.substr(folder_.find_last_of("\\/") + 1);
}

void UpdateRecord::Adopt() {
    journal.user = UserName();
    journal.process = GetCurrentProcessId();
    journal.processStart = std::to_string(StartOf(GetCurrentProcess()));
    journal.tool = kToolVersion;
    journal.library = LibraryVersion();
}

uint32_t UpdateRecord::Store() {
    journal.changed = Now();
    return SaveDurably(JoinPath(folder_, kJournalFile), BytesOfText(JournalDocument(journal)));
}

void UpdateRecord::Save(Invocation& invocation) {
    if (const uint32_t error = Store(); error != 0) {
        invocation.Fail(error,
                        "the journal in " + folder_ + " cannot be written, the update ends here");
    }
}

std::string UpdateRecord::PathOf(const JournalRegion& region, Contents which) const {
    return JoinPath(
        journal.backup.empty() ? folder_ : journal.backup,
        "region-" + std::to_string(region.code) + (which == Contents::Old ? ".old" : ".new"));
}

void UpdateRecord::Keep(Invocation& invocation, JournalRegion& region, Contents which,
                        Bytes bytes) {
    const std::string path = PathOf(region, which);
    if (const uint32_t error = SaveDurably(path, bytes); error != 0) {
        invocation.Fail(error, path + " cannot be written, the update ends here");
    }
    (which == Contents::Old ? region.oldHash : region.newHash) = Sha256Of(bytes);
}

std::vector<uint8_t> UpdateRecord::Get(Invocation& invocation, const JournalRegion& region,
                                       Contents which) const {
    const std::string& hash = which == Contents::Old ? region.oldHash : region.newHash;
    const std::string path = PathOf(region, which);
    const auto refuse = [&](const std::string& text) {
        invocation.Fail(ExitCode::Refused, path + " " + text + ": nothing is written from it",
                        "`fw restore DIR` takes what `fw backup` kept, `flash write` an image");
    };
    std::vector<uint8_t> bytes;
    if (hash.empty()) {
        refuse("was never made");
    }
    switch (const uint32_t error = LoadTrusted(path, region.size, &bytes)) {
        case ERROR_SUCCESS:
            break;
        case ERROR_INVALID_OWNER:
            refuse("belongs to neither the administrators nor you");
            break;
        default:
            refuse("cannot be read (" + tools::console::SystemErrorText(error) + ")");
    }
    if (bytes.size() != region.size || Sha256Of(bytes) != hash) {
        refuse("is not what the journal says");
    }
    return bytes;
}

bool UpdateRecord::IsRunning() const {
    return Lives(journal.process, journal.processStart);
}

bool UpdateRecord::HasBegun() const {
    return std::ranges::any_of(journal.regions, [](const JournalRegion& region) {
        return region.step != RegionStep::Waiting;
    });
}

bool UpdateRecord::IsOpen() const {
    return journal.phase == UpdatePhase::Writing || journal.phase == UpdatePhase::Activating ||
           journal.phase == UpdatePhase::Restoring;
}

bool UpdateRecord::IsInterrupted() const {
    return IsOpen() && (!journal.outcome.empty() || !IsRunning());
}

const JournalRegion* UpdateRecord::StoppedAt() const {
    for (const JournalRegion& region : journal.regions) {
        if (region.step != RegionStep::Verified) {
            return &region;
        }
    }
    return nullptr;
}

namespace {

// What a folder holds, when it can be believed to be of the adapter; else why not.
std::optional<UpdateRecord> LoadOf(const std::string& folder, const std::string& serial,
                                   std::string* why) {
    auto record = UpdateRecord::Load(folder, why);
    if (record && record->journal.serial != serial) {
        *why = "it is one of adapter " + record->journal.serial;
        record.reset();
    }
    return record;
}

std::string PassedOver(const std::string& folder, const std::string& why) {
    return "the update in " + folder + " is passed over: " + why;
}

struct NewestAnswer {
    std::optional<UpdateRecord> newest;
    std::vector<std::string> passedOver;  // warnings
};

NewestAnswer FindNewest(const std::string& serial) {
    const std::vector<std::string> folders =
        serial.empty() ? std::vector<std::string>() : UpdateFolders(serial);
    NewestAnswer answer;
    for (size_t i = folders.size(); i-- != 0 && !answer.newest;) {
        std::string why;
        answer.newest = LoadOf(folders[i], serial, &why);
        if (!answer.newest) {
            answer.passedOver.push_back(PassedOver(folders[i], why));
        }
    }
    return answer;
}

}  // namespace

std::vector<UpdateRecord> UpdatesOf(Invocation& invocation, const std::string& serial) {
    std::vector<UpdateRecord> records;
    for (const std::string& folder : UpdateFolders(serial)) {
        std::string why;
        if (auto record = LoadOf(folder, serial, &why)) {
            records.push_back(std::move(*record));
        } else {
            invocation.Warn(PassedOver(folder, why));
        }
    }
    return records;
}

std::optional<UpdateRecord> NewestUpdate(Invocation& invocation, const std::string& serial) {
    static AnswerMemory<std::string, NewestAnswer> memory;
    NewestAnswer answer = memory.Get(serial, [&] { return FindNewest(serial); });
    for (const std::string& text : answer.passedOver) {
        invocation.Warn(text);
    }
    return std::move(answer.newest);
}

std::optional<UpdateRecord> InterruptedUpdate(Invocation& invocation, const std::string& serial) {
    auto newest = NewestUpdate(invocation, serial);
    return newest && newest->IsInterrupted() ? std::move(newest) : std::nullopt;
}

void RequireBelievable(Invocation& invocation, const std::string& serial) {
    const std::vector<std::string> folders = UpdateFolders(serial);
    std::string why;
    if (!folders.empty() && !LoadOf(folders.back(), serial, &why)) {
        invocation.Fail(ExitCode::Refused,
                        "what the last update in " + folders.back() +
                            " left cannot be believed: " + why + "; nothing was written",
                        "`fw show` tells what the adapter holds, `fw restore DIR` takes what an "
                        "older update or `fw backup` kept");
    }
}

void WarnOfInterruption(Invocation& invocation, const std::string& serial) {
    constexpr std::string_view kTellThemselves[] = {"fw update", "fw restore", "fw history",
                                                    "health", "metrics"};
    if (std::ranges::find(kTellThemselves, invocation.OwnCommand().path) !=
        std::end(kTellThemselves)) {
        return;
    }
    if (const auto record = InterruptedUpdate(invocation, serial)) {
        invocation.Warn("adapter " + serial + ": " + DescribeInterruption(*record),
                        std::string(kAfterInterruption) + " (-a serial:" + serial + ")");
    }
}

std::string DescribeInterruption(const UpdateRecord& record) {
    const JournalRegion* const region = record.StoppedAt();
    const std::string what =
        std::string(record.journal.phase == UpdatePhase::Restoring ? "a restore" : "an update") +
        " of " + record.journal.started.substr(0, 19) + "Z was interrupted";
    if (region == nullptr) {
        return what + " before it was activated";
    }
    return what + " in region " + std::to_string(region->code) + " (" + RegionName(region->code) +
           ") at byte " + std::to_string(region->reached);
}

}  // namespace vxmgr
