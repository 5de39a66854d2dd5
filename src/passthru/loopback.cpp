#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "frame/owned.h"
#include "passthru/diagnostic_records.h"
#include "passthru/passthru.h"
#include "properties/generation.h"
#include "transport/requests.h"

namespace passthru {
namespace {

static_assert(sizeof(HX_LOOPBACK_RESULT) == 48);
static_assert(offsetof(HX_LOOPBACK_RESULT, value32) == 32);
static_assert(offsetof(HX_LOOPBACK_RESULT, value40) == 40);
static_assert(sizeof(HX_LOOPBACK_EX_RESULT) == 12);

constexpr uint32_t kLoopbackExVersion = 80100;  // older drivers report success untested
constexpr uint32_t kLargestPiece = 65536;
constexpr uint32_t kExtraRoom = 128;  // behind the data of each request

struct CompletionRow {
    uint16_t mailboxCode;
    uint16_t completion;
};

constexpr CompletionRow kCompletions[] = {
    {0x4000, HX_LOOPBACK_COMPLETE},
    {0x4006, HX_LOOPBACK_BAD_PARAMETER},
    {0x400B, HX_LOOPBACK_COMMAND_ERROR},
};

uint16_t CompletionOf(uint16_t mailboxCode) {
    for (const CompletionRow& row : kCompletions) {
        if (row.mailboxCode == mailboxCode) {
            return row.completion;
        }
    }
    return HX_LOOPBACK_OTHER;
}

// Where the echoes of a loopback go.
struct Echo {
    void* data;
    uint32_t room;
};

void PutResult(const LoopbackReply& reply, HX_LOOPBACK_EX_RESULT& result) {
    result.completion = CompletionOf(reply.completion);
    // The last two counters stand the other way round in the reply: intended.
    const uint16_t counters[] = {reply.counter14, reply.counter16, reply.counter18, reply.counter22,
                                 reply.counter20};
    static_assert(sizeof counters == sizeof result.counters);
    std::memcpy(result.counters, counters, sizeof counters);
}

// One request with all of its data; size is that of the request and of the reply.
HX_STATUS SendPiece(uint32_t handle, uint16_t options, uint32_t iterations, const uint8_t* data,
                    uint32_t length, const Echo& echo, uint8_t* buffer, uint32_t size,
                    HX_LOOPBACK_EX_RESULT& result) {
    std::memset(buffer, 0, size);
    LoopbackRequest& request = *reinterpret_cast<LoopbackRequest*>(buffer);
    request.options = options;
    request.length = length;
    request.iterations = iterations;
    request.lengthAt18 = length;
    request.lengthAt28 = length;
    request.lengthAt32 = length;
    uint8_t* const area = buffer + sizeof request;
    if (length != 0) {
        std::memcpy(area, data, length);
    }
    const transport::Command command = transport::command::Loopback;
    uint32_t returned = 0;
    const HX_STATUS status = transport::SendExtended(handle, command.code, command.subCode, buffer,
                                                     size, buffer, size, &returned);
    if (status == HXMGT_SUCCESS) {
        PutResult(*reinterpret_cast<const LoopbackReply*>(buffer), result);
        if (const uint32_t echoed = std::min(length, echo.room); echoed != 0) {
            std::memcpy(echo.data, area, echoed);
        }
    }
    return status;
}

}  // namespace

HX_STATUS RunLoopback(uint32_t handle, uint16_t options, void* sendData, uint16_t sendLength,
                      void* receiveData, uint16_t receiveLength, uint16_t iterations,
                      HX_LOOPBACK_RESULT* result) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    if (sendLength > kLegacyLoopbackRoom || result == nullptr ||
        (sendData == nullptr && sendLength != 0) ||
        (receiveData == nullptr && receiveLength != 0)) {
        return HXMGT_INVALID_PARAMETER;
    }
    const std::unique_ptr<LegacyLoopback> request(new (std::nothrow) LegacyLoopback{});
    if (request == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    const uint32_t received = std::min<uint32_t>(receiveLength, kLegacyLoopbackRoom);
    request->sendLength = sendLength;
    request->receiveLength = receiveLength;
    request->constant = kLoopbackConstant;
    request->mailboxCommand = kLoopbackCommand;
    request->options = options;
    request->sendLengthAgain = sendLength;
    request->iterations = iterations;
    if (sendLength != 0) {
        std::memcpy(request->sendData, sendData, sendLength);
    }
    if (received != 0) {
        std::memcpy(request->receiveData, receiveData, received);
    }
    const HX_STATUS status =
        transport::SendPlain(handle, transport::command::LegacyLoopback, request.get(),
                             sizeof *request, request.get(), sizeof *request);
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    const auto* const bytes = reinterpret_cast<const uint8_t*>(request.get());
    std::memcpy(result, request->result, sizeof request->result);
    result->completion = CompletionOf(result->completion);
    result->value32 = request->value168;
    std::memcpy(&result->value40, bytes + offsetof(LegacyLoopback, value176),
                sizeof result->value40);
    if (sendLength != 0) {
        std::memcpy(sendData, request->sendData, sendLength);
    }
    if (received != 0) {
        std::memcpy(receiveData, request->receiveData, received);
    }
    return HXMGT_SUCCESS;
}

HX_STATUS RunLoopbackEx(uint32_t handle, uint16_t options, const void* sendData, uint32_t length,
                        void* receiveData, uint32_t receiveLength, uint32_t iterations,
                        HX_LOOPBACK_EX_RESULT* result) {
    const std::optional<HXMGT_API_HANDLE> device = frame::CopyOfRecord(handle);
    if (!device) {
        return HXMGT_INVALID_HANDLE;
    }
    if (device->dwDriverVersion < kLoopbackExVersion) {
        return HXMGT_SUCCESS;  // without testing: intended
    }
    if (result == nullptr || (sendData == nullptr && length != 0) ||
        (receiveData == nullptr && receiveLength != 0)) {
        return HXMGT_INVALID_PARAMETER;
    }
    // A transfer of one piece has room for the whole receive length, as the driver may use it.
    const bool isOnePiece = length <= kLargestPiece;
    const uint32_t dataRoom = isOnePiece ? std::max(length, receiveLength) : kLargestPiece;
    if (dataRoom > UINT32_MAX - kExtraRoom) {
        return HXMGT_OUT_OF_MEMORY;
    }
    const frame::Bytes buffer = frame::UnclearedBytes(size_t{dataRoom} + kExtraRoom);
    if (buffer == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    const Echo echo{receiveData, receiveLength};
    const auto* data = static_cast<const uint8_t*>(sendData);
    HX_STATUS status = HXMGT_SUCCESS;
    // A failed piece does not stop the others; the last one's status counts.
    do {
        const uint32_t piece = std::min(length, kLargestPiece);
        const uint32_t size = (isOnePiece ? dataRoom : piece) + kExtraRoom;
        status =
            SendPiece(handle, options, iterations, data, piece, echo, buffer.get(), size, *result);
        data += piece;
        length -= piece;
    } while (length != 0);
    return status;
}

}  // namespace passthru
