#include "model/model.h"

#include <cstring>

#include "model/exchange.h"
#include "model/handlers.h"
#include "model/health/private_counters.h"
#include "model/port_block.h"
#include "transport/ext_ioctl.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
using transport::ExtRequest;
using transport::SrbIoControl;

uint32_t Min(uint32_t left, uint32_t right) {
    return left < right ? left : right;
}
uint32_t Max(uint32_t left, uint32_t right) {
    return left > right ? left : right;
}

bool IsSignature(const char (&text)[sizeof transport::kSignature]) {
    return std::memcmp(text, transport::kSignature, sizeof text) == 0;
}

// What is left of the reply's bytes, the first of which stands at the place.
void Corrupt(FaultAction fault, uint32_t place, uint8_t* bytes, uint32_t length) {
    const bool one = fault.kind == FaultKind::CorruptByte;
    if (!one && fault.kind != FaultKind::Corrupt) {
        return;
    }
    for (uint32_t at = 0; at < length; ++at) {
        if (!one || place + at == fault.value) {
            bytes[at] = static_cast<uint8_t>(~bytes[at]);
        }
    }
}

uint32_t AddClamped(uint32_t left, uint32_t right) {
    return left > 0xFFFFFFFF - right ? 0xFFFFFFFF : left + right;
}

// The reply length that a faulty port reports.
uint32_t ReportedLength(uint32_t length, FaultAction fault) {
    switch (fault.kind) {
        case FaultKind::Short:
            return length - Min(length, fault.value);
        case FaultKind::Long:
            return AddClamped(length, fault.value);
        case FaultKind::LieLength:
            return kLyingLength;
        default:
            return length;
    }
}

bool Refuses(FaultKind kind) {
    return kind == FaultKind::Status || kind == FaultKind::Detail;
}

}  // namespace

Model* Model::Create(const Host& host, const Profile& profile) {
    if (ValidateProfile(&profile, sizeof profile).error != ProfileError::None) {
        return nullptr;
    }
    auto* model = static_cast<Model*>(host.allocate(host.context, sizeof(Model)));
    if (model == nullptr) {
        return nullptr;
    }
    model->host_ = host;
    model->profile_ = static_cast<Profile*>(host.allocate(host.context, sizeof(Profile)));
    model->boards_ = static_cast<Board*>(host.allocate(host.context, kMaxAdapters * sizeof(Board)));
    model->origin_ = static_cast<Profile*>(host.allocate(host.context, sizeof(Profile)));
    model->flashes_ =
        static_cast<Flash*>(host.allocate(host.context, kMaxAdapters * sizeof(Flash)));
    if (model->profile_ == nullptr || model->boards_ == nullptr || model->origin_ == nullptr ||
        model->flashes_ == nullptr) {
        Destroy(model);
        return nullptr;
    }
    std::memcpy(model->profile_, &profile, sizeof profile);
    std::memcpy(model->origin_, &profile, sizeof profile);
    for (uint32_t adapter = 0; adapter < profile.adapterCount; ++adapter) {
        model->flashes_[adapter].memory.Start({model->origin_, adapter});
    }
    model->fabric_.host = host;
    model->fabric_.profile = model->profile_;
    model->fabric_.ports = model->ports_;
    for (uint32_t index = 0; index < profile.portCount; ++index) {
        if (!model->MakePort(index, profile.ports[index].adapter)) {
            Destroy(model);
            return nullptr;
        }
    }
    for (uint32_t adapter = 0; adapter < profile.adapterCount; ++adapter) {
        model->StartAdapter(adapter);
    }
    model->startTime_ = host.Now();
    return model;
}

void Model::Destroy(Model* model) {
    if (model == nullptr) {
        return;
    }
    const Host host = model->host_;
    const auto release = [&host](void* block) {
        if (block != nullptr) {
            host.release(host.context, block);
        }
    };
    model->fabric_.store.Clear(host);
    model->trace_.Drop(host);
    for (Port* port : model->ports_) {
        if (port != nullptr) {
            release(port->eeprom);
            release(port);
        }
    }
    for (uint32_t slot = 0; model->flashes_ != nullptr && slot < kMaxAdapters; ++slot) {
        ReleaseFlash(host, model->flashes_[slot]);
    }
    release(model->flashes_);
    release(model->origin_);
    release(model->boards_);
    release(model->profile_);
    release(model);
}

