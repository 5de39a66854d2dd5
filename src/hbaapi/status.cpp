#include "hbaapi/status.h"

#include "properties/generation.h"

namespace hbaapi {
namespace {

struct StatusRow {
    HX_STATUS status;
    HBA_STATUS mapped;
};
constexpr StatusRow kStatuses[] = {
    {HXMGT_SUCCESS, HBA_STATUS_OK},
    {HXMGT_BUILT_BY_API, HBA_STATUS_OK},  // counts as success: intended
    {HXMGT_INVALID_PARAMETER, HBA_STATUS_ERROR_ARG},
    {HXMGT_INVALID_HANDLE, HBA_STATUS_ERROR_INVALID_HANDLE},
    {HXMGT_NOT_SUPPORTED, HBA_STATUS_ERROR_NOT_SUPPORTED},
    {HXMGT_DEVICE_NOT_FOUND, HBA_STATUS_ERROR_ILLEGAL_WWN},
    {HXMGT_BUFFER_TOO_SMALL, HBA_STATUS_ERROR_MORE_DATA},
};

}  // namespace

HBA_STATUS MapStatus(HX_STATUS status) {
    for (const StatusRow& row : kStatuses) {
        if (row.status == status) {
            return row.mapped;
        }
    }
    return HBA_STATUS_ERROR;
}

HBA_STATUS CheckCall(HBA_HANDLE handle, const void* record) {
    return MapStatus(properties::CheckQuery(handle, record));
}

}  // namespace hbaapi
