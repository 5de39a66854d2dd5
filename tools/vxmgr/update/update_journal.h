// The journal of one update: what it writes, how far it has come, and whom to ask. With it stand
// the old and the new contents of each region, so that an update that ended in the middle can be
// brought back or finished.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "records/fields.h"
#include "vxmgr/app/bytes.h"

namespace vxmgr {

enum class UpdateKind : uint8_t { Update, Restore, Backup };
inline constexpr const char* kUpdateKinds[] = {"update", "restore", "backup"};

// From Writing on the flash may hold something new.
enum class UpdatePhase : uint8_t {
    Planned,
    Writing,
    Activating,  // all regions hold what they should
    Done,
    Restoring,
    Restored,
    Failed,  // nothing was written
};
inline constexpr const char* kUpdatePhases[] = {"planned",   "writing",  "activating", "done",
                                                "restoring", "restored", "failed"};

enum class RegionStep : uint8_t { Waiting, Writing, Verified };
inline constexpr const char* kRegionSteps[] = {"waiting", "writing", "verified"};

struct JournalRegion {
    uint32_t code = 0;
    uint64_t size = 0;   // bytes
    std::string image;   // file that it is written from; empty: written along with another
    std::string before;  // versions; empty: none
    std::string after;
    std::string oldHash;  // SHA-256 of the contents; empty: there is no copy of them
    std::string newHash;
    RegionStep step = RegionStep::Waiting;
    uint64_t reached = 0;  // bytes that had been written when the journal was

    bool IsCompanion() const { return image.empty(); }
};

struct UpdateJournal {
    UpdateKind kind = UpdateKind::Update;
    UpdatePhase phase = UpdatePhase::Planned;
    std::string serial;
    std::string model;
    std::string chip;     // "0x7740"
    std::string started;  // times in UTC
    std::string changed;
    std::string user;
    uint64_t process = 0;      // ID of the process that wrote it last
    std::string processStart;  // when that began, as a FILETIME
    std::string tool;
    std::string library;
    std::string outcome;     // in words, once it has ended
    std::string backup;      // folder of the contents; empty: that of the journal
    uint64_t writeRate = 0;  // bytes a second, as measured; 0: not known
    std::vector<JournalRegion> regions;
};

Shape JournalShape();
std::string JournalDocument(const UpdateJournal& journal);
// Throws DocumentError.
UpdateJournal ReadJournal(std::string_view text);

}  // namespace vxmgr
