#include <windows.h>

#include <algorithm>
#include <cstring>

#include "frame/handle_table.h"
#include "frame/owned.h"
#include "frame/trace.h"
#include "transport/driver_status.h"
#include "transport/envelope.h"
#include "transport/requests.h"

namespace transport {
namespace {

constexpr uint32_t kBusyRetries = 80;
constexpr DWORD kRetryPauseMs = 1000;
constexpr uint32_t kMailboxRetries = 3;
constexpr uint32_t kMailboxBusy = 0x4005;

// Mailbox codes of a failed transceiver read.
constexpr uint32_t kSfpTransferFailed = 0x4002;
constexpr uint32_t kSfpUnavailable = 0x4005;
constexpr uint32_t kSfpBadParameter = 0x4006;

bool LacksBuffer(const void* buffer, uint32_t length) {
    return buffer == nullptr && length != 0;
}

constexpr uint32_t kNotTraced = 0;  // no handle

// Sends a transfer, again after each pause for as long as the driver is busy. retries counts over
// the whole request. Retries are traced for the handle.
DWORD TransferWhileBusy(HANDLE device, const Transfer& transfer, DWORD* returned, uint32_t handle,
                        uint32_t& retries) {
    while (!DeviceIoControl(device, kIoctlScsiMiniport, transfer.input, transfer.inputSize,
                            transfer.output, transfer.outputSize, returned, nullptr)) {
        const DWORD error = GetLastError();
        VX_TRACE(handle, "::DeviceIoControl() failed, getLastErrorStatus=0x%x\n",
                 static_cast<unsigned>(error));
        if (error != ERROR_BUSY || retries == kBusyRetries) {
            return error;
        }
        Sleep(kRetryPauseMs);
        ++retries;
        VX_TRACE(handle, "retryCount=%u\n", retries);
    }
    return ERROR_SUCCESS;
}

// One extended request on its way: the buffer that goes out and comes back.
class ExtendedExchange {
  public:
    ExtendedExchange(HANDLE device, uint32_t handle, const ExtendedCall& call, uint8_t* output)
        : device_(device),
          handle_(handle),
          call_(call),
          output_(output),
          room_(std::max(call.inputLength, call.outputLength)) {}

    HX_STATUS Run(uint32_t* returned) {
        if (room_ > UINT32_MAX - kEnvelopeLength) {
            return HXMGT_OUT_OF_MEMORY;
        }
        buffer_ = frame::UnclearedBytes(size_t{kEnvelopeLength} + room_);
        if (buffer_ == nullptr) {
            return HXMGT_OUT_OF_MEMORY;
        }
        const bool retriesMailbox = RetriesBusyMailbox(call_);
        uint32_t busyRetries = 0;
        for (uint32_t attempt = 0;; ++attempt) {
            if (const DWORD error = Send(busyRetries); error != ERROR_SUCCESS) {
                return error;
            }
            if (transferred_ < offsetof(ExtRequest, ext.reserved1)) {
                return HXMGT_UNKNOWN_ERROR;  // the reply ends before its status and length
            }
            if (!retriesMailbox || !IsMailboxFailure() || Detail() != kMailboxBusy ||
                attempt == kMailboxRetries) {
                return Interpret(returned);
            }
            Sleep(kRetryPauseMs);
        }
    }

  private:
    ExtRequest& Envelope() { return *reinterpret_cast<ExtRequest*>(buffer_.get()); }
    uint8_t* Data() { return buffer_.get() + kEnvelopeLength; }
    uint32_t Detail() { return Envelope().ext.detailStatus; }
    DriverStatus Status() { return static_cast<DriverStatus>(Envelope().ext.status); }
    bool IsMailboxFailure() { return Status() == DriverStatus::MailboxFailed; }

    DWORD Send(uint32_t& busyRetries) {
        BuildExtended(call_, Envelope());
        if (call_.inputLength != 0) {
            std::memcpy(Data(), call_.input, call_.inputLength);
        }
        TraceWithDump("Input buffer to DeviceIoControl\n", call_.inputLength);
        return TransferWhileBusy(device_,
                                 {buffer_.get(), kEnvelopeLength + call_.inputLength, buffer_.get(),
                                  kEnvelopeLength + room_},
                                 &transferred_, handle_, busyRetries);
    }

    HX_STATUS Interpret(uint32_t* returned) {
        const DriverStatus driverStatus = Status();
        const StatusRule rule = RuleOf(driverStatus, Detail());
        if (driverStatus == DriverStatus::BufferTooSmall && call_.code == command::VpdRead.code) {
            *returned = Envelope().ext.responseLen;  // the size the driver needs; nothing is copied
            return rule.status;
        }
        if (rule.copiesReply || (IsMailboxFailure() && ReturnsMailboxRegisters())) {
            *returned = CopyReply();
        }
        ClearBehindReply();
        if (driverStatus == DriverStatus::Success) {
            TraceWithDump("Output buffer from DeviceIoControl\n", call_.outputLength);
        } else if (IsMailboxFailure()) {
            TraceWithDump("Mailbox Failure\n", 0);
        }
        if (rule.status == HXMGT_SCSI_CHECK_CONDITION) {
            TraceWithDump("Output Sense Data\n", *returned);
        }
        return IsMailboxFailure() && call_.code == command::SfpRead.code
                   ? SfpReadStatus(Detail(), rule.status)
                   : rule.status;
    }

