// One update of an adapter on the disk of this machine: the journal and the contents that belong to
// it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "vxmgr/update/update_adapter.h"
#include "vxmgr/update/update_journal.h"

namespace vxmgr {

enum class Contents : uint8_t { Old, New };

class UpdateRecord {
  public:
    // A new one of this process, in a folder of its own, not yet saved. backup: where the contents
    // go; empty: beside the journal.
    UpdateRecord(Invocation& invocation, const AdapterSession& session, UpdateKind kind,
                 const std::string& backup);
    // One without a journal in the machine's folder: all of it stands in `folder`.
    static UpdateRecord InFolder(const AdapterSession& session, UpdateKind kind,
                                 const std::string& folder);

    // Reads what a folder holds; why it cannot be believed, else.
    static std::optional<UpdateRecord> Load(const std::string& folder, std::string* why);

    UpdateJournal journal;

    const std::string& Folder() const { return folder_; }
    std::string Name() const;  // of the folder: the time

    // Ends the command when the disk does not take it.
    void Save(Invocation& invocation);
    // The same in the middle of a write, which goes on whatever becomes of the journal.
    bool TrySave() { return Store() == 0; }
    // Takes a journal of an earlier process over.
    void Adopt();

    void Keep(Invocation& invocation, JournalRegion& region, Contents which, Bytes bytes);
    // Whole, and those of the journal's hash; ends the command otherwise.
    std::vector<uint8_t> Get(Invocation& invocation, const JournalRegion& region,
                             Contents which) const;

    bool HasBegun() const;  // something may have been written
    bool IsOpen() const;    // it did not come to its end
    // Ended in the middle by a process that is no more.
    bool IsInterrupted() const;
    bool IsRunning() const;  // the process that wrote it lives

    // The region that it stopped in: the first one that does not hold what it should.
    const JournalRegion* StoppedAt() const;

  private:
    UpdateRecord() = default;

    std::string PathOf(const JournalRegion& region, Contents which) const;
    uint32_t Store();  // a Windows error code, or 0

    std::string folder_;
};

// The updates of an adapter that can be believed, the newest last; warns of the others.
std::vector<UpdateRecord> UpdatesOf(Invocation& invocation, const std::string& serial);

// The newest of them, and the same when it was interrupted.
std::optional<UpdateRecord> NewestUpdate(Invocation& invocation, const std::string& serial);
std::optional<UpdateRecord> InterruptedUpdate(Invocation& invocation, const std::string& serial);

// Ends the command when the newest one cannot be believed: what it left is not known then, and an
// older one does not tell.
void RequireBelievable(Invocation& invocation, const std::string& serial);

// Warns of it, unless the command deals with updates itself.
void WarnOfInterruption(Invocation& invocation, const std::string& serial);

// "an update was interrupted in region 1 (firmware) at byte 65536"
std::string DescribeInterruption(const UpdateRecord& record);
inline constexpr char kAfterInterruption[] =
    "`fw restore latest` brings the old contents back, `fw update --resume` finishes the new ones";

}  // namespace vxmgr
