#include "persist/lun_mask_target.h"
#include "persist/persist.h"
#include "properties/generation.h"

namespace persist {
namespace {

HX_STATUS Check(uint32_t handle, const void* address, const uint8_t* mask) {
    const HX_STATUS status = properties::CheckQuery(handle, address);
    return status == HXMGT_SUCCESS && mask == nullptr ? HX_STATUS{HXMGT_INVALID_PARAMETER} : status;
}

HX_STATUS Get(uint32_t handle, const MaskTarget& target, bool fromRegistry, uint8_t* mask,
              uint32_t maskSize) {
    return fromRegistry ? ReadMaskFromStore(handle, target, mask, maskSize)
                        : ReadLiveMask(handle, target, mask, maskSize);
}

// The store is changed by name only.
bool IsName(const DESTINATIONADDRESS& address) {
    return address.type == HX_ADDRESS_NODE_NAME || address.type == HX_ADDRESS_PORT_NAME;
}

}  // namespace

HX_STATUS GetLunMask(uint32_t handle, const HX_BUS_TARGET_LUN* address, bool fromRegistry,
                     uint8_t* mask, uint32_t maskSize) {
    const HX_STATUS status = Check(handle, address, mask);
    return status == HXMGT_SUCCESS
               ? Get(handle, ByBusAndTarget(*address), fromRegistry, mask, maskSize)
               : status;
}

HX_STATUS GetLunMaskFc(uint32_t handle, const DESTINATIONADDRESS* address, bool fromRegistry,
                       uint8_t* mask, uint32_t maskSize) {
    const HX_STATUS status = Check(handle, address, mask);
    return status == HXMGT_SUCCESS ? Get(handle, ByAddress(*address), fromRegistry, mask, maskSize)
                                   : status;
}

HX_STATUS UpdateLunMask(uint32_t handle, const HX_BUS_TARGET_LUN* address, bool toRegistry,
                        const uint8_t* mask, uint32_t maskSize) {
    if (const HX_STATUS status = Check(handle, address, mask); status != HXMGT_SUCCESS) {
        return status;
    }
    return toRegistry ? HX_STATUS{HXMGT_NOT_SUPPORTED}
                      : WriteLiveMask(handle, ByBusAndTarget(*address), mask, maskSize);
}

HX_STATUS UpdateLunMaskFc(uint32_t handle, const DESTINATIONADDRESS* address, bool toRegistry,
                          const uint8_t* mask, uint32_t maskSize) {
    if (const HX_STATUS status = Check(handle, address, mask); status != HXMGT_SUCCESS) {
        return status;
    }
    const MaskTarget target = ByAddress(*address);
    if (!toRegistry) {
        return WriteLiveMask(handle, target, mask, maskSize);
    }
    return IsName(*address) ? WriteMaskToStore(handle, target, mask, maskSize)
                            : HX_STATUS{HXMGT_NOT_SUPPORTED};
}

}  // namespace persist
