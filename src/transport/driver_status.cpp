#include "transport/driver_status.h"

#include <iterator>

namespace transport {
namespace {

constexpr StatusRule kUnknown{HXMGT_UNKNOWN_ERROR, false};

// Indexed by driver status.
constexpr StatusRule kRules[] = {
    /*  0 */ {HXMGT_SUCCESS, true},
    /*  1 */ kUnknown,
    /*  2 */ {HXMGT_DEVICE_BUSY, false},
    /*  3 */ {HXMGT_REQUEST_PENDING, false},
    /*  4 */ {HXMGT_REQUEST_SUSPENDED, false},
    /*  5 */ {HXMGT_REQUEST_RETRY_PENDING, false},
    /*  6 */ {HXMGT_INVALID_PARAMETER, false},
    /*  7 */ {HXMGT_DATA_OVERRUN, false},
    /*  8 */ {HXMGT_DATA_UNDERRUN, false},
    /*  9 */ {HXMGT_DEVICE_NOT_FOUND, false},
    /* 10 */ {HXMGT_COPY_FAILED, false},
    /* 11 */ {HXMGT_MAILBOX_FAILED, false},
    /* 12 */ {HXMGT_INVALID_SUBCODE, false},
    /* 13 */ {HXMGT_INCOMPATIBLE_VERSION, false},
    /* 14 */ {HXMGT_MS_NO_RESPONSE, false},
    /* 15 */ kUnknown,  // by SCSI status, below
    /* 16 */ {HXMGT_BUFFER_TOO_SMALL, true},
    /* 17 */ {HXMGT_OUT_OF_MEMORY, false},
    /* 18 */ kUnknown,
    /* 19 */ kUnknown,
    /* 20 */ {HXMGT_INVALID_REQUEST, false},
    /* 21 */ {HXMGT_DEVICE_NOT_READY, false},
    /* 22 */ {HXMGT_DEVICE_OFFLINE, false},
    /* 23 */ {HXMGT_HBA_IS_NOT_READY, false},
    /* 24 */ {HXMGT_HBA_QUEUE_IS_FULL, false},
    /* 25 */ kUnknown,
    /* 26 */ {HXMGT_DRIVER_STATUS_26, false},
    /* 27 */ {HXMGT_DRIVER_STATUS_27, false},
    /* 28 */ {HXMGT_DRIVER_STATUS_28, false},
    /* 29 */ {HXMGT_DRIVER_STATUS_29, false},
    /* 30 */ {HXMGT_TIMED_OUT, false},
    /* 31 */ {HXMGT_NVRAM_CHECKSUM_INVALID, false},
    /* 32 */ {HXMGT_UNEXPECTED_RESET, false},
    /* 33 */ {HXMGT_FIRMWARE_STATE_INVALID, false},
    /* 34 */ {HXMGT_DRIVER_STATUS_34, false},
    /* 35 */ {HXMGT_NO_FIRMWARE_DUMP, false},
    /* 36 */ {HXMGT_DRIVER_STATUS_36, false},
    /* 37 */ {HXMGT_DRIVER_STATUS_37, false},
    /* 38 */ {HXMGT_DRIVER_STATUS_38, false},
    /* 39 */ kUnknown,
    /* 40 */ kUnknown,
    /* 41 */ kUnknown,
    /* 42 */ {HXMGT_FIRMWARE_LOCKDOWN, false},
    /* 43 */ {HXMGT_DIAGNOSTIC_TEST_RUNNING, true},
    /* 44 */ {HXMGT_SFP_FIRMWARE_UPDATE_ERROR, false},
    /* 45 */ {HXMGT_PORT_ENABLE_FAILED, false},
};
static_assert(std::size(kRules) == static_cast<size_t>(DriverStatus::PortEnableFailed) + 1);

struct ScsiStatusRow {
    uint32_t scsiStatus;
    uint32_t status;
};

constexpr ScsiStatusRow kScsiStatuses[] = {
    {0x00, HXMGT_SUCCESS},
    {0x02, HXMGT_SCSI_CHECK_CONDITION},
    {0x04, HXMGT_SCSI_CONDITION_MET},
    {0x08, HXMGT_SCSI_BUSY},
    {0x10, HXMGT_SCSI_INTERMEDIATE},
    {0x14, HXMGT_SCSI_INTERMEDIATE_CONDITION_MET},
    {0x18, HXMGT_SCSI_RESERVATION_CONFLICT},
    {0x22, HXMGT_SCSI_COMMAND_TERMINATED},
    {0x28, HXMGT_SCSI_QUEUE_FULL},
};

}  // namespace

StatusRule RuleOf(DriverStatus status, uint32_t detail) {
    if (status == DriverStatus::ScsiStatus) {
        for (const ScsiStatusRow& row : kScsiStatuses) {
            if (row.scsiStatus == detail) {
                return {row.status, true};
            }
        }
        return {HXMGT_UNKNOWN_ERROR, true};
    }
    const auto index = static_cast<size_t>(status);
    return index < std::size(kRules) ? kRules[index] : kUnknown;
}

}  // namespace transport
