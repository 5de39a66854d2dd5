// The control requests.
#include "model/control.h"

#include <cstring>

#include "model/bytes.h"
#include "model/model.h"
#include "model/profile_fields.h"

namespace vxemu {

// One control request on its buffer: the record is taken out before the reply goes in.
class ControlRequest {
  public:
    ControlRequest(Model& model, uint8_t* buffer, uint32_t inputLength, uint32_t outputLength,
                   uint32_t* returned)
        : model_(model),
          buffer_(buffer),
          inputLength_(inputLength),
          outputLength_(outputLength),
          returned_(returned) {}

    Completion Status() {
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
        for (uint32_t index = 0; index < profile.portCount; ++index) {
            Describe(model_.ports_[index], reply.ports[index]);
        }
        *returned_ = sizeof(StatusReply);
        return Completion::Done;
    }

    Completion ReadProfile() {
        if (outputLength_ < sizeof(Profile)) {
            return Completion::ShortBuffer;
        }
        std::memcpy(buffer_, model_.profile_, sizeof(Profile));
        *returned_ = sizeof(Profile);
        return Completion::Done;
    }

    Completion ListFaults() {
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

    Completion AddFault() {
        FaultRule rule;
        if (!Take(rule) || !FaultRuleValid(rule)) {
            return Completion::ShortBuffer;
        }
        return ReplyCount(model_.faults_.Add(rule));
    }

    Completion ClearFaults() {
        FaultClear request;
        if (!Take(request)) {
            return Completion::ShortBuffer;
        }
        return ReplyCount(model_.faults_.Clear(request.id));
    }

    Completion Reset() {
        PortSelector request;
        Port* port = TakeFor(request);
        if (port == nullptr) {
            return refusal_;
        }
        ResetPort(*port);
        return Completion::Done;
    }

    Completion RaiseEvent() {
        EventRequest request;
        Port* port = TakeFor(request);
        if (port == nullptr) {
            return refusal_;
        }
        return ReplyCount(port->events.Add(request.event) ? 1 : 0);
    }

    Completion ChangeLink() {
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

    Completion ChangeField() {
        FieldRequest request;
        Port* port = TakeFor(request);
        if (port == nullptr) {
            return refusal_;
        }
        return Apply(FieldScope::Port, request.change, port->profile) ||
                       Apply(FieldScope::Adapter, request.change, port->adapter)
                   ? ReplyCount(1)
                   : Completion::ShortBuffer;
    }

    Completion AddTargetDevice() {
        TargetProfile target;
        return Take(target) ? ReplyChange(AddDevice(model_.fabric_, target))
                            : Completion::ShortBuffer;
    }

    Completion RemoveTargetDevice() {
        TargetSelector request = {};
        TargetProfile* target = TakeForTarget(request, request);
        if (target == nullptr) {
            return refusal_;
        }
        RemoveDevice(model_.fabric_, *target);
        return ReplyChange(ProfileError::None);
    }

    Completion ChangeTargetField() {
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

    Completion AddTargetLun() {
        LunRequest request = {};
        const TargetProfile* target = TakeForTarget(request, request.target);
        if (target == nullptr) {
            return refusal_;
        }
        request.lun.target = static_cast<uint8_t>(IndexOf(model_.fabric_, *target));
        return ReplyChange(AddLun(model_.fabric_, request.lun));
    }

    Completion RemoveTargetLun() {
        LunSelector request = {};
        LunProfile* lun = TakeForLun(request, request);
        if (lun == nullptr) {
            return refusal_;
        }
        RemoveLun(model_.fabric_, *lun);
        return ReplyChange(ProfileError::None);
    }

    Completion ChangeLunField() {
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

  private:
    static void Describe(const Port& port, PortStatus& status) {
        status.scsiPort = port.profile->scsiPort;
        status.adapter = port.profile->adapter;
        status.state = port.profile->state;
        status.delivery = port.events.Delivery() ? 1 : 0;
        status.eventsQueued = port.events.Count();
        status.eventsDropped = port.events.Dropped();
        status.openHandles = port.openHandles;
        status.requests = port.requests;
        status.faults = port.faults;
        CopyText(status.driverName, port.adapter->driverName);
        CopyText(status.serial, port.adapter->serial);
        std::memcpy(status.portName, port.profile->portName, sizeof status.portName);
        status.deviceId = port.adapter->deviceId;
    }

    template <typename Record>
    bool Take(Record& record) {
        if (inputLength_ < sizeof record) {
            return false;
        }
        std::memcpy(&record, buffer_, sizeof record);
        return true;
    }

    // Takes a record that names a port; null, and why in refusal_, when there is none.
    template <typename Record>
    Port* TakeFor(Record& record) {
        refusal_ = Completion::ShortBuffer;
        if (!Take(record)) {
            return nullptr;
        }
        for (uint32_t index = 0; index < model_.PortCount(); ++index) {
            if (model_.ports_[index].profile->scsiPort == record.scsiPort) {
                return &model_.ports_[index];
            }
        }
        refusal_ = Completion::NoDevice;
        return nullptr;
    }

    // Takes a record that names a target, which selector is part of.
    template <typename Record>
    TargetProfile* TakeForTarget(Record& record, const TargetSelector& selector) {
        refusal_ = Completion::ShortBuffer;
        if (!Take(record)) {
            return nullptr;
        }
        for (uint32_t at = 0; at < model_.profile_->targetCount; ++at) {
            TargetProfile& target = model_.profile_->targets[at];
            if (std::memcmp(target.portName, selector.portName, sizeof target.portName) == 0) {
                return &target;
            }
        }
        refusal_ = Completion::NoDevice;
        return nullptr;
    }

    template <typename Record>
    LunProfile* TakeForLun(Record& record, const LunSelector& selector) {
        const TargetProfile* target = TakeForTarget(record, selector.target);
        if (target == nullptr) {
            return nullptr;
        }
        refusal_ = Completion::NoDevice;
        return FindLun(model_.fabric_, *target, selector.number);
    }

    // Gives a field of the record its new value; false when there is no such field, or it may not
    // have the value.
    static bool Apply(FieldScope scope, const FieldChange& change, void* record) {
        const Field* field = FindField(scope, change.name, sizeof change.name);
        if (field == nullptr || !field->settable || change.length != field->size ||
            change.length > sizeof change.value || !FieldValueValid(*field, change.value)) {
            return false;
        }
        std::memcpy(static_cast<uint8_t*>(record) + field->offset, change.value, field->size);
        return true;
    }

    Completion ReplyCount(uint32_t count) { return Reply(CountReply{count}); }
    Completion ReplyChange(ProfileError error) { return Reply(ChangeReply{error}); }

    template <typename Record>
    Completion Reply(const Record& reply) {
        if (outputLength_ >= sizeof reply) {
            std::memcpy(buffer_, &reply, sizeof reply);
            *returned_ = sizeof reply;
        }
        return Completion::Done;
    }

    Model& model_;
    uint8_t* buffer_;
    uint32_t inputLength_;
    uint32_t outputLength_;
    uint32_t* returned_;
    Completion refusal_ = Completion::ShortBuffer;
};

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
};

}  // namespace

Completion Model::Control(uint32_t code, uint8_t* buffer, uint32_t inputLength,
                          uint32_t outputLength, uint32_t* returned) {
    *returned = 0;
    for (const ControlRow& row : kControlRows) {
        if (row.code == code) {
            ControlRequest request(*this, buffer, inputLength, outputLength, returned);
            return (request.*row.answer)();
        }
    }
    return Completion::Invalid;
}

}  // namespace vxemu
