// What an update and a restore of one adapter have in common: they look at the adapter, ask, write
// with the journal in hand, start what is stored, and say what became of it.
#pragma once

#include <string>
#include <vector>

#include "vxmgr/update/update_checks.h"
#include "vxmgr/update/update_result.h"
#include "vxmgr/update/update_run.h"

namespace vxmgr {

class UpdateTask {
  protected:
    UpdateTask(Invocation& invocation, AdapterSession& session, UpdateResult& result);
    ~UpdateTask() = default;

    // Ends the command: nothing was written.
    [[noreturn]] void Refuse(const std::string& text, const std::string& hint);
    // Refuses a record of another chip: the adapter's number may have come to another card.
    void CheckChip(const UpdateRecord& record);
    // Refuses when the host boots through the adapter and nobody has allowed that.
    void CheckBoot();
    // Whether what is stored can be started while the host runs.
    bool StartsOnline() const;
    std::string Restart() const { return StartsOnline() ? "ports" : "host"; }

    // What a power cut does to a region that is to be written is something to weigh.
    void AddHarm(const UpdateRegionResult& row);

    // Rows of the result for the regions of a record.
    void AddRows(const UpdateRecord& record, Contents which);

    // The action, then what stops and what else there is to weigh.
    void Confirm(const std::string& action, const std::vector<std::string>& lines);

    // All of it, from the first region that does not hold its contents.
    ExitCode Execute(UpdateRecord& record, Contents which);

    double SecondsFor(const std::vector<uint64_t>& sizes) const;

    Invocation& invocation_;
    const Options& given_;
    AdapterSession& session_;
    UpdateResult& result_;
    const std::vector<UpdateOutlook> outlooks_;
    FlashLayout layout_;
    FlashRates rates_ = RatesOf(1u << 20, 1, {});

  private:
    double StartSeconds() const;
    void NoteRegions(const UpdateRecord& record);
    void TellWhereItStopped(UpdateRecord& record);
    void Finish(UpdateRecord& record, Contents which, const StartResult& start);
};

}  // namespace vxmgr
