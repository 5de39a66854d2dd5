#include "vxmgr/update/update_run.h"

#include <algorithm>

#include "common/status_codes.h"
#include "vxmgr/app/sha256.h"
#include "vxmgr/flash/flash_image.h"
#include "vxmgr/flash/flash_regions.h"
#include "vxmgr/update/update_activation.h"
#include "vxmgr/update/update_messages.h"
#include "vxmgr/update/update_region.h"
#include "vxmgr/update/update_stored.h"

namespace vxmgr {
namespace {

constexpr double kLeastSeconds = 0.001;

const FlashRegion& RegionOf(const FlashLayout& layout, const JournalRegion& region,
                            const std::string& object) {
    const FlashRegion* const found = layout.Find(region.code);
    if (found == nullptr || found->size != region.size) {
        FailAt(object, ExitCode::Refused,
               "the flash has no region " + std::to_string(region.code) + " of " +
                   std::to_string(region.size) + " bytes any more",
               "`flash layout` shows what it has: was the adapter exchanged?");
    }
    return *found;
}

const std::string& VersionOf(const JournalRegion& region, Contents which) {
    return which == Contents::New ? region.after : region.before;
}

// One region after the other.
class RegionsRun {
  public:
    RegionsRun(Invocation& invocation, const AdapterSession& session, const FlashLayout& layout,
               UpdateRecord& record, Contents which, const FlashRates& rates,
               UpdateProgress& progress)
        : invocation_(invocation),
          session_(session),
          layout_(layout),
          record_(record),
          which_(which),
          rates_(rates),
          progress_(progress) {}

    void Run() {
        std::vector<JournalRegion>& regions = record_.journal.regions;
        if (which_ == Contents::New && !record_.HasBegun()) {
            ProveKept();
        }
        for (size_t first = 0; first < regions.size();) {
            size_t end = first + 1;
            while (end < regions.size() && regions[end].IsCompanion()) {
                ++end;
            }
            Bring({regions.data() + first, end - first});
            first = end;
        }
    }

  private:
    using Group = std::span<JournalRegion>;  // a region, and those that are written along with it

    // Before anything is written all that was kept is compared with what there is: bytes that the
    // adapter gave wrong once would else come back to it with a restore.
    void ProveKept() {
        for (const JournalRegion& region : record_.journal.regions) {
            invocation_.CheckStop();
            if (!region.oldHash.empty() && !HoldsOf(region, region.oldHash) && !Holds(region)) {
                record_.journal.phase = UpdatePhase::Failed;
                record_.journal.outcome = "what was kept was not what there is";
                record_.TrySave();
                FailAt(session_.Object(), ExitCode::Refused,
                       "region " + std::to_string(region.code) + " (" + RegionName(region.code) +
                           ") no longer holds what was kept of it: another program changed it, or "
                           "the adapter reads wrong; nothing was written",
                       "look at it again with `fw check`");
            }
        }
    }

    void Bring(Group group) {
        JournalRegion& leader = group.front();
        const bool begun = leader.step == RegionStep::Writing || which_ == Contents::Old ||
                           record_.journal.kind != UpdateKind::Update;
        invocation_.CheckStop();
        if (!std::all_of(group.begin(), group.end(), [&](const auto& one) { return Holds(one); })) {
            Write(leader, group.subspan(1), begun);
        }
        leader.step = RegionStep::Verified;
        leader.reached = leader.size;
        for (JournalRegion& companion : group.subspan(1)) {
            // New contents come to it by the adapter's own rule, or not at all.
            if (!Holds(companion) &&
                (which_ == Contents::Old || !HoldsOf(companion, companion.oldHash))) {
                Write(companion, {}, true);
            }
            companion.step = RegionStep::Verified;
            companion.reached = companion.size;
        }
        record_.Save(invocation_);
        invocation_.CheckStop();
    }

    const std::string& HashOf(const JournalRegion& region) const {
        return which_ == Contents::New ? region.newHash : region.oldHash;
    }
    bool Holds(const JournalRegion& region) { return HoldsOf(region, HashOf(region)); }
    bool HoldsOf(const JournalRegion& region, const std::string& hash) {
        std::vector<uint8_t> now;
        const FlashRegion& place = RegionOf(layout_, region, session_.Object());
        return ReadRegion(session_.Handle(), layout_, place, &now) == HXMGT_SUCCESS &&
               Sha256Of(now) == hash;
    }

    // begun: it may have been written in part, so that what it holds is no source of anything.
    void Write(JournalRegion& region, Group companions, bool begun) {
        const FlashRegion& place = RegionOf(layout_, region, session_.Object());
        const std::vector<uint8_t> target = record_.Get(invocation_, region, which_);
        // Written over for the first time: what was kept has to be what there is, or nothing could
        // bring that back.
        const bool first =
            which_ == Contents::New && region.step == RegionStep::Waiting && !region.IsCompanion();
        std::vector<uint8_t> kept;
        if (first && !region.oldHash.empty()) {
            kept = record_.Get(invocation_, region, Contents::Old);
        }
        PlaceWrite write = RegionWrite(session_, layout_, place, target, std::move(kept));
        write.check = [&] {
            for (const JournalRegion& companion : companions) {
                if (first && !companion.oldHash.empty() && !HoldsOf(companion, companion.oldHash) &&
                    !Holds(companion)) {
                    FailChangedMeanwhile(write, session_.First());
                }
            }
        };
        WriteStep step = WriteStep::Checking;
        write.begins = [&](WriteStep next) {
            step = next;
            BeginStep(place, next);
        };
        write.beforeFirst = [&](std::vector<uint8_t>& image) {
            Prepare(region, companions, begun, target, image);
        };
        write.moved = [&](uint64_t done) {
            progress_.Moved(done);
            if (step == WriteStep::Writing) {
                region.reached = done;
                record_.TrySave();
                NoteRate(done);
            }
        };
        const WriteOutcome outcome =
            WritePlace(invocation_, session_.Handle(), session_.First(), write);
        if (outcome.trouble) {
            if (first && outcome.state == PlaceState::Old) {
                region.step = RegionStep::Waiting;  // nothing of it was written
                region.reached = 0;
            }
            Fail(*outcome.trouble);
        }
    }

