#include "vxmgr/bindings/store_steps.h"

#include "vxmgr/app/values.h"

namespace vxmgr {
namespace {

// In the order of Outcome.
constexpr const char* kOutcomes[] = {"done", "planned", "unchanged", "pending", "failed"};

Value OutcomeValue(const StoreStep& row) {
    constexpr Tone kTones[] = {Tone::Good, Tone::Plain, Tone::Plain, Tone::Plain, Tone::Bad};
    const auto place = static_cast<size_t>(row.outcome);
    return Value::Text(kOutcomes[place]).In(kTones[place]);
}

}  // namespace

constexpr const char* kStores[] = {kInRegistry, kLive};
const Fields<StoreStep> kStoreStepFields = {
    {"store", "Store", "STORE", Choice(kStores), &StoreStep::store},
    {"target_wwn", "Target", "TARGET", kWwn, &StoreStep::target},
    {"outcome", "Outcome", "OUTCOME", Choice(kOutcomes), OutcomeValue,
     "planned: by a dry run; pending: takes effect at the driver's next start"},
    {"what", "What", "WHAT", kText.OrNull(), &StoreStep::what},
    {"status", "Status", kText.OrNull(),
     [](const StoreStep& row) { return StatusValue(row.status); }},
};

const Fields<StoreChangeResult> kStoreChangeFields = {
    {PortKeys(kNoPortKey), &StoreChangeResult::port},
    {"steps", "Steps", kStoreStepFields, &StoreChangeResult::steps, "nothing to do"},
};

void Steps::AddRow(const char* store, const Wwn& target, Outcome outcome, const std::string& what,
                   HX_STATUS status) {
    anythingToDo_ = anythingToDo_ || outcome != Outcome::Unchanged;
    const bool inRegistry = std::string_view(store) == kInRegistry;
    stored_ = stored_ || (inRegistry && outcome == Outcome::Done);
    live_ = live_ || !inRegistry;
    behind_ = behind_ || (!inRegistry && outcome > Outcome::Unchanged);
    const size_t place = inRegistry ? registryRows_++ : rows_.size();
    rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(place),
                 {store, target, outcome, what, status});
}

void Steps::Add(const char* store, const Wwn& target, Outcome outcome, const std::string& what) {
    AddRow(store, target, outcome, what, HXMGT_SUCCESS);
}

void Steps::Done(const char* store, const Wwn& target, const std::string& what) {
    Add(store, target, invocation_.DryRun() ? Outcome::Planned : Outcome::Done, what);
}

void Steps::Tried(const char* store, const Wwn& target, HX_STATUS status, const std::string& what) {
    if (status == HXMGT_SUCCESS) {
        if (!invocation_.DryRun()) {
            invocation_.Changed();
        }
        Done(store, target, what);
        return;
    }
    const ExitCode exit = invocation_.Report(
        status, std::string(store) + ", target " + target.Colons() + ": " + what, object_);
    first_ = failures_++ == 0 ? exit : first_;
    AddRow(store, target, Outcome::Failed, what, status);
}

void Steps::Fail(const char* store, const Wwn& target, ExitCode exit, const std::string& what,
                 const std::string& hint) {
    invocation_.Add({Severity::Error,
                     std::string(store) + ", target " + target.Colons() + ": " + what,
                     hint,
                     object_,
                     {}});
    first_ = failures_++ == 0 ? exit : first_;
    AddRow(store, target, Outcome::Failed, what, HXMGT_SUCCESS);
}

void Steps::StoreWritten() {
    anythingToDo_ = true;
    stored_ = !invocation_.DryRun();
}

void Steps::Away(const Wwn& target, AwayTarget away, const char* why) {
    if (away == AwayTarget::Pending) {
        Add(kLive, target, Outcome::Pending, why);
        return;
    }
    invocation_.Add({Severity::Error,
                     std::string(kLive) + ", target " + target.Colons() + ": " + why,
                     "`--store registry` leaves the driver alone",
                     object_,
                     {}});
    first_ = failures_++ == 0 ? ExitCode::NotFound : first_;
    AddRow(kLive, target, Outcome::Failed, why, HXMGT_DEVICE_NOT_FOUND);
}

ExitCode Steps::Finish() {
    if (stored_ && (!live_ || behind_)) {
        invocation_.AddPending(
            {object_, "driver_restart", "what is stored takes effect at the driver's next start"});
    }
    const bool all = failures_ == rows_.size();
    if (!anythingToDo_) {
        invocation_.Note("nothing to do");
    } else if (invocation_.DryRun()) {
        invocation_.Note("dry run: nothing was changed");
    }
    return failures_ == 0 ? ExitCode::Done : all ? first_ : ExitCode::Partial;
}

ExitCode Steps::FinishResult() {
    invocation_.Result() = kStoreChangeFields.Make({&port_, rows_});
    return Finish();
}

}  // namespace vxmgr
