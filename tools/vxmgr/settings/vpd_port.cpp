#include "vxmgr/settings/vpd_port.h"

#include <algorithm>

namespace vxmgr {
namespace {

constexpr uint32_t kUsualVpdBytes = 4096;
constexpr uint32_t kWholeKib = 1023;  // the library writes the last piece of a long region whole

}  // namespace

HX_STATUS ReadVpd(uint32_t handle, std::vector<uint8_t>* bytes) {
    uint32_t size = kUsualVpdBytes;
    HX_STATUS status = HXMGT_BUFFER_TOO_SMALL;
    for (int i = 0; i < 2 && status == HXMGT_BUFFER_TOO_SMALL && size <= kMostVpdBytes; ++i) {
        bytes->assign((size + kWholeKib) & ~size_t{kWholeKib}, 0);
        status = HXGetVpd(handle, 0, bytes->data(), &size);
    }
    bytes->resize(status == HXMGT_SUCCESS ? std::min<size_t>(size, bytes->size()) : 0);
    return status;
}

}  // namespace vxmgr
