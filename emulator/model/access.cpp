#include "model/access.h"

#include <cstring>

#include "model/handlers.h"
#include "transport/ext_ioctl.h"

namespace vxemu {

Reach ReachOf(const uint8_t* buffer, uint32_t inputLength) {
    transport::SrbIoControl srb;
    if (inputLength < sizeof srb) {
        return Reach::Port;
    }
    std::memcpy(&srb, buffer, sizeof srb);
    transport::ExtRequest request = {};
    if (inputLength >= sizeof request) {
        std::memcpy(&request, buffer, sizeof request);
    }
    return StaysWithinPort(srb.controlCode, request.ext.subCode) ? Reach::Port : Reach::Model;
}

}  // namespace vxemu
