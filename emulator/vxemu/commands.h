// The commands of vxemu, by file.
#pragma once

#include "common/invocation.h"

namespace vxemu {

// service_commands.cpp
tools::ExitCode RunInstall(tools::Invocation& invocation);
tools::ExitCode RunUninstall(tools::Invocation& invocation);
tools::ExitCode RunStart(tools::Invocation& invocation);
tools::ExitCode RunStop(tools::Invocation& invocation);

// status_command.cpp
tools::ExitCode RunStatus(tools::Invocation& invocation);

// profile_commands.cpp
tools::ExitCode RunProfileList(tools::Invocation& invocation);
tools::ExitCode RunProfileShow(tools::Invocation& invocation);
tools::ExitCode RunProfileValidate(tools::Invocation& invocation);

// fault_commands.cpp
tools::ExitCode RunFaultAdd(tools::Invocation& invocation);
tools::ExitCode RunFaultList(tools::Invocation& invocation);
tools::ExitCode RunFaultClear(tools::Invocation& invocation);

// port_commands.cpp
tools::ExitCode RunReset(tools::Invocation& invocation);
tools::ExitCode RunEvent(tools::Invocation& invocation);
tools::ExitCode RunLink(tools::Invocation& invocation);
tools::ExitCode RunAdapterSet(tools::Invocation& invocation);
tools::ExitCode RunPortSet(tools::Invocation& invocation);

// target_commands.cpp
tools::ExitCode RunTargetAdd(tools::Invocation& invocation);
tools::ExitCode RunTargetRemove(tools::Invocation& invocation);
tools::ExitCode RunTargetSet(tools::Invocation& invocation);
tools::ExitCode RunLunAdd(tools::Invocation& invocation);
tools::ExitCode RunLunRemove(tools::Invocation& invocation);
tools::ExitCode RunLunSet(tools::Invocation& invocation);

// flash_commands.cpp
tools::ExitCode RunFlashShow(tools::Invocation& invocation);
tools::ExitCode RunFlashDump(tools::Invocation& invocation);
tools::ExitCode RunFlashImage(tools::Invocation& invocation);
tools::ExitCode RunFlashCorrupt(tools::Invocation& invocation);
tools::ExitCode RunFlashPowerFail(tools::Invocation& invocation);
tools::ExitCode RunLockdown(tools::Invocation& invocation);
tools::ExitCode RunBootFromSan(tools::Invocation& invocation);

}  // namespace vxemu
