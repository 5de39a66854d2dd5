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
        ReadPortProperty();
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

    void ReadPortProperty() {
        HX_PORT_PROPERTY properties{};
        properties.state = HX_PORT_STATE_ONLINE;  // older drivers report only a link that is down
        HX_STATUS status = HXGetHbaDevicePortPropertyV2(handle_, 0, &properties);
        port_.hasSecondVersion = status == HXMGT_SUCCESS && port_.IsCurrentGeneration();
        if (status == HXMGT_INVALID_SUBCODE) {
            status = HXGetHbaDevicePortPropertyV1(handle_, 0, &properties);
        }
        if (Succeeded(status, "port properties")) {
            port_.port = properties;
        }
    }

    void ReadSwitches() {
        const HX_STATUS status = HXGetHbaPortDisableInfo(handle_);
        if (status == HXMGT_PORT_DISABLED || Succeeded(status, "port disable state")) {
            port_.disabled = status == HXMGT_PORT_DISABLED;
        }
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
