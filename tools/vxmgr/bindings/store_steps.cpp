#include "vxmgr/bindings/store_steps.h"

#include "vxmgr/app/values.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::Record;
using tools::Tone;
using tools::Value;

struct OutcomeText {
    const char* text;
    Tone tone;
};
constexpr OutcomeText kOutcomes[] = {
    // In the order of Outcome.
    {"done", Tone::Good},     {"planned", Tone::Plain}, {"unchanged", Tone::Plain},
    {"pending", Tone::Plain}, {"failed", Tone::Bad},
};

Record StepRow(const char* store, const tools::Wwn& target, Outcome outcome,
               const std::string& what, HX_STATUS status) {
    const OutcomeText& text = kOutcomes[static_cast<int>(outcome)];
    Record row;
    row.Add("store", "Store", Value::Text(store), "STORE");
    row.Add("target_wwn", "Target", Value::Name(target), "TARGET");
    row.Add("outcome", "Outcome", Value::Text(text.text).In(text.tone), "OUTCOME");
    row.Add("what", "What", Value::TextOrNull(what), "WHAT");
    row.Add("status", "Status", StatusValue(status));
    return row;
}

}  // namespace

void Steps::AddRow(const char* store, const tools::Wwn& target, Outcome outcome,
                   const std::string& what, HX_STATUS status) {
    anythingToDo_ = anythingToDo_ || outcome != Outcome::Unchanged;
    const bool inRegistry = std::string_view(store) == kInRegistry;
    stored_ = stored_ || (inRegistry && outcome == Outcome::Done);
    live_ = live_ || !inRegistry;
    behind_ = behind_ || (!inRegistry && outcome > Outcome::Unchanged);
    const size_t place = inRegistry ? registryRows_++ : rows_.size();
    rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(place),
                 StepRow(store, target, outcome, what, status));
}

void Steps::Add(const char* store, const tools::Wwn& target, Outcome outcome,
                const std::string& what) {
    AddRow(store, target, outcome, what, HXMGT_SUCCESS);
}

void Steps::Done(const char* store, const tools::Wwn& target, const std::string& what) {
    Add(store, target, invocation_.DryRun() ? Outcome::Planned : Outcome::Done, what);
}

void Steps::Tried(const char* store, const tools::Wwn& target, HX_STATUS status,
                  const std::string& what) {
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

void Steps::Fail(const char* store, const tools::Wwn& target, ExitCode exit,
                 const std::string& what, const std::string& hint) {
    invocation_.Add({tools::Severity::Error,
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

void Steps::Away(const tools::Wwn& target, AwayTarget away, const char* why) {
    if (away == AwayTarget::Pending) {
        Add(kLive, target, Outcome::Pending, why);
        return;
    }
    invocation_.Add({tools::Severity::Error,
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
    invocation_.Result().AddList("steps", "Steps", tools::ListLayout::Table,
                                 StepRow("", {}, Outcome::Done, "", HXMGT_SUCCESS), "nothing to do",
                                 std::move(rows_));
    if (!anythingToDo_) {
        invocation_.Note("nothing to do");
    } else if (invocation_.DryRun()) {
        invocation_.Note("dry run: nothing was changed");
    }
    return failures_ == 0 ? ExitCode::Done : all ? first_ : ExitCode::Partial;
}

}  // namespace vxmgr