uint32_t Model::ScsiPortNumber(uint32_t port) const {
    return HasPort(port) ? ports_[port]->profile->scsiPort : 0xFFFFFFFF;
}

const char* Model::DriverName(uint32_t port) const {
    return HasPort(port) ? ports_[port]->adapter->driverName : "";
}

void Model::ApplyStore(uint32_t port, const StoredConfig& stored) {
    if (HasPort(port)) {
        vxemu::ApplyStore(*ports_[port], stored);
    }
}

void Model::CountHandle(uint32_t port, int32_t change) {
    if (HasPort(port)) {
        ports_[port]->openHandles += static_cast<uint32_t>(change);
    }
}

Completion Model::Request(uint32_t port, uint8_t* buffer, uint32_t inputLength,
                          uint32_t outputLength, uint32_t* returned, uint32_t* delay) {
    if (!trace_.Running() || !HasPort(port)) {
        return Serve(port, buffer, inputLength, outputLength, returned, delay);
    }
    ExtRequest request = {};
    std::memcpy(&request, buffer, Min(inputLength, sizeof request));
    const bool plain = IsPlainCode(request.srb.controlCode);
    TraceEntry entry = {};
    entry.time = host_.Now();
    entry.scsiPort = ports_[port]->profile->scsiPort;
    entry.process = host_.Process();
    entry.code = request.srb.controlCode;
    entry.subCode = plain ? kPlainRequest : request.ext.subCode;
    entry.inputLength = inputLength;
    entry.outputLength = outputLength;
    const Completion completion = Serve(port, buffer, inputLength, outputLength, returned, delay);
    entry.completion = static_cast<uint32_t>(completion);
    entry.returned = *returned;
    if (!plain && completion == Completion::Done && *returned >= sizeof request) {
        std::memcpy(&request, buffer, sizeof request);
        entry.status = request.ext.status;
        entry.detail = request.ext.detailStatus;
    }
    trace_.Add(host_, entry);
    return completion;
}

Completion Model::Serve(uint32_t port, uint8_t* buffer, uint32_t inputLength, uint32_t outputLength,
                        uint32_t* returned, uint32_t* delay) {
    *returned = 0;
    if (delay != nullptr) {
        *delay = 0;
    }
    if (!HasPort(port)) {
        return Completion::NoDevice;
    }
    const uint32_t bufferLength = Max(inputLength, outputLength);
    if (inputLength < sizeof(SrbIoControl) || outputLength < sizeof(SrbIoControl)) {
        return Completion::ShortBuffer;
    }
    // What the caller did not send reads as zero, and nothing older is handed back.
    std::memset(buffer + inputLength, 0, bufferLength - inputLength);

    SrbIoControl srb;
    std::memcpy(&srb, buffer, sizeof srb);
    if (srb.headerLength != transport::kHeaderLength || srb.length > bufferLength - sizeof srb) {
        return Completion::ShortBuffer;
    }
    if (!IsSignature(srb.signature)) {
        return Completion::Invalid;
    }
    const bool plain = IsPlainCode(srb.controlCode);
    if (!plain && (inputLength < sizeof(ExtRequest) || outputLength < sizeof(ExtRequest) ||
                   srb.length < transport::kExtIoctlLength)) {
        return Completion::ShortBuffer;
    }

    Port& target = *ports_[port];
    if (target.flash->withoutPower) {
        return Completion::NoDevice;
    }
    ++target.requests;
    uint32_t subCode = kAnySubCode;
    if (!plain) {
        ExtRequest request;
        std::memcpy(&request, buffer, sizeof request);
        subCode = request.ext.subCode;
    }
    const FaultAction fault = host_.Together(
        [&] { return faults_.Match(target.profile->scsiPort, srb.controlCode, subCode); });
    if (fault.kind != FaultKind::None) {
        ++target.faults;
        CountFault(target, fault);
    }
    if (fault.kind == FaultKind::Busy) {
        return Completion::Busy;
    }
    if (fault.kind == FaultKind::Hang && delay != nullptr) {
        *delay = fault.value;
    }
    Completion completion = Completion::Busy;  // when memory is short
    const auto answer = [&] {
        completion =
            plain ? AnswerPlain(target, buffer, inputLength, outputLength, fault, returned)
                  : AnswerExtended(target, buffer, inputLength, outputLength, fault, returned);
    };
    if (fault.kind == FaultKind::Forget) {
        AndForget(host_, target, answer);
    } else {
        answer();
    }
    CountTime(target);
    KeepChanges(fabric_, *target.flash);
    if (target.flash->withoutPower) {
        *returned = 0;
        return Completion::NoDevice;
    }
    return completion;
}

