// The control requests.
#include <cstring>

#include "model/bytes/bytes.h"
#include "model/control_request.h"
#include "model/health/counter_keys.h"
#include "model/health/scm.h"
#include "model/storage/flash_start.h"

namespace vxemu {

Completion ControlRequest::Status() {
    if (outputLength_ < sizeof(StatusReply)) {
        return Completion::ShortBuffer;
    }
    // Too large for a kernel stack, so it is filled in place.
    std::memset(buffer_, 0, sizeof(StatusReply));
    auto& reply = *reinterpret_cast<StatusReply*>(buffer_);
    const Profile& profile = *model_.profile_;
    reply.version = kControlVersion;
    reply.adapterCount = profile.adapterCount;
    reply.portCount = profile.portCount;
    reply.faultCount = model_.faults_.Count();
    reply.uptime = model_.host_.Now() - model_.startTime_;
    CopyText(reply.profileName, profile.name);
    PortStatus* status = reply.ports;
    ForEachHostPort(model_.fabric_, [&](const Port& port) { Describe(port, *status++); });
    *returned_ = sizeof(StatusReply);
    return Completion::Done;
}

Completion ControlRequest::ReadProfile() {
    if (outputLength_ < sizeof(Profile)) {
        return Completion::ShortBuffer;
    }
    std::memcpy(buffer_, model_.profile_, sizeof(Profile));
    *returned_ = sizeof(Profile);
    return Completion::Done;
}

Completion ControlRequest::ListFaults() {
    if (outputLength_ < sizeof(FaultListReply)) {
        return Completion::ShortBuffer;
    }
    std::memset(buffer_, 0, sizeof(FaultListReply));
    auto& reply = *reinterpret_cast<FaultListReply*>(buffer_);
    reply.version = kControlVersion;
    reply.count = model_.faults_.Count();
    for (uint32_t at = 0; at < reply.count; ++at) {
        reply.entries[at] = model_.faults_.At(at);
    }
    *returned_ = sizeof(FaultListReply);
    return Completion::Done;
}

Completion ControlRequest::AddFault() {
    FaultRule rule;
    if (!Take(rule) || !FaultRuleValid(rule)) {
        return Completion::ShortBuffer;
    }
    return ReplyCount(model_.faults_.Add(rule));
}

Completion ControlRequest::ClearFaults() {
    FaultClear request;
    if (!Take(request)) {
        return Completion::ShortBuffer;
    }
    return ReplyCount(model_.faults_.Clear(request.id));
}

Completion ControlRequest::Reset() {
    PortSelector request;
    Port* port = TakeFor(request);
    if (port == nullptr) {
        return refusal_;
    }
    PowerCycle(*port);
    ResetPort(*port);
    return Completion::Done;
}

Completion ControlRequest::RaiseEvent() {
    EventRequest request;
    Port* port = TakeFor(request);
    if (port == nullptr) {
        return refusal_;
    }
    return ReplyCount(port->events.Add(request.event) ? 1 : 0);
}

Completion ControlRequest::ChangeLink() {
    LinkRequest request;
    Port* port = TakeFor(request);
    if (port == nullptr) {
        return refusal_;
    }
    if (request.up > 1) {
        return Completion::ShortBuffer;
    }
    SetLink(*port, request.up != 0);
    return Completion::Done;
}

Completion ControlRequest::ChangeField() {
    FieldRequest request;
    Port* port = TakeFor(request);
    if (port == nullptr) {
        return refusal_;
    }
    const bool linkBefore = port->LinkUp();
    const bool applied = Apply(FieldScope::Port, request.change, port->profile) ||
                         Apply(FieldScope::Adapter, request.change, port->adapter);
    if (port->LinkUp() != linkBefore) {
        NoteLink(*port);
    }
    LookAtThrottle(*port);
    return applied ? ReplyCount(1) : Completion::ShortBuffer;
}

Completion ControlRequest::AddCard() {
    if (inputLength_ < sizeof(AdapterRecord)) {
        return Completion::ShortBuffer;
    }
    // Too large for a kernel stack, so it is taken from where it lies.
    ProfileError error = ProfileError::None;
    const Completion completion =
        model_.AddAdapter(*reinterpret_cast<const AdapterRecord*>(buffer_), &error);
    return completion == Completion::Done ? ReplyChange(error) : completion;
}

Completion ControlRequest::RemoveCard() {
    PortSelector request;
    const Port* port = TakeFor(request);
    if (port == nullptr) {
        return refusal_;
    }
    // A profile without an adapter would be none.
    if (model_.profile_->adapterCount == 1) {
        return ReplyChange(ProfileError::AdapterCount);
    }
    model_.DropAdapter(*port);
    return ReplyChange(ProfileError::None);
}

Completion ControlRequest::Raise() {
    CounterRequest request;
    Port* port = TakeFor(request);
    if (port == nullptr) {
        return refusal_;
    }
    constexpr TargetSelector kItself = {};
    const bool remote = std::memcmp(&request.target, &kItself, sizeof kItself) != 0;
    const TargetProfile* device = remote ? FindTarget(request.target) : nullptr;
    if (remote && device == nullptr) {
        return refusal_;
    }
    const CounterKey* counter = FindCounter(request.key, sizeof request.key);
    return counter != nullptr && RaiseCounter(*port, device, *counter, request.n)
               ? ReplyCount(1)
               : Completion::ShortBuffer;
}

Completion ControlRequest::AddTargetDevice() {
    TargetProfile target;
    return Take(target) ? ReplyChange(AddDevice(model_.fabric_, target)) : Completion::ShortBuffer;
}

Completion ControlRequest::RemoveTargetDevice() {
    TargetSelector request = {};
    TargetProfile* target = TakeForTarget(request, request);
    if (target == nullptr) {
        return refusal_;
    }
    RemoveDevice(model_.fabric_, *target);
    return ReplyChange(ProfileError::None);
}

Completion ControlRequest::ChangeTargetField() {
    TargetFieldRequest request = {};
    TargetProfile* target = TakeForTarget(request, request.target);
    if (target == nullptr) {
        return refusal_;
    }
    TargetProfile changed = *target;
    return Apply(FieldScope::Target, request.change, &changed)
               ? ReplyChange(ReplaceDevice(model_.fabric_, *target, changed))
               : Completion::ShortBuffer;
}

Completion ControlRequest::AddTargetLun() {
    LunRequest request = {};
    const TargetProfile* target = TakeForTarget(request, request.target);
    if (target == nullptr) {
        return refusal_;
    }
    request.lun.target = static_cast<uint8_t>(IndexOf(model_.fabric_, *target));
    return ReplyChange(AddLun(model_.fabric_, request.lun));
}

Completion ControlRequest::RemoveTargetLun() {
    LunSelector request = {};
    LunProfile* lun = TakeForLun(request, request);
    if (lun == nullptr) {
        return refusal_;
    }
    RemoveLun(model_.fabric_, *lun);
    return ReplyChange(ProfileError::None);
}

Completion ControlRequest::ChangeLunField() {
    LunFieldRequest request = {};
    LunProfile* lun = TakeForLun(request, request.lun);
    if (lun == nullptr) {
        return refusal_;
    }
    LunProfile changed = *lun;
    return Apply(FieldScope::Lun, request.change, &changed)
               ? ReplyChange(ReplaceLun(model_.fabric_, *lun, changed))
               : Completion::ShortBuffer;
}

Completion ControlRequest::StartTrace() {
    if (inputLength_ < sizeof(TraceName)) {
        return Completion::ShortBuffer;
    }
    TraceName& name = model_.traceName_;
    const bool started = model_.trace_.Start(model_.host_);
    if (started) {
        std::memcpy(&name, buffer_, sizeof name);
        name.file[sizeof name.file - 1] = 0;
    }
    return ReplyCount(started ? 1 : 0);
}

Completion ControlRequest::StopTrace() {
    TraceStop request;
    if (!Take(request)) {
        return Completion::ShortBuffer;
    }
    Trace& trace = model_.trace_;
    const bool kept = trace.Kept();
    trace.End();
    if (request.drop != 0) {
        trace.Drop(model_.host_);
    }
    return ReplyCount(kept ? 1 : 0);
}

Completion ControlRequest::ReadTrace() {
    TraceSelector request;
    if (!Take(request) || outputLength_ < sizeof(TracePiece)) {
        return Completion::ShortBuffer;
    }
    std::memset(buffer_, 0, sizeof(TracePiece));
    auto& reply = *reinterpret_cast<TracePiece*>(buffer_);
    const Trace& trace = model_.trace_;
    reply.version = kControlVersion;
    reply.now = model_.host_.Now();
    if (trace.Kept()) {
        constexpr uint64_t kRoom = sizeof reply.entries / sizeof reply.entries[0];
        reply.running = trace.Running() ? 1 : 0;
        reply.kept = 1;
        reply.name = model_.traceName_;
        reply.lost = trace.First();
        reply.end = trace.Next();
        reply.first = request.from < trace.First() ? trace.First() : request.from;
        while (reply.count < kRoom && reply.first + reply.count < trace.Next()) {
            reply.entries[reply.count] = trace.At(reply.first + reply.count);
            ++reply.count;
        }
    }
    *returned_ = sizeof(TracePiece);
    return Completion::Done;
}

namespace {

struct ControlRow {
    uint32_t code;
    Completion (ControlRequest::*answer)();
};
constexpr ControlRow kControlRows[] = {
    {control::kStatus, &ControlRequest::Status},
    {control::kFaultList, &ControlRequest::ListFaults},
    {control::kReadProfile, &ControlRequest::ReadProfile},
    {control::kFaultAdd, &ControlRequest::AddFault},
    {control::kFaultClear, &ControlRequest::ClearFaults},
    {control::kPortReset, &ControlRequest::Reset},
    {control::kRaiseEvent, &ControlRequest::RaiseEvent},
    {control::kSetLink, &ControlRequest::ChangeLink},
    {control::kSetField, &ControlRequest::ChangeField},
    {control::kTargetAdd, &ControlRequest::AddTargetDevice},
    {control::kTargetRemove, &ControlRequest::RemoveTargetDevice},
    {control::kTargetSet, &ControlRequest::ChangeTargetField},
    {control::kLunAdd, &ControlRequest::AddTargetLun},
    {control::kLunRemove, &ControlRequest::RemoveTargetLun},
    {control::kLunSet, &ControlRequest::ChangeLunField},
    {control::kAdapterAdd, &ControlRequest::AddCard},
    {control::kAdapterRemove, &ControlRequest::RemoveCard},
    {control::kFlashShow, &ControlRequest::ShowFlash},
    {control::kFlashDump, &ControlRequest::DumpFlash},
    {control::kFlashCorrupt, &ControlRequest::CorruptFlash},
    {control::kPowerFail, &ControlRequest::FailPower},
    {control::kFlashReset, &ControlRequest::ResetFlash},
    {control::kRaiseCounter, &ControlRequest::Raise},
    {control::kTraceStart, &ControlRequest::StartTrace},
    {control::kTraceStop, &ControlRequest::StopTrace},
    {control::kTraceRead, &ControlRequest::ReadTrace},
};

}  // namespace

Completion Model::Control(uint32_t code, uint8_t* buffer, uint32_t inputLength,
                          uint32_t outputLength, uint32_t* returned) {
    *returned = 0;
    for (const ControlRow& row : kControlRows) {
        if (row.code == code) {
            ControlRequest request(*this, buffer, inputLength, outputLength, returned);
            const Completion completion = (request.*row.answer)();
            for (uint32_t adapter = 0; adapter < profile_->adapterCount; ++adapter) {
                KeepChanges(fabric_, flashes_[adapter]);
            }
            return completion;
        }
    }
    return Completion::Invalid;
}

}  // namespace vxemu