    // The mailbox registers come back even when the mailbox command failed.
    bool ReturnsMailboxRegisters() const {
        return call_.code == command::I2cRead.code || call_.code == command::I2cWrite.code ||
               call_.code == command::Mailbox.code;
    }

    static HX_STATUS SfpReadStatus(uint32_t detail, HX_STATUS otherwise) {
        switch (detail) {
            case kSfpTransferFailed:
                return HXMGT_SFP_TRANSFER_ERROR;
            case kSfpUnavailable:
                return HXMGT_SFP_DATA_UNAVAILABLE;
            case kSfpBadParameter:
                return HXMGT_INVALID_PARAMETER;
            default:
                return otherwise;
        }
    }

    uint32_t CopyReply() {
        const uint32_t length = std::min(Envelope().ext.responseLen, call_.outputLength);
        // Data that the reply claims and that neither the driver nor the request ever wrote.
        const uint32_t written =
            std::max<uint32_t>(transferred_, kEnvelopeLength + call_.inputLength) - kEnvelopeLength;
        if (written < length) {
            std::memset(Data() + written, 0, length - written);
        }
        if (length != 0) {
            std::memcpy(output_, Data(), length);
        }
        return length;
    }

    // What did not come back is not in the trace.
    void ClearBehindReply() {
        const uint32_t came = std::max<uint32_t>(transferred_, kEnvelopeLength) - kEnvelopeLength;
        if (frame::IsTraced(handle_) && came < room_) {
            std::memset(Data() + came, 0, room_ - came);
        }
    }

    void TraceWithDump(const char* title, uint32_t dataLength) {
        if (frame::IsTraced(handle_)) {
            VX_TRACE(handle_, "%s", title);
            frame::DumpEnvelope(handle_, buffer_.get(), kExtIoctlLength + dataLength);
        }
    }

    HANDLE device_;
    uint32_t handle_;
    const ExtendedCall& call_;
    uint8_t* output_;
    uint32_t room_;  // bytes behind the envelope
    frame::Bytes buffer_;
    DWORD transferred_ = 0;
};

// A plain request's trace dump covers 28 bytes more than its data; they read as zero.
constexpr uint32_t kPlainDumpSlack = kHeaderLength;

}  // namespace

uint32_t SendToDevice(void* device, const Transfer& transfer, unsigned long* returned) {
    uint32_t retries = 0;
    return TransferWhileBusy(device, transfer, returned, kNotTraced, retries);
}

HX_STATUS SendExtended(uint32_t handle, uint32_t code, uint16_t subCode, const void* input,
                       uint32_t inputLength, void* output, uint32_t outputLength,
                       uint32_t* returned) {
    const HANDLE device = frame::DeviceOf(handle);
    if (device == INVALID_HANDLE_VALUE) {
        return HXMGT_INVALID_HANDLE;
    }
    if (LacksBuffer(input, inputLength) || LacksBuffer(output, outputLength)) {
        return HXMGT_INVALID_PARAMETER;
    }
    uint32_t unused = 0;
    uint32_t& count = returned != nullptr ? *returned : unused;
    // An NVRAM write takes its flag from the word that later holds the count: intended.
    const ExtendedCall call{code, subCode, input, inputLength, output, outputLength, count != 0};
    if (!CarriesItsRecord(call)) {
        return HXMGT_INVALID_PARAMETER;
    }
    count = 0;
    return ExtendedExchange(device, handle, call, static_cast<uint8_t*>(output)).Run(&count);
}

HX_STATUS SendPlain(uint32_t handle, uint32_t code, const void* input, uint32_t inputLength,
                    void* output, uint32_t outputLength) {
    const HANDLE device = frame::DeviceOf(handle);
    if (device == INVALID_HANDLE_VALUE) {
        return HXMGT_INVALID_HANDLE;
    }
    if (LacksBuffer(input, inputLength) || LacksBuffer(output, outputLength)) {
        return HXMGT_INVALID_PARAMETER;
    }
    if (std::max(inputLength, outputLength) > UINT32_MAX - kHeaderLength) {
        return HXMGT_OUT_OF_MEMORY;
    }
    const frame::Bytes in =
        frame::ZeroedBytes(size_t{kHeaderLength} + inputLength + kPlainDumpSlack);
    const frame::Bytes out = frame::ZeroedBytes(size_t{kHeaderLength} + outputLength);
    if (in == nullptr || out == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    BuildPlain(code, std::max(inputLength, outputLength),
               *reinterpret_cast<SrbIoControl*>(in.get()));
    if (inputLength != 0) {
        std::memcpy(in.get() + kHeaderLength, input, inputLength);
    }
    VX_TRACE(handle, "Input buffer to DeviceIoControl\n");
    frame::DumpEnvelope(handle, in.get(), kHeaderLength + inputLength);

    DWORD transferred = 0;
    // Retries of a plain request are not traced: intended.
    if (const DWORD error = SendToDevice(
            device,
            {in.get(), kHeaderLength + inputLength, out.get(), kHeaderLength + outputLength},
            &transferred);
        error != ERROR_SUCCESS) {
        return error;
    }
    // The whole length is copied, whatever the driver says that it returned: intended.
    if (outputLength != 0) {
        std::memcpy(output, out.get() + kHeaderLength, outputLength);
        VX_TRACE(handle, "Output buffer from DeviceIoControl\n");
        frame::DumpEnvelope(handle, out.get(), outputLength);
    }
    return HXMGT_SUCCESS;
}

}  // namespace transport
