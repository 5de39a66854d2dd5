// Counting, naming, opening and closing adapters.
#include <windows.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>

#include "events/events.h"
#include "frame/discovery.h"
#include "frame/handle_table.h"
#include "frame/registry.h"
#include "frame/trace.h"
#include "hbaapi/handlers.h"

namespace hbaapi {
namespace {

constexpr char kSettingsKey[] = "SOFTWARE\\SNIA\\HBA\\VXCORE";
constexpr uint32_t kEveryCategory = 0xFFFFFFFF;

// "Korvex-driver-1": the driver name is cut so that the caller's 256 bytes hold any name.
constexpr char kNameFormat[] = "Korvex-%.240s-%d";

// The digits behind the last '-' of an adapter name; empty when there are none.
std::string_view OrdinalText(std::string_view name) {
    const size_t dash = name.rfind('-');
    if (dash == std::string_view::npos) {
        return {};
    }
    const std::string_view rest = name.substr(dash + 1);
    return rest.substr(0, rest.find_first_not_of("0123456789"));
}

// Starts a trace if the registry names a file for it. The name of a file with an extension tells
// adapter, handle and process apart; one without has the adapter's number appended.
void StartTrace(std::string_view ordinalText, uint32_t ordinal, uint32_t handle) {
    char file[MAX_PATH];
    if (frame::ReadRegistryText(kSettingsKey, "DebugFile", file) != ERROR_SUCCESS || file[0] == 0) {
        return;
    }
    char path[1024 + 1];  // the most that wsprintfA writes
    if (char* const dot = std::strchr(file, '.')) {
        *dot = 0;
        wsprintfA(path, "%s_Index%d_Handle%d_ID%d.%s", file, ordinal, handle, GetCurrentProcessId(),
                  dot + 1);
    } else {
        char digits[16] = {};
        std::copy_n(ordinalText.begin(), std::min(ordinalText.size(), sizeof digits - 1), digits);
        wsprintfA(path, "%s%s", file, digits);
    }
    frame::EnableDebugTrace(&handle, path, kEveryCategory);
}

}  // namespace

HBA_UINT32 GetApiVersion() {
    return HBA_VERSION;
}

HBA_STATUS StartLibrary() {
    frame::ResetApiTraceFiles();
    return HBA_STATUS_OK;
}

HBA_STATUS EndLibrary() {
    return HBA_STATUS_OK;
}

HBA_UINT32 GetNumberOfAdapters() {
    return frame::CountAdapters();
}

HBA_STATUS GetAdapterName(HBA_UINT32 index, char* name) {
    if (name == nullptr) {
        return HBA_STATUS_ERROR_ARG;
    }
    name[0] = 0;
    uint32_t found = 0;
    for (uint32_t port = 0; port < HX_MAX_SCSI_PORTS; ++port) {
        if (frame::IsFamilyPort(port) && found++ == index) {
            wsprintfA(name, kNameFormat, frame::DriverNameOfPort(port), index + 1);
            return HBA_STATUS_OK;
        }
    }
    return HBA_STATUS_ERROR_ILLEGAL_INDEX;
}

HBA_HANDLE OpenAdapter(char* name) {
    constexpr HBA_HANDLE kFailed = 0;

    if (name == nullptr || std::strchr(name, '-') == nullptr) {
        return kFailed;
    }
    const std::string_view digits = OrdinalText(name);
    uint32_t ordinal = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), ordinal);
    uint32_t handle = 0;
    // Ordinal 0 becomes an index that no adapter has.
    if (frame::OpenDevice(ordinal - 1, &handle) != HXMGT_SUCCESS) {
        return kFailed;
    }
    StartTrace(digits, ordinal, handle);
    events::EnableAen(handle);  // an adapter without events is as open: intended
    return handle;
}

void CloseAdapter(HBA_HANDLE handle) {
    // Whatever the state of the handle, also when it is closed already: intended.
    events::DisableAen(handle);
    frame::CloseDevice(handle);
}

void RefreshInformation(HBA_HANDLE) {}

}  // namespace hbaapi
