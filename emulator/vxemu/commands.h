// The rows of the command table, by the file that has the commands.
#pragma once

#include "common/command.h"

namespace vxemu {

inline constexpr tools::Argument kPortArgument{
    .name = "PORT", .help = "port of the emulated adapters: scsi:N or N", .required = true};

tools::CommandRows ServiceCommands();
tools::CommandRows StatusCommands();
tools::CommandRows PortCommands();
tools::CommandRows ProfileCommands();
tools::CommandRows FaultCommands();
tools::CommandRows TargetCommands();
tools::CommandRows CounterCommands();
tools::CommandRows TraceCommands();
tools::CommandRows FlashCommands();

}  // namespace vxemu
