#include <algorithm>

#include "vxmgr/app/values.h"
#include "vxmgr/ports/records.h"

namespace vxmgr {
namespace {

using tools::Record;
using tools::Tone;
using tools::Value;

// The first port whose node record could be read speaks for the adapter.
const Port& Speaker(const Adapter& adapter) {
    for (const Port* port : adapter.ports) {
        if (port->node) {
            return *port;
        }
    }
    return adapter.First();
}

template <size_t size>
Value NodeText(const Port& port, const char (HX_NODE_PROPERTY::*field)[size],
               size_t meaningful = size) {
    return port.node ? FieldValue((*port.node).*field, meaningful) : Value();
}

HX_STATUS FailureOf(const Adapter& adapter) {
    for (const Port* port : adapter.ports) {
        if (port->failure != HXMGT_SUCCESS) {
            return port->failure;
        }
    }
    return HXMGT_SUCCESS;
}

Value OnlinePorts(const Adapter& adapter) {
    const auto online =
        std::count_if(adapter.ports.begin(), adapter.ports.end(), [](const Port* port) {
            return port->port && port->port->state == HX_PORT_STATE_ONLINE &&
                   !port->disabled.value_or(false);
        });
    const auto all = static_cast<ptrdiff_t>(adapter.ports.size());
    return Value::Number(static_cast<uint64_t>(online))
        .Shown(std::to_string(online) + " of " + std::to_string(all))
        .In(online == all ? Tone::Good
            : online == 0 ? Tone::Bad
                          : Tone::Warning);
}

// Every key of the summary; the detail puts its own groups behind it.
Record Common(const Adapter& adapter) {
    const Port& port = Speaker(adapter);
    const HX_CHIP_PROPERTY chip = port.chip.value_or(HX_CHIP_PROPERTY{});
    const auto hex = [&](uint32_t number) { return port.chip ? HexValue(number, 4) : Value(); };
    Record record;
    record.Add("index", "", Value::Number(adapter.index), "ADAPTER");
    record.Add("serial", "Serial number", Value::Serial(port.Serial()), "SERIAL");
    record.Add("manufacturer", "Manufacturer", NodeText(port, &HX_NODE_PROPERTY::manufacturer));
    record.Add("model", "Model", NodeText(port, &HX_NODE_PROPERTY::model), "MODEL");
    record.Add("model_description", "Description",
               NodeText(port, &HX_NODE_PROPERTY::modelDescription), "DESCRIPTION");
    record.Add("vendor_id", "PCI vendor ID", hex(chip.vendorId));
    record.Add("device_id", "PCI device ID", hex(chip.deviceId), "DEVICE");
    record.Add("subsystem_vendor_id", "Subsystem vendor ID", hex(chip.subsystemVendorId));
    record.Add("subsystem_device_id", "Subsystem device ID", hex(chip.subsystemDeviceId));
    record.Add("firmware", "Firmware", NodeText(port, &HX_NODE_PROPERTY::firmwareVersion),
               "FIRMWARE");
    record.Add("driver", "Driver", NodeText(port, &HX_NODE_PROPERTY::driverVersion), "DRIVER");
    record.Add("driver_service", "Driver service", Value::TextOrNull(port.driverService));
    record.Add("option_rom", "Option ROM", NodeText(port, &HX_NODE_PROPERTY::optionRomVersion, 4),
               "OPTION ROM");
    record.Add("smartsan", "SmartSAN", SmartSanValue(port));
    record.Add("port_count", "", Value::Number(adapter.ports.size()));
    record.Add("ports_online", "Ports online", OnlinePorts(adapter), "ONLINE");
    const HX_STATUS failure = FailureOf(adapter);
    record.Add("status", failure == HXMGT_SUCCESS ? "" : "Status", StatusValue(failure));
    return record;
}

Record PortsOf(const Adapter& adapter, Record record) {
    std::vector<Record> rows;
    for (const Port* port : adapter.ports) {
        rows.push_back(PortSummary(*port, false));
    }
    record.AddList("ports", "Ports", tools::ListLayout::Table, PortSummary(Port(), false), "",
                   std::move(rows));
    return record;
}

}  // namespace

Record AdapterSummary(const Adapter& adapter) {
    return Common(adapter);
}

Record AdapterDetail(const Adapter& adapter) {
    Record record = PortsOf(adapter, Common(adapter));
    record.title = "Adapter " + std::to_string(adapter.index);
    return record;
}

}  // namespace vxmgr
