#include "status_codes.h"

#include "hxstatus.h"
#include "records/text.h"

namespace tools {
namespace {

struct NameRow {
    uint32_t status;
    const char* name;
};

#define VX_NAME_WITH_TEXT(name, code, text) {code, #name},
#define VX_NAME(name, code) {code, #name},
constexpr NameRow kNames[] = {
    // clang-format off
    HX_STATUS_TABLE(VX_NAME_WITH_TEXT)
    HX_STATUS_WITHOUT_TEXT(VX_NAME)
    // clang-format on
};
#undef VX_NAME
#undef VX_NAME_WITH_TEXT

struct MeaningRow {
    uint32_t status;
    ExitCode exit;
    const char* hint;
    const char* text = nullptr;  // of a Windows error code, where the system has none
};

constexpr const char* kElevate = "run the command from an elevated prompt";
constexpr const char* kRetry = "another program may be using the adapter: try again";
constexpr const char* kDriverTooOld = "a newer driver may support it: see `driver show`";
constexpr const char* kWentAway =
    "the driver was stopped, or the adapter went away: see `port list`";
constexpr const char* kWrongImage = "the file does not fit this adapter";

// Everything that is not listed is a failed operation without particular advice.
constexpr MeaningRow kMeanings[] = {
    {HXMGT_SUCCESS, ExitCode::Done, ""},
    {HXMGT_LOGICAL_BUSY, ExitCode::Busy, kRetry},
    {HXMGT_MS_COMMAND_NOT_SUPPORTED, ExitCode::NotSupported, ""},
    {HXMGT_ACCESS_DENIED, ExitCode::AccessDenied, ""},
    {HXMGT_MS_NO_RESPONSE, ExitCode::TimedOut, "the fabric does not answer: is the port online?"},
    {HXMGT_SCSI_BUSY, ExitCode::Busy, ""},
    {HXMGT_SCSI_QUEUE_FULL, ExitCode::Busy, ""},
    {HXMGT_SCSI_RESERVATION_CONFLICT, ExitCode::Busy, "another host holds a reservation"},
    {HXMGT_ZONES_NOT_SUPPORTED, ExitCode::NotSupported, ""},
    {HXMGT_REQUEST_NOT_SUPPORTED, ExitCode::NotSupported, ""},
    {HXMGT_CAPABILITY_NOT_SUPPORTED, ExitCode::NotSupported, ""},
    {HXMGT_ACTIVATION_TIMED_OUT, ExitCode::TimedOut, ""},
    {HXMGT_INVALID_HANDLE, ExitCode::Failed, "the adapter was closed, or no handle is free"},
    {HXMGT_NOT_SUPPORTED, ExitCode::NotSupported, kDriverTooOld},
    {HXMGT_DEVICE_BUSY, ExitCode::Busy, kRetry},
    {HXMGT_DEVICE_NOT_FOUND, ExitCode::NotFound, "see `port list`"},
    {HXMGT_INVALID_SUBCODE, ExitCode::NotSupported, kDriverTooOld},
    {HXMGT_INCOMPATIBLE_VERSION, ExitCode::NotSupported,
     "the driver does not answer the library: too old, or its adapter has failed"},
    {HXMGT_INVALID_REQUEST, ExitCode::NotSupported, kDriverTooOld},
    {HXMGT_REGISTRY_INVALID, ExitCode::Failed,
     "the driver's registry key could not be used: is the prompt elevated?"},
    {HXMGT_HBA_QUEUE_IS_FULL, ExitCode::Busy, kRetry},
    {HXMGT_MUTEX_NOT_RESERVED, ExitCode::Busy, kRetry},
    {HXMGT_OPTION_ROM_CHECKSUM_ERROR, ExitCode::Refused, kWrongImage},
    {HXMGT_OPTION_ROM_SIZE_TOO_BIG, ExitCode::Refused, kWrongImage},
    {HXMGT_OPTION_ROM_VERSION_MISMATCH, ExitCode::Refused, kWrongImage},
    {HXMGT_OPTION_ROM_ATTRIBUTE_MISMATCH, ExitCode::Refused, kWrongImage},
    {HXMGT_OPTION_ROM_INCOMPATIBLE_FIRMWARE, ExitCode::Refused, kWrongImage},
    {HXMGT_OPTION_ROM_INVALID_FIRMWARE, ExitCode::Refused, kWrongImage},
    {HXMGT_TIMED_OUT, ExitCode::TimedOut,
     "its driver or the adapter may hang; --timeout waits longer"},
    {HXMGT_NO_FIRMWARE_DUMP, ExitCode::NotFound, "take a dump first"},
    {HXMGT_SESSION_IN_PROGRESS, ExitCode::Busy, "an update of this adapter is under way"},
    {HXMGT_FLASH_UPDATE_NOT_ACTIVATED, ExitCode::NotProven, ""},
    {HXMGT_OPTION_ROM_VPD_INVALID, ExitCode::Refused, ""},
    {HXMGT_OPTION_ROM_REGION_INVALID, ExitCode::Refused, ""},
    {HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER, ExitCode::NotSupported, kDriverTooOld},
    {HXMGT_FIRMWARE_LOCKDOWN, ExitCode::Refused, "the adapter is locked down"},
    {HXMGT_DIAGNOSTIC_TEST_RUNNING, ExitCode::Busy, "wait for the running test to end"},
    {HXMGT_SFP_FIRMWARE_INCOMPATIBLE, ExitCode::Refused, kWrongImage},

    // Windows error codes.
    {1, ExitCode::NotSupported, "the driver does not know the request", "Incorrect function"},
    {2, ExitCode::NotFound, "", "The file or device is not there"},
    {3, ExitCode::NotFound, "", "The path is not there"},
    {5, ExitCode::AccessDenied, kElevate, "Access is denied"},
    {32, ExitCode::Busy, "", "Another process uses it"},
    {33, ExitCode::Busy, "", "Another process has locked a part of it"},
    {50, ExitCode::NotSupported, "", "The request is not supported"},
    {121, ExitCode::TimedOut, "", "The semaphore timeout period has expired"},
    {170, ExitCode::Busy, kRetry, "The requested resource is in use"},
    {258, ExitCode::TimedOut, "", "The wait timed out"},
    {433, ExitCode::NotFound, kWentAway, "A device which does not exist was specified"},
    {995, ExitCode::Cancelled, "", "The operation was aborted"},
    {1053, ExitCode::TimedOut, "", "The service did not respond in time"},
    {1060, ExitCode::NotFound, "the driver service is not installed",
     "The service is not installed"},
    {1062, ExitCode::NotFound, "the driver service does not run",
     "The service has not been started"},
    {1167, ExitCode::NotFound, kWentAway, "The device is not connected"},
    {1168, ExitCode::NotFound, "", "Element not found"},
    {1223, ExitCode::Cancelled, "", "The operation was canceled by the user"},
    {1314, ExitCode::AccessDenied, kElevate, "A required privilege is not held"},
    {1460, ExitCode::TimedOut, "", "The operation timed out"},
};

const MeaningRow* FindMeaning(uint32_t status) {
    for (const MeaningRow& row : kMeanings) {
        if (row.status == status) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace

StatusKind KindOf(uint32_t status) {
    constexpr uint32_t kLibraryBit = 1u << 29;
    if (status == HXMGT_SUCCESS) {
        return StatusKind::Success;
    }
    return (status & kLibraryBit) != 0 ? StatusKind::Library : StatusKind::Windows;
}

std::string StatusName(uint32_t status) {
    for (const NameRow& row : kNames) {
        if (row.status == status) {
            return row.name;
        }
    }
    if (KindOf(status) == StatusKind::Windows) {
        return "WINDOWS_" + std::to_string(status);
    }
    return "UNKNOWN";
}

bool FindStatus(std::string_view name, uint32_t* status) {
    constexpr std::string_view kPrefix = "HXMGT_";
    std::string wanted = Uppercase(name);
    if (wanted.starts_with(kPrefix)) {
        wanted.erase(0, kPrefix.size());
    }
    for (const NameRow& row : kNames) {
        if (wanted == row.name) {
            *status = row.status;
            return true;
        }
    }
    return false;
}

std::string StatusText(uint32_t status) {
    return Hex(status, 8);
}

ExitCode ExitCodeOf(uint32_t status) {
    const MeaningRow* row = FindMeaning(status);
    return row == nullptr ? ExitCode::Failed : row->exit;
}

std::string WindowsText(uint32_t code) {
    const MeaningRow* row = FindMeaning(code);
    return row == nullptr || row->text == nullptr ? "Windows error " + std::to_string(code)
                                                  : row->text;
}

const char* HintOf(uint32_t status) {
    const MeaningRow* row = FindMeaning(status);
    return row == nullptr ? "" : row->hint;
}

}  // namespace tools
