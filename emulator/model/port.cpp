#include "model/port.h"

#include "model/event_codes.h"

namespace vxemu {

void SetLink(Port& port, bool up) {
    if (port.LinkUp() == up) {
        return;
    }
    port.profile->state = up ? PortState::Online : PortState::LinkDown;
    port.linkLosses += up ? 0 : 1;
    port.events.Add({up ? event_code::kLinkUp : event_code::kLinkDown, {}});
}

void ResetPort(Port& port) {
    port.profile->state = port.initialState;
    port.events.SetDelivery(false);
}

}  // namespace vxemu
