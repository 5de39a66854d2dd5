// The functions behind vxmgr's command table.
#pragma once

#include <span>

#include "common/command.h"

namespace vxmgr {

tools::ExitCode AdapterList(tools::Invocation& invocation);
tools::ExitCode AdapterShow(tools::Invocation& invocation);
tools::ExitCode PortList(tools::Invocation& invocation);
tools::ExitCode PortShow(tools::Invocation& invocation);

std::span<const tools::Argument> EventWatchArguments();
tools::ExitCode EventWatch(tools::Invocation& invocation);
tools::ExitCode EventTest(tools::Invocation& invocation);

tools::ExitCode SmartSanGet(tools::Invocation& invocation);
tools::ExitCode SmartSanOn(tools::Invocation& invocation);
tools::ExitCode SmartSanOff(tools::Invocation& invocation);

tools::ExitCode DriverShow(tools::Invocation& invocation);
std::span<const tools::Argument> ParameterNameArguments();
tools::ExitCode DriverParameterGet(tools::Invocation& invocation);
std::span<const tools::Argument> ParameterSettingArguments();
tools::ExitCode DriverParameterSet(tools::Invocation& invocation);

}  // namespace vxmgr
