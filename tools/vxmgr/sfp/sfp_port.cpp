#include "vxmgr/sfp/sfp_port.h"

#include "vxmgr/app/port_walk.h"

namespace vxmgr {
namespace {

bool IsUnsupported(HX_STATUS status) {
    return ExitCodeOf(status) == ExitCode::NotSupported;
}

struct FoundModule {
    Device device;
    SfpModule module;
};

HX_STATUS FindModule(PortVisit& visit, FoundModule* found) {
    visit.query = "the transceiver cannot be read";
    const HX_STATUS status = ReadSfpModule(visit.Handle(), &found->module);
    found->device = std::move(visit.device);
    return status;
}

}  // namespace

const SfpPage& SfpPageOf(const std::string& name) {
    for (const SfpPage& page : kSfpPages) {
        if (name == page.name) {
            return page;
        }
    }
    return kSfpPages[0];
}

HX_STATUS ReadSfp(uint32_t handle, const SfpPage& page, size_t offset, std::span<uint8_t> bytes,
                  uint16_t* deviceStatus) {
    return HXReadSFPData(handle, 0, page.device, bytes.data(), static_cast<uint16_t>(bytes.size()),
                         static_cast<uint16_t>(offset), kNoSfpOptions, deviceStatus);
}

HX_STATUS ReadSfpModule(uint32_t handle, SfpModule* module) {
    *module = {};
    const auto read = [&](const SfpPage& page, auto& record) {
        return ReadSfp(handle, page, 0, {reinterpret_cast<uint8_t*>(&record), sizeof record});
    };
    const HX_STATUS status = read(kSfpPages[0], module->identity);
    if (status != HXMGT_SUCCESS || !module->Reachable()) {
        return status;
    }
    SfpDiagnostics diagnostics;
    module->diagnosticsStatus = read(kSfpPages[1], diagnostics);
    if (module->diagnosticsStatus == HXMGT_SUCCESS) {
        module->diagnostics = diagnostics;
    }
    return HXMGT_SUCCESS;
}

ExitCode ForEachSfpModule(Invocation& invocation, std::vector<Port>& ports,
                          const UseSfpModule& use) {
    const bool chosen = invocation.Given().Has("port") || invocation.Given().Has("adapter");
    std::vector<const Port*> counted;
    for (auto& one :
         ForEachPort<FoundModule>(invocation, SelectPorts(invocation, ports), FindModule)) {
        Port& port = *one.port;
        if (one.status == HXMGT_SUCCESS) {
            one.status = use(port, one.answer.device, one.answer.module, &one.query);
        }
        if (IsUnsupported(one.status) && !chosen && port.answers) {
            invocation.Note("port " + std::to_string(port.index) +
                            " is left out: its driver does not reach the transceiver");
            continue;
        }
        if (one.status != HXMGT_SUCCESS) {
            port.failure = one.status;
            port.failedQuery = one.query;
        }
        counted.push_back(&port);
    }
    return ReportFailures(invocation, counted);
}

}  // namespace vxmgr