    // The last moment before the first byte: the journal says what is about to happen, and the
    // image is what the region will hold.
    void Prepare(JournalRegion& region, Group companions, bool begun,
                 const std::vector<uint8_t>& target, std::vector<uint8_t>& image) {
        if (begun) {
            // The adapter's identity is in it already, and what the flash holds may be half of one.
            std::copy(target.begin(), target.end(), image.begin());
        } else if (image != target) {
            record_.Keep(invocation_, region, Contents::New, image);
            for (JournalRegion& companion : companions) {
                record_.Keep(invocation_, companion, Contents::New, image);
            }
        }
        region.step = RegionStep::Writing;
        region.reached = 0;
        record_.journal.phase =
            which_ == Contents::New ? UpdatePhase::Writing : UpdatePhase::Restoring;
        record_.Save(invocation_);
        invocation_.Changed();
    }

    void BeginStep(const FlashRegion& place, WriteStep step) {
        struct Row {
            const char* doing;
            bool writes;
        };
        constexpr Row kRows[] = {{"checking", false}, {"writing", true}, {"reading back", false}};
        const Row& row = kRows[static_cast<size_t>(step)];
        progress_.Begin(
            std::string(row.doing) + " region " + std::to_string(place.code) + " (" + place.Name() +
                ")",
            place.size,
            row.writes ? rates_.WriteSeconds(place.size) : rates_.ReadSeconds(place.size));
    }

    void NoteRate(uint64_t done) {
        const double seconds = progress_.SecondsOfStep();
        if (done != 0 && seconds > kLeastSeconds) {
            record_.journal.writeRate = static_cast<uint64_t>(static_cast<double>(done) / seconds);
        }
    }

    [[noreturn]] void Fail(CommandError trouble) {
        record_.journal.outcome = trouble.message.text;
        if (!record_.HasBegun()) {
            record_.journal.phase = UpdatePhase::Failed;
        } else {
            trouble.message.hint = "the journal is kept: ";
            trouble.message.hint += kAfterInterruption;
        }
        record_.TrySave();
        throw trouble;
    }

    Invocation& invocation_;
    const AdapterSession& session_;
    const FlashLayout& layout_;
    UpdateRecord& record_;
    const Contents which_;
    const FlashRates& rates_;
    UpdateProgress& progress_;
};

}  // namespace

FlashRates RatesOf(uint64_t bytesRead, double seconds, const std::vector<UpdateRecord>& before) {
    FlashRates rates;
    rates.read =
        static_cast<double>(std::max<uint64_t>(bytesRead, 1)) / std::max(seconds, kLeastSeconds);
    rates.write = rates.read;
    for (const UpdateRecord& record : before) {
        if (record.journal.writeRate != 0) {
            rates.write = static_cast<double>(record.journal.writeRate);
        }
    }
    return rates;
}

void WriteRegions(Invocation& invocation, const AdapterSession& session, const FlashLayout& layout,
                  UpdateRecord& record, Contents which, const FlashRates& rates,
                  UpdateProgress& progress) {
    RegionsRun(invocation, session, layout, record, which, rates, progress).Run();
}

StartResult StartStored(Invocation& invocation, AdapterSession& session,
                        const std::vector<UpdateOutlook>& outlooks, const UpdateRecord& record,
                        Contents which, bool wanted) {
    session.Refresh();
    std::string version;  // of the firmware; empty: it was not written
    bool runs = true;
    for (const JournalRegion& region : record.journal.regions) {
        const std::string& stored = VersionOf(region, which);
        const auto order = CompareVersions(stored, RunningVersion(session.First(), region.code));
        runs = runs && (!order || *order == 0);
        if (region.code == HX_REGION_FIRMWARE) {
            version = stored;
        }
    }
    if (runs) {
        return {StartOutcome::Running, ExitCode::Done};
    }
    const bool online = std::all_of(outlooks.begin(), outlooks.end(), [](const auto& outlook) {
        return outlook.activatesOnline && !outlook.bootsFromSan.value_or(false);
    });
    if (!wanted || !online) {
        invocation.AddPending({session.Object(), "firmware_restart",
                               std::string("stored, takes effect ") +
                                   (online ? "with `fw activate`, or when the host restarts"
                                           : "when the host restarts")});
        return {StartOutcome::Pending, ExitCode::Done};
    }
    const auto [status, started] = RestartUnderLock(invocation, session, version, [&session] {
        return NoteAndActivate(session, kActivationSeconds);
    });
    if (status != HXMGT_SUCCESS) {
        const ExitCode exit = invocation.Report(
            status, "what is stored was not started; it is whole, `fw activate` tries again",
            session.Object());
        return {StartOutcome::Failed, exit};
    }
    if (!started) {
        Complain(
            invocation, session.Object(),
            "the ports were told to start firmware " + version + ", but not all of them report it",
            "what is stored is whole: `fw activate` tries again, a restart of the host starts it");
        return {StartOutcome::Failed, ExitCode::NotProven};
    }
    return {StartOutcome::Started, ExitCode::Done};
}

}  // namespace vxmgr
