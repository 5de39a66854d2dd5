// The rows of the command table, by the file that has the commands.
#pragma once

#include "vocabulary.h"

namespace vxemu {

inline constexpr Argument kPortArgument{
    .name = "PORT", .help = "port of the emulated adapters: scsi:N or N", .required = true};

CommandRows ServiceCommands();
CommandRows StatusCommands();
CommandRows PortCommands();
CommandRows AdapterCommands();
CommandRows ProfileCommands();
CommandRows FaultCommands();
CommandRows TargetCommands();
CommandRows CounterCommands();
CommandRows TraceCommands();
CommandRows FlashCommands();

}  // namespace vxemu
