// Firmware of the companion chip and of the transceiver; the boot-from-SAN query.
#include <algorithm>
#include <cstring>

#include "flash/flash.h"
#include "flash/flash_records.h"
#include "frame/handle_table.h"
#include "frame/owned.h"
#include "frame/trace.h"
#include "transport/requests.h"

namespace flash {
namespace {

static_assert(sizeof(HX_COMPANION_REQUEST) == 16);

transport::Command CompanionCommand(HX_COMPANION_OPERATION operation) {
    return {transport::command::AuxiliaryFirmware.code, static_cast<uint16_t>(operation)};
}

// A request that is a record and data behind it; the reply comes into the same bytes.
template <class Record>
class RecordAndData {
  public:
    explicit RecordAndData(uint32_t dataRoom)
        : bytes_(frame::ZeroedBytes(sizeof(Record) + size_t{dataRoom})) {}

    bool Valid() const { return bytes_ != nullptr; }
    Record& Head() { return *reinterpret_cast<Record*>(bytes_.get()); }
    uint8_t* Data() { return bytes_.get() + sizeof(Record); }
    HX_STATUS Exchange(uint32_t handle, transport::Command command, uint32_t dataLength,
                       uint32_t replyLength) {
        return Exchange(handle, command, dataLength, bytes_.get(), replyLength);
    }
    template <class Reply>
    HX_STATUS Exchange(uint32_t handle, transport::Command command, uint32_t dataLength,
                       Reply& reply) {
        return Exchange(handle, command, dataLength, &reply, static_cast<uint32_t>(sizeof reply));
    }
    HX_STATUS Exchange(uint32_t handle, transport::Command command, uint32_t dataLength) {
        return Exchange(handle, command, dataLength,
                        static_cast<uint32_t>(sizeof(Record)) + dataLength);
    }

  private:
    HX_STATUS Exchange(uint32_t handle, transport::Command command, uint32_t dataLength,
                       void* reply, uint32_t replyLength) {
        return transport::SendExtended(handle, command.code, command.subCode, bytes_.get(),
                                       static_cast<uint32_t>(sizeof(Record)) + dataLength, reply,
                                       replyLength, nullptr);
    }