Completion Model::AnswerExtended(Port& port, uint8_t* buffer, uint32_t inputLength,
                                 uint32_t outputLength, FaultAction fault, uint32_t* returned) {
    constexpr uint32_t kEnvelope = sizeof(ExtRequest);
    ExtRequest request;
    std::memcpy(&request, buffer, kEnvelope);

    const ExtendedLookup found =
        FindExtended(port.adapter->generation, request.srb.controlCode, request.ext.subCode);
    const bool bare = found.row != nullptr && Has(found.row->flags, RequestFlags::Bare);
    const bool signedLevel = IsSignature(request.ext.signature) &&
                             request.ext.levelAndVersion == transport::kInterfaceLevelAndVersion;
    if (!signedLevel && !bare) {
        if (!IsSignature(request.ext.signature)) {
            return Completion::Invalid;
        }
        request.ext.status = static_cast<uint32_t>(DriverStatus::UnsupportedVersion);
        std::memcpy(buffer, &request, kEnvelope);
        *returned = kEnvelope;
        return Completion::Done;
    }

    uint8_t* data = buffer + kEnvelope;
    const uint32_t room = Min(request.ext.responseLen, outputLength - kEnvelope);
    if (Refuses(fault.kind)) {
        // The driver gives up early: lengths and data go back as they came.
        request.ext.status = fault.kind == FaultKind::Status ? fault.value : fault.status;
        request.ext.detailStatus = fault.kind == FaultKind::Detail ? fault.value : 0;
        std::memcpy(buffer, &request, kEnvelope);
        *returned = kEnvelope + room;
        return Completion::Done;
    }

    Exchange exchange(port, data, inputLength - kEnvelope, room);
    exchange.SetExt(request.ext);
    exchange.SetFault(fault.kind);
    DriverStatus status = found.row != nullptr ? found.row->handle(exchange) : found.status;
    if (status == DriverStatus::Success && !exchange.Fits()) {
        status = DriverStatus::BufferTooSmall;
    }
    const uint32_t filled = Min(exchange.ReplyLength(), room);
    Corrupt(fault, exchange.Place(), data, filled);
    request.ext.status = static_cast<uint32_t>(status);
    request.ext.detailStatus = exchange.Detail();
    request.ext.responseLen = ReportedLength(exchange.ReplyLength(), fault);
    std::memcpy(buffer, &request, kEnvelope);
    *returned = kEnvelope + filled;
    return Completion::Done;
}

Completion Model::AnswerPlain(Port& port, uint8_t* buffer, uint32_t inputLength,
                              uint32_t outputLength, FaultAction fault, uint32_t* returned) {
    constexpr uint32_t kEnvelope = sizeof(SrbIoControl);
    uint32_t code;
    std::memcpy(&code, buffer + offsetof(SrbIoControl, controlCode), sizeof code);
    const PlainRow* row = FindPlain(port.adapter->generation, code);
    if (row == nullptr || Refuses(fault.kind)) {
        return Completion::Invalid;
    }
    uint8_t* data = buffer + kEnvelope;
    Exchange exchange(port, data, inputLength - kEnvelope, outputLength - kEnvelope);
    if (!row->handle(exchange)) {
        return Completion::Invalid;
    }
    if (!exchange.Fits()) {
        return Completion::ShortBuffer;
    }
    Corrupt(fault, exchange.Place(), data, exchange.ReplyLength());
    *returned =
        kEnvelope + Min(ReportedLength(exchange.ReplyLength(), fault), outputLength - kEnvelope);
    return Completion::Done;
}

}  // namespace vxemu
