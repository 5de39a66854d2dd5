// The commands of vxemu, by file, and the shapes of their results.
#pragma once

#include "common/fields.h"
#include "common/invocation.h"

namespace vxemu {

// service_commands.cpp
tools::ExitCode RunInstall(tools::Invocation& invocation);
tools::ExitCode RunUninstall(tools::Invocation& invocation);
tools::ExitCode RunStart(tools::Invocation& invocation);
tools::ExitCode RunStop(tools::Invocation& invocation);
tools::Shape ServiceShape();
tools::Shape StartShape();

// status_command.cpp
tools::ExitCode RunStatus(tools::Invocation& invocation);
tools::Shape StatusShape();

// profile_commands.cpp
tools::ExitCode RunProfileList(tools::Invocation& invocation);
tools::ExitCode RunProfileShow(tools::Invocation& invocation);
tools::ExitCode RunProfileValidate(tools::Invocation& invocation);
tools::Shape ProfileListShape();
tools::Shape ProfileShape();
tools::Shape ProfileValidShape();

// fault_commands.cpp
tools::ExitCode RunFaultAdd(tools::Invocation& invocation);
tools::ExitCode RunFaultList(tools::Invocation& invocation);
tools::ExitCode RunFaultClear(tools::Invocation& invocation);
tools::Shape FaultShape();
tools::Shape FaultListShape();
tools::Shape FaultClearShape();

// port_commands.cpp
tools::ExitCode RunReset(tools::Invocation& invocation);
tools::ExitCode RunEvent(tools::Invocation& invocation);
tools::ExitCode RunLink(tools::Invocation& invocation);
tools::ExitCode RunAdapterSet(tools::Invocation& invocation);
tools::ExitCode RunPortSet(tools::Invocation& invocation);
tools::Shape PortShape();
tools::Shape EventShape();
tools::Shape LinkShape();
tools::Shape AdapterSetShape();
tools::Shape PortSetShape();

// target_commands.cpp
tools::ExitCode RunTargetAdd(tools::Invocation& invocation);
tools::ExitCode RunTargetRemove(tools::Invocation& invocation);
tools::ExitCode RunTargetSet(tools::Invocation& invocation);
tools::ExitCode RunLunAdd(tools::Invocation& invocation);
tools::ExitCode RunLunRemove(tools::Invocation& invocation);
tools::ExitCode RunLunSet(tools::Invocation& invocation);
tools::Shape TargetShape();
tools::Shape TargetSetShape();
tools::Shape LunShape();
tools::Shape LunSetShape();

// flash_commands.cpp
tools::ExitCode RunFlashShow(tools::Invocation& invocation);
tools::ExitCode RunFlashDump(tools::Invocation& invocation);
tools::ExitCode RunFlashImage(tools::Invocation& invocation);
tools::ExitCode RunFlashCorrupt(tools::Invocation& invocation);
tools::ExitCode RunFlashPowerFail(tools::Invocation& invocation);
tools::ExitCode RunLockdown(tools::Invocation& invocation);
tools::ExitCode RunBootFromSan(tools::Invocation& invocation);
tools::Shape FlashShowShape();
tools::Shape FlashSavedShape();
tools::Shape FlashCorruptShape();
tools::Shape PowerFailShape();
tools::Shape LockdownShape();
tools::Shape BootFromSanShape();

}  // namespace vxemu