    frame::Bytes bytes_;
};

HX_STATUS ResetCompanion(uint32_t handle, HX_COMPANION_REQUEST& request) {
    VX_TRACE(handle, "HXOrvoMgt: Orvo Reset Operation (Flags %x)\n",
             static_cast<unsigned>(request.flags));
    uint32_t reply = 0;
    return transport::Exchange(handle, CompanionCommand(HX_COMPANION_RESET), request.flags, reply);
}

HX_STATUS GetCompanionVersion(uint32_t handle, HX_COMPANION_REQUEST& request) {
    uint32_t version = 0;
    const HX_STATUS status =
        transport::Exchange(handle, CompanionCommand(HX_COMPANION_VERSION), request.flags, version);
    if (status == HXMGT_SUCCESS) {
        request.version = version;
    }
    return status;
}

HX_STATUS UpdateCompanion(uint32_t handle, HX_COMPANION_REQUEST& request) {
    const uint32_t total = request.totalSize;
    CompanionImageHead image{};
    if (total < sizeof image) {
        return HXMGT_INVALID_PARAMETER;
    }
    const auto* const data = reinterpret_cast<const uint8_t*>(&request) + sizeof request;
    std::memcpy(&image, data, sizeof image);
    RecordAndData<CompanionSegmentRecord> segment(kCompanionSegment);
    if (!segment.Valid()) {
        return HXMGT_OUT_OF_MEMORY;
    }
    uint32_t exchangeAddress = 0;
    for (uint32_t offset = 0, number = 0; offset < total; ++number) {
        const uint32_t bytes = std::min(total - offset, kCompanionSegment);
        const uint32_t last = offset + bytes == total ? kCompanionLastSegment : 0;
        segment.Head() = {
            request.flags | last, 1, image.version, exchangeAddress, total, bytes, offset};
        std::memcpy(segment.Data(), data + offset, bytes);
        VX_TRACE(handle,
                 "HXOrvoMgt: Iteration %d, SegCnt %d, FwVer %x, ExchangeAddr %x, TotalSize %x, "
                 "SeqSize %x, RelOffset %x\n",
                 static_cast<int>(number), 1, static_cast<unsigned>(image.version),
                 static_cast<unsigned>(exchangeAddress), static_cast<unsigned>(total),
                 static_cast<unsigned>(bytes), static_cast<unsigned>(offset));
        if (const HX_STATUS status =
                segment.Exchange(handle, CompanionCommand(HX_COMPANION_UPDATE), bytes);
            status != HXMGT_SUCCESS) {
            return status;
        }
        if (number == 0) {
            exchangeAddress = segment.Head().exchangeAddress;
        }
        offset += bytes;
    }
    return HXMGT_SUCCESS;
}

HX_STATUS GetCompanionInformation(uint32_t handle, HX_COMPANION_REQUEST& request) {
    const uint32_t capacity = request.capacity;
    auto* const out = reinterpret_cast<uint8_t*>(&request) + sizeof request;
    RecordAndData<CompanionInformationRecord> piece(kCompanionPiece);
    if (!piece.Valid()) {
        return HXMGT_OUT_OF_MEMORY;
    }
    uint32_t received = 0;
    uint32_t wanted = capacity;
    do {
        const uint32_t asked = std::min(wanted - received, kCompanionPiece);
        piece.Head() = {request.flags, capacity, asked, received, 0};
        if (const HX_STATUS status =
                piece.Exchange(handle, CompanionCommand(HX_COMPANION_INFORMATION), asked);
            status != HXMGT_SUCCESS) {
            return status;
        }
        const uint32_t came = std::min(piece.Head().returned, asked);
        std::memcpy(out + received, piece.Data(), came);
        received += came;
        wanted = std::min(wanted, std::max(piece.Head().total, received));
        if (came == 0) {
            break;  // no more, whatever the total says
        }
    } while (received < wanted);
    request.totalSize = received;
    return HXMGT_SUCCESS;
}

struct CompanionRow {
    HX_COMPANION_OPERATION operation;
    HX_STATUS (*run)(uint32_t handle, HX_COMPANION_REQUEST& request);
};
constexpr CompanionRow kCompanionOperations[] = {
    {HX_COMPANION_RESET, ResetCompanion},
    {HX_COMPANION_VERSION, GetCompanionVersion},
    {HX_COMPANION_UPDATE, UpdateCompanion},
    {HX_COMPANION_INFORMATION, GetCompanionInformation},
};

constexpr uint32_t kNoResult = 0xFFFFFFFF;

HX_STATUS StatusOf(const TransceiverLoadReply& reply) {
    switch (static_cast<TransceiverResult>(reply.result)) {
        case TransceiverResult::Accepted:
            return HXMGT_SUCCESS;
        case TransceiverResult::Incompatible:
            return HXMGT_SFP_FIRMWARE_INCOMPATIBLE;
        default:
            return HXMGT_SFP_FIRMWARE_UPDATE_ERROR;
    }
}

}  // namespace

HX_STATUS ManageCompanion(uint32_t handle, uint32_t operation, void* request) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    for (const CompanionRow& row : kCompanionOperations) {
        if (row.operation == operation) {
            return request != nullptr
                       ? row.run(handle, *static_cast<HX_COMPANION_REQUEST*>(request))
                       : HX_STATUS{HXMGT_INVALID_PARAMETER};
        }
    }
    VX_TRACE(handle, "HXOrvoMgt: Return HXMGT_INVALID_REQUEST to caller\n");
    return HXMGT_INVALID_REQUEST;
}

HX_STATUS LoadTransceiverFirmware(uint32_t handle, const void* image, uint32_t imageSize) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    if (image == nullptr || imageSize == 0) {
        return HXMGT_INVALID_PARAMETER;
    }
    const auto* const data = static_cast<const uint8_t*>(image);
    RecordAndData<TransceiverLoadRecord> piece(kTransceiverPiece);
    if (!piece.Valid()) {
        return HXMGT_OUT_OF_MEMORY;
    }
    for (uint32_t offset = 0; offset < imageSize;) {
        const uint32_t bytes = std::min(imageSize - offset, kTransceiverPiece);
        const uint32_t flags = (offset == 0 ? kTransceiverFirst : 0) |
                               (offset + bytes == imageSize ? kTransceiverLast : 0);
        piece.Head() = {flags, imageSize, bytes, offset, {}};
        std::memcpy(piece.Data(), data + offset, bytes);
        TransceiverLoadReply reply{kNoResult, {}};
        HX_STATUS status =
            piece.Exchange(handle, transport::command::LoadSfpFirmware, bytes, reply);
        if (status == HXMGT_SUCCESS) {
            status = StatusOf(reply);
        }
        if (status != HXMGT_SUCCESS) {
            return status;
        }
        offset += bytes;
    }
    return HXMGT_SUCCESS;
}

HX_STATUS GetBootFromSan(uint32_t handle) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    const uint8_t request = 0;
    uint8_t boots = 0;
    if (transport::Exchange(handle, transport::command::BootFromSan, request, boots) !=
        HXMGT_SUCCESS) {
        return HXMGT_BOOT_FROM_SAN_UNKNOWN;
    }
    return boots == 1 ? HXMGT_FLASH_UPDATE_NOT_ACTIVATED : HXMGT_SUCCESS;
}

}  // namespace flash
