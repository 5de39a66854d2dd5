// install, uninstall, start, stop.
#include <windows.h>

#include <cstring>
#include <memory>

#include "commands.h"
#include "common/console.h"
#include "flash_folder.h"
#include "port_rows.h"
#include "running_driver.h"
#include "service.h"

namespace vxemu {
namespace {

constexpr std::chrono::seconds kPatience{10};
constexpr const char* kDefaultProfile = "lab";
constexpr uint32_t kInvalidSignature = 577;
constexpr const char* kService = "the driver service";

void Check(Invocation& invocation, uint32_t error, const std::string& what) {
    if (error != ERROR_SUCCESS) {
        invocation.Fail(error, what);
    }
}

ServiceState Connect(Invocation& invocation, DriverService& service) {
    Check(invocation, service.Connect(true), kService);
    ServiceState state;
    Check(invocation, service.State(&state), kService);
    return state;
}

ExitCode Report(Invocation& invocation, ServiceState state) {
    invocation.Result() = kServiceFields.Make(state);
    return ExitCode::Done;
}

struct Started {
    std::string profile;
    ServiceState state = ServiceState::Running;
    std::unique_ptr<StatusReply> running{};  // null in a dry run
};

const Fields<Started> kStartFields = {
    {"profile", "Profile", kText, &Started::profile},
    {kServiceFields, &Started::state},
    {"ports", "Ports", kPortFields, [](const Started& s) { return PortsOf(s.running.get()); },
     "No ports."},
};

void Install(Invocation& invocation, DriverService& service) {
    bool changed = false;
    const uint32_t error = service.Install(&changed);
    if (error == ERROR_FILE_NOT_FOUND) {
        invocation.Fail(ExitCode::NotFound, DriverService::DriverPath() + " is not there",
                        "the driver file has to stand beside this program");
    }
    Check(invocation, error, kService);
    if (changed) {
        invocation.Changed();
    }
}

// Without a folder the adapters run all the same.
void PrepareFolder(Invocation& invocation, DriverService& service) {
    std::wstring folder;
    uint32_t error = MakeFlashFolder(&folder);
    if (error == ERROR_SUCCESS) {
        error = service.StoreFlashFolder(folder);
    } else {
        service.StoreFlashFolder({});
    }
    if (error != ERROR_SUCCESS) {
        const char* const hint = error == ERROR_INVALID_OWNER
                                     ? "it belongs to somebody who is no administrator: remove it"
                                     : "";
        invocation.Warn("no folder for the flash of the adapters (" +
                            console::SystemErrorText(error) +
                            "): what is written to it goes with the driver",
                        hint);
    }
}

// A driver that does not start says why with few codes; these are worth a sentence.
void FailStart(Invocation& invocation, uint32_t error) {
    switch (error) {
        case kInvalidSignature:
        case ERROR_DRIVER_BLOCKED:
            invocation.Fail(ExitCode::Refused, "the system refuses the driver's signature",
                            "on a test machine: sign vxemu.sys, `bcdedit /set testsigning on` "
                            "and restart");
        case ERROR_ALREADY_EXISTS:
            invocation.Fail(ExitCode::Refused,
                            "a SCSI port number of the profile belongs to a real adapter",
                            "choose other numbers with a profile of your own");
        default:
            invocation.Fail(error, "the driver did not start");
    }
}

void StopAndWait(Invocation& invocation, DriverService& service) {
    const uint32_t error = service.Stop();
    if (error != ERROR_SUCCESS && error != ERROR_SERVICE_CANNOT_ACCEPT_CTRL) {
        Check(invocation, error, "the driver did not stop");
    }
    ServiceState state;
    const uint32_t waited = service.WaitFor(ServiceState::Stopped, kPatience, &state);
    if (waited == ERROR_TIMEOUT) {
        invocation.Fail(ExitCode::Busy, "the driver stops once nobody uses it any more",
                        "a program still has an emulated port open");
    }
    Check(invocation, waited, kService);
    invocation.Changed();
}

// Whether the running adapters are those of the profile, as far as it names them: what has been
// changed since the start does not count.
bool RunsProfile(Invocation& invocation, const Profile& profile) {
    const auto running = RunningDriver(invocation, false).Status();
    bool same = std::strcmp(running->profileName, profile.name) == 0 &&
                running->portCount == profile.portCount;
    for (uint32_t index = 0; same && index < profile.portCount; ++index) {
        const PortProfile& port = profile.ports[index];
        same =
            running->ports[index].scsiPort == port.scsiPort &&
            std::memcmp(running->ports[index].portName, port.portName, sizeof port.portName) == 0;
    }
    return same;
}

ExitCode RunInstall(Invocation& invocation) {
    DriverService service;
    const ServiceState state = Connect(invocation, service);
    if (!invocation.DryRun()) {
        Install(invocation, service);
    }
    return Report(invocation, state == ServiceState::NotInstalled ? ServiceState::Stopped : state);
}

ExitCode RunUninstall(Invocation& invocation) {
    DriverService service;
    const ServiceState state = Connect(invocation, service);
    if (state != ServiceState::NotInstalled && !invocation.DryRun()) {
        if (state != ServiceState::Stopped) {
            StopAndWait(invocation, service);
        }
        Check(invocation, service.Uninstall(), kService);
        invocation.Changed();
    }
    return Report(invocation, ServiceState::NotInstalled);
}

ExitCode RunStart(Invocation& invocation) {
    const auto profile = std::make_unique<Profile>();
    RequireProfile(invocation, invocation.Given().Text("profile", kDefaultProfile), profile.get());
    DriverService service;
    const ServiceState before = Connect(invocation, service);
    if (before == ServiceState::Running) {
        if (!RunsProfile(invocation, *profile)) {
            invocation.Fail(ExitCode::Busy, "other emulated adapters are running",
                            "stop them first: `vxemu stop`");
        }
        invocation.Note("already running");
    } else if (!invocation.DryRun()) {
        Install(invocation, service);
        Check(invocation, service.StoreProfile(*profile), "the profile could not be stored");
        PrepareFolder(invocation, service);
        const uint32_t error = service.Start();
        if (error != ERROR_SUCCESS) {
            FailStart(invocation, error);
        }
        ServiceState state;
        Check(invocation, service.WaitFor(ServiceState::Running, kPatience, &state), kService);
        invocation.Changed();
    }
    Started started = {profile->name};
    if (invocation.DryRun()) {
        started.state = before;
    } else {
        if (invocation.Given().Has("fresh")) {
            RunningDriver(invocation, true)
                .Send(control::kFlashReset, PortSelector{kAnyPort}, "the flash");
            invocation.Changed();
        }
        started.running = RunningDriver(invocation, false).Status();
        WarnOfFlash(invocation, *started.running);
    }
    invocation.Result() = kStartFields.Make(started);
    return ExitCode::Done;
}

ExitCode RunStop(Invocation& invocation) {
    DriverService service;
    const ServiceState state = Connect(invocation, service);
    if (state == ServiceState::NotInstalled || state == ServiceState::Stopped) {
        invocation.Note("the emulated adapters do not run");
        return Report(invocation, state);
    }
    if (invocation.DryRun()) {
        return Report(invocation, state);
    }
    StopAndWait(invocation, service);
    return Report(invocation, ServiceState::Stopped);
}

constexpr Argument kStart[] = {
    TextOption("--profile", "P", "built-in profile or JSON file (lab)"),
    FlagOption("--fresh", "forget what was written to the flash of these adapters before"),
};

}  // namespace

CommandRows ServiceCommands() {
    static const Command kCommands[] = {
        {.path = "install",
         .risk = Risk::Reversible,
         .help = "register the driver service",
         .run = RunInstall,
         .example = "install",
         .result = ShapeOf<kServiceFields>},
        {.path = "uninstall",
         .risk = Risk::Reversible,
         .help = "stop and remove the driver service",
         .run = RunUninstall,
         .example = "uninstall",
         .result = ShapeOf<kServiceFields>},
        {.path = "start",
         .risk = Risk::Reversible,
         .help = "start the emulated adapters",
         .arguments = kStart,
         .run = RunStart,
         .example = "start --profile lab",
         .result = ShapeOf<kStartFields>},
        {.path = "stop",
         .risk = Risk::Reversible,
         .help = "stop the emulated adapters",
         .run = RunStop,
         .example = "stop",
         .result = ShapeOf<kServiceFields>},
    };
    return kCommands;
}

}  // namespace vxemu
