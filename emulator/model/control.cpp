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
        reply.uptime = model_.host_.milliseconds(model_.host_.context) - model_.startTime_;
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
        const Field* field = FindField(FieldScope::Port, request.name, sizeof request.name);
        auto* record = reinterpret_cast<uint8_t*>(port->profile);
        if (field == nullptr) {
            field = FindField(FieldScope::Adapter, request.name, sizeof request.name);
            record = reinterpret_cast<uint8_t*>(port->adapter);
        }
        if (field == nullptr || !field->settable || request.length != field->size ||
            request.length > sizeof request.value || !FieldValueValid(*field, request.value)) {
            return Completion::ShortBuffer;
        }
        std::memcpy(record + field->offset, request.value, field->size);
        return ReplyCount(1);
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

    Completion ReplyCount(uint32_t count) {
        const CountReply reply = {count};
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
