#include "machine/scripted_port.h"

#include <winioctl.h>

#include <ntddscsi.h>

#include <algorithm>

#include "properties/chip_families.h"

namespace support {

namespace {

constexpr uint32_t kAnySelector = 0xFFFFFFFF;

// What stands in the header's return code means nothing.
constexpr uint32_t kReturnCode = 0xDEAD;

// Copies as much of source as fits behind offset; returns the end of what was written.
uint32_t Put(void* output, uint32_t outputSize, uint32_t offset, const Bytes& source) {
    if (offset >= outputSize) {
        return outputSize;
    }
    const auto room = static_cast<size_t>(outputSize - offset);
    const size_t count = std::min(room, source.size());
    if (count != 0) {
        memcpy(static_cast<uint8_t*>(output) + offset, source.data(), count);
    }
    return offset + static_cast<uint32_t>(count);
}

}  // namespace

Bytes Counting(uint32_t length, uint8_t first) {
    Bytes bytes(length);
    for (uint32_t i = 0; i < length; ++i) {
        bytes[i] = static_cast<uint8_t>(first + i);
    }
    return bytes;
}

bool SentRequest::IsExtended() const {
    // Codes 0xF0001003 and up to 0xF000A144 but the loopback's first form and the legacy SCSI code.
    for (const transport::PlainCommandRow& row : transport::kPlainCommands) {
        if (row.code == Code()) {
            return false;
        }
    }
    return true;
}

transport::ExtRequest SentRequest::Envelope() const {
    transport::ExtRequest envelope = {};
    memcpy(&envelope, bytes.data(), std::min(bytes.size(), sizeof envelope));
    return envelope;
}

Bytes SentRequest::Data() const {
    const size_t offset = IsExtended() ? transport::kEnvelopeLength : transport::kHeaderLength;
    return bytes.size() <= offset ? Bytes() : Bytes(bytes.begin() + offset, bytes.end());
}

ScriptedPort::ScriptedPort(std::string_view driverVersion, uint16_t deviceId) {
    SetText(node.driverVersion, driverVersion);
    SetText(node.firmwareVersion, "9.12.01");
    SetText(driver.version, driverVersion);
    chip.vendorId = properties::kVendorId;
    chip.deviceId = deviceId;
    AnswerProbes();
}

void ScriptedPort::AnswerProbes() {
    On(transport::command::NodeProperties, Reply{.data = BytesOf(node)});
    On(transport::command::ChipProperties, Reply{.data = BytesOf(chip)});
    On(transport::command::DriverProperties, Reply{.data = BytesOf(driver)});
}

void ScriptedPort::On(transport::Command command, Reply reply) {
    On(command, [reply](const SentRequest&) { return reply; });
}

void ScriptedPort::Handle(transport::Command command, Handler handler) {
    const std::lock_guard hold(lock_);
    extended_[{command.code, command.subCode}] = std::move(handler);
}

void ScriptedPort::OnPlain(uint32_t code, Reply reply) {
    const std::lock_guard hold(lock_);
    plain_[{code, kAnySelector}] = [reply](const SentRequest&) { return reply; };
}

void ScriptedPort::OnSelector(properties::LegacySelector selector, Reply reply) {
    const std::lock_guard hold(lock_);
    plain_[{transport::command::LegacyQuery, static_cast<uint32_t>(selector)}] =
        [reply](const SentRequest&) { return reply; };
}

void ScriptedPort::Next(Reply reply) {
    const std::lock_guard hold(lock_);
    next_.push_back(std::move(reply));
}

void ScriptedPort::NextBusy(uint32_t times) {
    for (uint32_t i = 0; i < times; ++i) {
        Next({.error = ERROR_BUSY});
    }
}

std::vector<SentRequest> ScriptedPort::Requests() const {
    const std::lock_guard hold(lock_);
    return requests_;
}

std::vector<SentRequest> ScriptedPort::Requests(transport::Command command) const {
    std::vector<SentRequest> matching = Requests();
    std::erase_if(matching, [command](const SentRequest& request) {
        return request.Code() != command.code || !request.IsExtended() ||
               request.Envelope().ext.subCode != command.subCode;
    });
    return matching;
}

SentRequest ScriptedPort::Last() const {
    const std::lock_guard hold(lock_);
    return requests_.empty() ? SentRequest{} : requests_.back();
}

void ScriptedPort::Forget() {
    const std::lock_guard hold(lock_);
    requests_.clear();
}

Reply ScriptedPort::Answer(const SentRequest& request) {
    Handler handler;
    {
        const std::lock_guard hold(lock_);
        requests_.push_back(request);
        if (!next_.empty()) {
            Reply reply = std::move(next_.front());
            next_.erase(next_.begin());
            return reply;
        }
        const uint32_t code = request.Code();
        if (request.IsExtended()) {
            const auto rule = extended_.find({code, request.Envelope().ext.subCode});
            if (rule == extended_.end()) {
                return {.status = static_cast<uint32_t>(transport::DriverStatus::InvalidRequest)};
            }
            handler = rule->second;
        } else {
            transport::SelectorRecord selector = {};
            const Bytes data = request.Data();
            memcpy(&selector, data.data(), std::min(data.size(), sizeof selector));
            auto rule = plain_.find({code, selector.selector});
            if (rule == plain_.end()) {
                rule = plain_.find({code, kAnySelector});
            }
            if (rule == plain_.end()) {
                return {.error = ERROR_INVALID_FUNCTION};
            }
            handler = rule->second;
        }
    }
    return handler(request);
}

uint32_t ScriptedPort::Control(uint32_t code, const void* input, uint32_t inputSize, void* output,
                               uint32_t outputSize, uint32_t* returned) {
    if (code == IOCTL_SCSI_GET_INQUIRY_DATA && !unitList.empty()) {
        *returned = outputSize < unitList.size() ? 0 : Put(output, outputSize, 0, unitList);
        return *returned != 0 ? 0 : ERROR_INSUFFICIENT_BUFFER;
    }
    if (code != transport::kIoctlScsiMiniport) {
        return ERROR_INVALID_FUNCTION;
    }
    const auto* first = static_cast<const uint8_t*>(input);
    const SentRequest request{Bytes(first, first + inputSize), inputSize, outputSize,
                              input == output};
    const Reply reply = Answer(request);
    if (reply.error != 0) {
        return reply.error;
    }
    // As with every buffered request, no byte beyond the reported count reaches the caller.
    outputSize = std::min(outputSize, reply.returned.value_or(outputSize));
    uint32_t end;
    if (request.IsExtended()) {
        transport::ExtRequest envelope = request.Envelope();
        envelope.srb.returnCode = kReturnCode;
        envelope.ext.status = reply.status;
        envelope.ext.detailStatus = reply.detailStatus;
        envelope.ext.responseLen =
            reply.responseLength.value_or(static_cast<uint32_t>(reply.data.size()));
        Put(output, outputSize, 0, BytesOf(envelope));
        end = Put(output, outputSize, transport::kEnvelopeLength, reply.data);
    } else {
        transport::SrbIoControl header = {};
        memcpy(&header, input, std::min<size_t>(inputSize, sizeof header));
        header.returnCode = kReturnCode;
        Put(output, outputSize, 0, BytesOf(header));
        end = Put(output, outputSize, transport::kHeaderLength, reply.data);
    }
    *returned = reply.returned.value_or(end);
    return 0;
}

}  // namespace support
