#include "transport/envelope.h"

#include <algorithm>
#include <cstring>

namespace transport {
namespace {

#pragma pack(push, 1)
// Names a piece of a region.
struct ChunkRequest {
    uint16_t kib;
    uint16_t index;
};
// Names a piece of the flash.
struct OffsetRequest {
    uint32_t length;
    uint32_t offset;
};
#pragma pack(pop)

constexpr uint16_t kByOffset = 0xFFFF;
constexpr uint16_t kByOffsetFlagged = 0xFFFD;  // sent as kByOffset with DetailStatus 1
constexpr uint16_t kEepromAddress = 0xA0;      // two-wire address of a transceiver's A0h page

// The flash request record of a call: where it stands and which of the two kinds it is. The pointer
// alone says that there is one: a length of 0 transfers nothing and the record counts all the same.
struct FlashRecord {
    const void* record = nullptr;  // null: the call has none
    uint32_t length = 0;
    bool byOffset = false;

    uint32_t Needed() const { return byOffset ? sizeof(OffsetRequest) : sizeof(ChunkRequest); }
};

FlashRecord FlashRecordOf(const ExtendedCall& call) {
    if (call.subCode != 0) {
        if (call.code == command::FlashRead.code) {
            return {call.input, call.inputLength, call.subCode == kByOffset};
        }
        // A write's record travels in the output buffer: intended.
        if (call.code == command::FlashWrite.code) {
            return {call.output, call.outputLength, call.subCode >= kByOffsetFlagged};
        }
    }
    return {};
}

void PutFlashRecord(const FlashRecord& flash, ExtIoctl& ext) {
    if (flash.byOffset) {
        OffsetRequest request;
        std::memcpy(&request, flash.record, sizeof request);
        ext.requestLen = request.length;
        ext.parameter = request.offset;
    } else {
        ChunkRequest request;
        std::memcpy(&request, flash.record, sizeof request);
        ext.parameter = request.kib * 0x10000u + request.index;
    }
}

void PutHeader(uint32_t code, uint32_t length, SrbIoControl& header) {
    header = {};
    header.headerLength = kHeaderLength;
    std::memcpy(header.signature, kSignature, sizeof kSignature);
    header.timeout = code == command::CtPassThrough.code ? kCtTimeoutSeconds : kTimeoutSeconds;
    header.controlCode = code;
    header.length = length;
}

}  // namespace

bool CarriesItsRecord(const ExtendedCall& call) {
    const FlashRecord flash = FlashRecordOf(call);
    return flash.record == nullptr || flash.length == 0 || flash.length >= flash.Needed();
}

void BuildExtended(const ExtendedCall& call, ExtRequest& envelope) {
    std::memset(&envelope, 0, sizeof envelope);
    PutHeader(call.code, kExtIoctlLength + std::max(call.inputLength, call.outputLength),
              envelope.srb);
    ExtIoctl& ext = envelope.ext;
    std::memcpy(ext.signature, kSignature, sizeof kSignature);
    ext.levelAndVersion = kInterfaceLevelAndVersion;
    ext.subCode = call.subCode;
    ext.requestLen = call.inputLength;
    ext.responseLen = call.outputLength;

    if (call.code == command::NodePropertiesResync.code &&
        call.subCode == command::NodePropertiesResync.subCode) {
        ext.resyncFlag = 1;
        ext.subCode = command::NodeProperties.subCode;
    }
    if (const FlashRecord flash = FlashRecordOf(call); flash.record != nullptr) {
        PutFlashRecord(flash, ext);
        if (call.code == command::FlashWrite.code && call.subCode == kByOffsetFlagged) {
            ext.detailStatus = 1;
            ext.subCode = kByOffset;
        }
    }
    if (call.code == command::NvramWrite.code && call.inputLength != 0 && call.nvramFlag) {
        ext.detailStatus = 1;
    }
}

bool RetriesBusyMailbox(const ExtendedCall& call) {
    uint16_t address = 0;
    if (call.code != command::I2cWrite.code || call.inputLength < sizeof address) {
        return false;
    }
    std::memcpy(&address, call.input, sizeof address);
    return address == kEepromAddress;
}

void BuildPlain(uint32_t code, uint32_t dataLength, SrbIoControl& header) {
    PutHeader(code, dataLength, header);
}

}  // namespace transport
