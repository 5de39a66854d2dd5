// status.
#include <windows.h>

#include "commands.h"
#include "port_rows.h"
#include "running_driver.h"
#include "service.h"

namespace vxemu {
namespace {

struct Status {
    ServiceState state = ServiceState::NotInstalled;
    std::unique_ptr<StatusReply> running;  // null unless the service runs
};

// A number of the running driver, or nothing.
template <auto Member>
std::optional<uint64_t> Count(const Status& status) {
    return status.running != nullptr ? std::optional<uint64_t>((*status.running).*Member)
                                     : std::nullopt;
}

Value Uptime(const Status& status) {
    const auto uptime = Count<&StatusReply::uptime>(status);
    return uptime ? Value::Number(*uptime).Shown(std::to_string(*uptime / 1000) + " s") : Value();
}

const Fields<Status> kStatusFields = {
    {kServiceFields, &Status::state},
    {"profile", "Profile", kText.OrNull(),
     [](const Status& s) {
         return s.running != nullptr ? std::string(s.running->profileName) : std::string();
     }},
    {"uptime_ms", "Running for", kCounter.OrAbsent(), Uptime},
    {"adapters", "Adapters", kInteger.OrAbsent(), Count<&StatusReply::adapterCount>},
    {"fault_rules", "Fault rules", kInteger.OrAbsent(), Count<&StatusReply::faultCount>},
    {"ports", "Ports", kPortFields, [](const Status& s) { return PortsOf(s.running.get()); },
     "No ports."},
};

ExitCode RunStatus(Invocation& invocation) {
    DriverService service;
    Status status;
    uint32_t error = service.Connect(false);
    if (error == ERROR_SUCCESS) {
        error = service.State(&status.state);
    }
    if (error != ERROR_SUCCESS) {
        invocation.Fail(error, "the driver service");
    }
    if (status.state == ServiceState::Running) {
        status.running = RunningDriver(invocation, false).Status();
        WarnOfFlash(invocation, *status.running);
    }
    invocation.Result() = kStatusFields.Make(status);
    return ExitCode::Done;
}

}  // namespace

CommandRows StatusCommands() {
    static const Command kCommands[] = {
        {.path = "status",
         .help = "what runs, and what each port has served",
         .run = RunStatus,
         .example = "status --json",
         .result = ShapeOf<kStatusFields>},
    };
    return kCommands;
}

}  // namespace vxemu
