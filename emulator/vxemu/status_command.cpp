// status.
#include <windows.h>

#include "commands.h"
#include "port_rows.h"
#include "running_driver.h"
#include "service.h"

namespace vxemu {

using tools::ExitCode;
using tools::Value;

ExitCode RunStatus(tools::Invocation& invocation) {
    DriverService service;
    uint32_t error = service.Connect(false);
    ServiceState state = ServiceState::NotInstalled;
    if (error == ERROR_SUCCESS) {
        error = service.State(&state);
    }
    if (error != ERROR_SUCCESS) {
        invocation.Fail(error, "the driver service");
    }
    tools::Record& result = invocation.Result();
    result.Add("service", "Service", Value::Text(NameOf(state)));
    if (state != ServiceState::Running) {
        result.Add("profile", "", Value());
        AddPortList({}, result);
        return ExitCode::Done;
    }
    const auto status = RunningDriver(invocation, false).Status();
    result.Add("profile", "Profile", Value::Text(status->profileName));
    result.Add("uptime_ms", "Running for",
               Value::Number(status->uptime).Shown(std::to_string(status->uptime / 1000) + " s"));
    result.Add("adapters", "Adapters", Value::Number(status->adapterCount));
    result.Add("fault_rules", "Fault rules", Value::Number(status->faultCount));
    AddPortList(*status, result);
    return ExitCode::Done;
}

}  // namespace vxemu
