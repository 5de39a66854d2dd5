#include "vxmgr/app/port_reader.h"

#include <windows.h>

namespace vxmgr {
namespace {

bool SaysUnsupported(HX_STATUS status) {
    return ExitCodeOf(status) == ExitCode::NotSupported;
}

// Reads one port's records through its handle and keeps the first failure that is more than a
// query the driver does not know.
class PortReader {
  public:
    PortReader(PortTask& task, bool verbose, Port& port, uint32_t handle)
        : task_(task), verbose_(verbose), port_(port), handle_(handle) {}

    void ReadAll() {
        port_.node = Query("node properties", HXGetHbaDeviceNodeProperty);
        Succeeded(ReadPortProperty(handle_, port_), "port properties");
        port_.chip = Query("chip properties", HXGetHbaDeviceChipProperty);
        port_.driver = Query("driver properties", HXGetHbaDeviceDriverProperty);
        port_.firmware = Query("firmware properties", HXGetHbaDeviceFirmwareProperty);
        ReadSwitches();
    }

  private:
    bool Succeeded(HX_STATUS status, const char* query) {
        task_.Answered();
        if (status != HXMGT_SUCCESS && verbose_) {
            task_.Tell({Severity::Info,
                        std::string(query) + ": " + StatusMessage(status) + " (" +
                            StatusText(status) + ")",
                        {},
                        port_.Object(),
                        {}});
        }
        if (status != HXMGT_SUCCESS && !SaysUnsupported(status) && port_.failure == HXMGT_SUCCESS) {
            port_.failure = status;
            port_.failedQuery = query;
        }
        return status == HXMGT_SUCCESS;
    }

    template <typename Properties>
    std::optional<Properties> Query(const char* query,
                                    HX_STATUS (*function)(uint32_t, Properties*)) {
        Properties properties{};
        if (!Succeeded(function(handle_, &properties), query)) {
            return std::nullopt;
        }
        return properties;
    }

    void ReadSwitches() {
        Succeeded(ReadPortDisabled(handle_, port_), "port disable state");
        uint8_t enabled = 0;
        if (Succeeded(HXGetSmartSANStatusFC(handle_, &enabled), "SmartSAN switch")) {
            port_.smartSan = enabled != 0;
        }
    }

    PortTask& task_;
    const bool verbose_;
    Port& port_;
    const uint32_t handle_;
};

}  // namespace

HX_STATUS ReadPortProperty(uint32_t handle, Port& port) {
    HX_PORT_PROPERTY properties{};
    properties.state = HX_PORT_STATE_ONLINE;  // older drivers report only a link that is down
    HX_STATUS status = HXGetHbaDevicePortPropertyV2(handle, 0, &properties);
    port.hasSecondVersion = status == HXMGT_SUCCESS && port.IsCurrentGeneration();
    if (status == HXMGT_INVALID_SUBCODE) {
        status = HXGetHbaDevicePortPropertyV1(handle, 0, &properties);
    }
    if (status == HXMGT_SUCCESS) {
        port.port = properties;
    }
    return status;
}

HX_STATUS ReadPortDisabled(uint32_t handle, Port& port) {
    const HX_STATUS status = HXGetHbaPortDisableInfo(handle);
    if (status == HXMGT_SUCCESS || status == HXMGT_PORT_DISABLED) {
        port.disabled = status == HXMGT_PORT_DISABLED;
        return HXMGT_SUCCESS;
    }
    return status;
}

bool ReadPort(PortTask& task, const ReadingOptions& options, Port& port) {
    Device device;
    const HX_STATUS status = port.Open(options.tracePath, &device);
    if (status != HXMGT_SUCCESS && device.IsOpen()) {
        throw CommandError{
            ExitCodeOf(status),
            {Severity::Error, "--trace " + options.givenTrace + ": " + StatusMessage(status),
             HintOf(status), port.Object(), status}};
    }
    task.Answered();
    if (status != HXMGT_SUCCESS) {
        port.answers = false;
        port.failure = status;
        return false;
    }
    port.driverVersionCode = device.Info().dwDriverVersion;
    PortReader(task, options.verbose, port, device.Handle()).ReadAll();
    return true;
}

bool IsOneOfUs(const Port& port) {
    return port.failure != ERROR_FILE_NOT_FOUND && IsKorvexAdapter(*port.scsiPort, 1) != nullptr;
}

}  // namespace vxmgr
