#include "model/port.h"

#include "model/event_codes.h"
#include "model/fabric/fabric.h"
#include "model/health/scm.h"
#include "model/health/serdes.h"

namespace vxemu {

void SetLink(Port& port, bool up) {
    if (port.LinkUp() == up) {
        return;
    }
    port.profile->state = up ? PortState::Online : PortState::LinkDown;
    NoteLink(port);
    HX_PORT_STATISTICS_V2& counted = port.counted;
    if (up) {
        ++counted.flogis;
    } else {
        ++counted.port.linkFailures;
        ++counted.port.lossesOfSync;
        ++counted.port.lossesOfSignal;
        ++port.privateCounts.counted.linkDowns;
    }
    port.events.Add({up ? event_code::kLinkUp : event_code::kLinkDown, {}});
}

void NoteLink(Port& port) {
    port.linkSince = port.fabric->host.Now();
    port.linkUps += port.LinkUp() ? 1 : 0;
    LookAtThrottle(port);
}

void ResetPort(Port& port) {
    if (port.profile->state != port.initialState) {
        port.profile->state = port.initialState;
        NoteLink(port);
    }
    StartSignals(port);
    port.events.SetDelivery(false);
}

}  // namespace vxemu
