#include "vxmgr/ports/remote_ports.h"

#include <algorithm>
#include <cstring>

#include "formats/loop_address.h"
#include "vxmgr/app/port_answers.h"
#include "vxmgr/app/read_list.h"
#include "vxmgr/targets/target_known.h"

namespace vxmgr {
namespace {

// What an older driver has to say of a remote port.
RemotePort BriefPort(const HX_DEVICE_RECORD& device) {
    RemotePort port;
    port.brief = true;
    std::memcpy(port.record.nodeName, device.nodeName, sizeof port.record.nodeName);
    std::memcpy(port.record.portName, device.portName, sizeof port.record.portName);
    std::memcpy(port.record.portId, device.portId, sizeof port.record.portId);
    port.record.roles =
        static_cast<uint16_t>(device.roleAndState & (HX_ROLE_FCP_TARGET | HX_ROLE_FCP_INITIATOR));
    port.record.bus = device.bus;
    port.record.target = device.target;
    port.record.loopId = kNoLoopId;
    // Longer names are cut, as newer drivers do.
    std::memcpy(port.record.symbolicName, device.symbolicName, sizeof port.record.symbolicName - 1);
    return port;
}

HX_STATUS ReadPorts(PortVisit& visit, std::vector<RemotePort>* ports) {
    visit.query = "remote ports";
    std::vector<HX_REMOTE_PORT> records;
    HX_STATUS status = ReadList<HX_REMOTE_PORT>(
        [&](HX_REMOTE_PORT* list, uint32_t* count) {
            return HXGetRemotePortInfo(visit.Handle(), list, count);
        },
        &records);
    for (const HX_REMOTE_PORT& record : records) {
        ports->push_back({record});
    }
    if (CannotTell(status)) {
        visit.query = "port database";
        visit.task.Answered();
        std::vector<HX_DEVICE_RECORD> devices;
        status = ReadPortDatabase(visit.Handle(), &devices);
        for (const HX_DEVICE_RECORD& device : devices) {
            ports->push_back(BriefPort(device));
        }
    }
    return status;
}

HX_STATUS AddSecurity(PortVisit& visit, std::vector<RemotePort>* ports) {
    visit.query = "secured ports";
    std::vector<HX_SECURE_PORT> secured;
    const HX_STATUS status = ReadSecuredPorts(visit.Handle(), &secured);
    for (RemotePort& port : *ports) {
        for (const HX_SECURE_PORT& one : secured) {
            if (std::memcmp(one.portName, port.record.portName, sizeof one.portName) == 0) {
                port.security = one;
            }
        }
    }
    return status;
}

// On the port's own loop.
uint8_t LoopAddressOf(const HX_REMOTE_PORT& record) {
    return record.loopId != kNoLoopId ? formats::LoopAddressOf(record.loopId) : record.portId[2];
}

// The map begins with the port itself.
HX_STATUS AddLoopPositions(PortVisit& visit, std::vector<RemotePort>* ports) {
    visit.query = "loop map";
    HX_POSITIONAL_MAP map{};
    const HX_STATUS status = HXGetPositionalMap(visit.Handle(), &map);
    const size_t count = std::min<size_t>(map.count, sizeof map.alPa);
    for (RemotePort& port : *ports) {
        for (uint32_t i = 1; status == HXMGT_SUCCESS && i < count; ++i) {
            if (map.alPa[i] == LoopAddressOf(port.record)) {
                port.loopPosition = i;
            }
        }
    }
    return status;
}

}  // namespace

HX_STATUS ReadSecuredPorts(uint32_t handle, std::vector<HX_SECURE_PORT>* secured) {
    return ReadList<HX_SECURE_PORT>(
        [handle](HX_SECURE_PORT* list, uint32_t* count) {
            return HXGetSecurePortInfo(handle, list, count);
        },
        secured);
}

HX_STATUS ReadRemotePorts(PortVisit& visit, std::vector<RemotePort>* ports) {
    HX_STATUS status = ReadPorts(visit, ports);
    for (const auto add : {AddSecurity, AddLoopPositions}) {
        if (status != HXMGT_SUCCESS) {
            return status;
        }
        visit.task.Answered();
        status = add(visit, ports);
        status = CannotTell(status) ? HX_STATUS{HXMGT_SUCCESS} : status;
    }
    return status;
}

}  // namespace vxmgr
