#include "frame/driver_parameters.h"
#include "frame/handle_table.h"
#include "properties/properties.h"

namespace properties {
namespace {

constexpr char kService[] = "vxfc2";
constexpr char kParameter[] = "smartsanhp";

HX_STATUS Switch(uint32_t handle, const char* value) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    return frame::SetDriverParameter(kService, kParameter, value) == HXMGT_SUCCESS
               ? HXMGT_SUCCESS
               : HXMGT_REGISTRY_INVALID;
}

}  // namespace

HX_STATUS GetSmartSanStatus(uint8_t* enabled) {
    if (enabled != nullptr) {
        *enabled = frame::DriverParameterNumber(kService, kParameter) == 1 ? 1 : 0;
    }
    return HXMGT_SUCCESS;
}

HX_STATUS EnableSmartSan(uint32_t handle) {
    return Switch(handle, "1");
}

HX_STATUS DisableSmartSan(uint32_t handle) {
    return Switch(handle, nullptr);
}

}  // namespace properties
