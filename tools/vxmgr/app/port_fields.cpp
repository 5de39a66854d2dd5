#include "vxmgr/app/port_fields.h"

#include <map>
#include <mutex>

#include "vxmgr/app/values.h"

namespace vxmgr {
namespace {

Fields<Port> KeysWith(unsigned shown) {
    const auto label = [shown](unsigned key, const char* text) {
        return shown & key & kPortLabels ? text : "";
    };
    const auto column = [shown](unsigned key, const char* text) {
        return shown & key & kPortColumns ? text : "";
    };
    // Widths: those of the columns where rows are printed as they come.
    std::vector<FieldRow<Port>> rows = {
        {"port", label(kPortIndex, "Port"), column(kPortIndex, "PORT"), kInteger, &Port::index},
        {"scsi_port", label(kScsiPort, "SCSI port"), column(kScsiPort, "SCSI"), kInteger.OrNull(),
         &Port::scsiPort},
        {"port_wwn", label(kPortName, "Port name"), column(kPortName, "PORT NAME"), kWwn.OrNull(),
         PortNameOf, "", 23},
        {"adapter_serial", label(kAdapterSerial, "Adapter serial"),
         column(kAdapterSerial, "ADAPTER"), kSerial.OrNull(), &Port::Serial, "", 14},
    };
    if ((shown & kOldSerialKey) != 0) {
        rows.push_back({kPortSerialAlias, std::identity()});
    }
    return rows;
}

}  // namespace

std::optional<Wwn> PortNameOf(const Port& port) {
    return port.port ? std::optional(Wwn::Of(port.port->portName)) : std::nullopt;
}

const Fields<Port>& PortKeys(unsigned shown) {
    static std::mutex lock;  // rows are also made on the threads of ports
    static std::map<unsigned, Fields<Port>> made;
    const std::lock_guard guard(lock);
    return made.try_emplace(shown, KeysWith(shown)).first->second;
}

const Fields<Port> kPortSerialAlias = {
    {"serial", "", kSerial.OrNull(), &Port::Serial, "the same as adapter_serial"}};

const Fields<Port> kPortStatus = {{"status", "Status", kText.OrNull().Quiet(),
                                   [](const Port& port) { return StatusValue(port.failure); },
                                   kPortStatusAbout}};

}  // namespace vxmgr
