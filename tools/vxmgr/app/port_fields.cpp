#include "vxmgr/app/port_fields.h"

#include <map>

namespace vxmgr {
namespace {

std::optional<tools::Wwn> PortNameOf(const Port& port) {
    return port.port ? std::optional(tools::Wwn::Of(port.port->portName)) : std::nullopt;
}

tools::Fields<Port> KeysWith(unsigned shown) {
    const auto seen = [shown](PortKey key, const char* text) { return shown & key ? text : ""; };
    return {
        {"port", seen(kPortIndex, "Port"), seen(kPortIndex, "PORT"), tools::kInteger, &Port::index},
        {"scsi_port", seen(kScsiPort, "SCSI port"), seen(kScsiPort, "SCSI"),
         tools::kInteger.OrNull(), &Port::scsiPort},
        {"port_wwn", seen(kPortName, "Port name"), seen(kPortName, "PORT NAME"),
         tools::kWwn.OrNull(), PortNameOf},
        {"adapter_serial", seen(kAdapterSerial, "Adapter serial"), seen(kAdapterSerial, "ADAPTER"),
         tools::kSerial.OrNull(), &Port::Serial},
    };
}

}  // namespace

const tools::Fields<Port>& PortKeys(unsigned shown) {
    static std::map<unsigned, tools::Fields<Port>> made;
    return made.try_emplace(shown, KeysWith(shown)).first->second;
}

void AddPortKeys(tools::Record& record, const Port& port, unsigned shown) {
    PortKeys(shown).AddTo(port, record);
}

}  // namespace vxmgr
