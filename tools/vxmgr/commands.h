// The rows of the command table, by the file that has the commands.
#pragma once

#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

CommandRows AdapterAndPortCommands();
CommandRows LocateCommands();
CommandRows StatsCommands();
CommandRows DatabaseCommands();
CommandRows LockdownCommands();
CommandRows EventCommands();
CommandRows SmartsanCommands();
CommandRows DriverCommands();

CommandRows TargetCommands();
CommandRows TargetSpeedCommands();
CommandRows QosCommands();
CommandRows MapCommands();

CommandRows BindListCommands();
CommandRows BindChangeCommands();
CommandRows BindTransferCommands();
CommandRows BindStoreCommands();
CommandRows LunmaskCommands();
CommandRows LunmaskTransferCommands();

CommandRows FwShowCommands();
CommandRows FwInspectCommands();
CommandRows FwUpdateCommands();
CommandRows FwActivateCommands();
CommandRows FwRestoreCommands();

CommandRows FlashLayoutCommands();
CommandRows FlashReadCommands();
CommandRows FlashWriteCommands();
CommandRows FlashLockCommands();

CommandRows NvramCommands();
CommandRows NvramChangeCommands();
CommandRows NvramActivateCommands();
CommandRows NvramTransferCommands();
CommandRows VpdCommands();

CommandRows SfpCommands();
CommandRows SfpSerdesCommands();
CommandRows SfpWatchCommands();
CommandRows SfpChangeCommands();

CommandRows DiagRunCommands();
CommandRows DiagCommands();
CommandRows RegisterCommands();
CommandRows DumpCommands();

CommandRows ScsiCommands();
CommandRows FcCommands();
CommandRows NpivCommands();
CommandRows NvmeCommands();

CommandRows HbaapiCommands();

CommandRows HealthCommands();
CommandRows MetricsCommands();
CommandRows TreeCommands();
CommandRows TopCommands();
CommandRows BatchCommands();
CommandRows CollectCommands();
CommandRows ReportCommands();

}  // namespace vxmgr
