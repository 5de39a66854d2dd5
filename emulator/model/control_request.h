// One control request, for the files that answer them.
#pragma once

#include <cstring>

#include "model/bytes/bytes.h"
#include "model/control.h"
#include "model/model.h"
#include "model/profile/profile_fields.h"

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

    Completion Status();
    Completion ReadProfile();
    Completion ListFaults();
    Completion AddFault();
    Completion ClearFaults();
    Completion Reset();
    Completion RaiseEvent();
    Completion ChangeLink();
    Completion ChangeField();
    Completion AddCard();
    Completion RemoveCard();
    Completion AddTargetDevice();
    Completion RemoveTargetDevice();
    Completion ChangeTargetField();
    Completion AddTargetLun();
    Completion RemoveTargetLun();
    Completion ChangeLunField();
    Completion ShowFlash();
    Completion DumpFlash();
    Completion CorruptFlash();
    Completion FailPower();
    Completion ResetFlash();
    Completion Raise();
    Completion StartTrace();
    Completion StopTrace();
    Completion ReadTrace();

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
        status.flash = port.flash->keeping.state;
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
        for (Port* port : model_.ports_) {
            if (port != nullptr && port->profile->scsiPort == record.scsiPort) {
                return port;
            }
        }
        refusal_ = Completion::NoDevice;
        return nullptr;
    }

    // Takes a record that names a target, which selector is part of.
    template <typename Record>
    TargetProfile* TakeForTarget(Record& record, const TargetSelector& selector) {
        refusal_ = Completion::ShortBuffer;
        return Take(record) ? FindTarget(selector) : nullptr;
    }

    TargetProfile* FindTarget(const TargetSelector& selector) {
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

}  // namespace vxemu
