// vxmgr: the command-line manager of the adapters, over the management library's public interface.
#include "vxmgr/app/library.h"
#include "vxmgr/bindings/store_documents.h"
#include "vxmgr/commands.h"
#include "vxmgr/settings/nvram_document.h"
#include "vxmgr/support/collect_manifest.h"
#include "vxmgr/update/update_journal.h"
#include "vxmgr/update/update_progress.h"
#include "vxmgr/update/update_record.h"

namespace vxmgr {
namespace {

constexpr Argument kOptions[] = {
    {.name = "-a,--adapter",
     .valueName = "SEL",
     .help = "adapter: serial:TEXT, wwn:..., index:N, scsi:N, all, a name or a serial number",
     .naming = Naming::Selection,
     .source = {"adapter list", "serial", "serial:"}},
    {.name = "-p,--port",
     .valueName = "SEL",
     .help = "port: selected in the same way; see `help selecting`",
     .naming = Naming::Selection,
     .source = {"port list", "scsi_port", "scsi:"}},
    TextOption("--trace", "FILE", "append the library's trace to a file"),
};

std::string SelectingText() {
    return "An adapter is the ports that share a serial number. -a SEL selects adapters, -p SEL\n"
           "ports; both together select the ports of those adapters.\n\n"
           "  serial:TEXT    all with this serial number\n"
           "  wwn:NAME       the one with this port or node name, with ':', '-' or no separators\n"
           "  index:N, N     the N-th from 0, as the list shows it; commands of risk 3 refuse a\n"
           "                 number alone\n"
           "  scsi:N         the one at SCSI port N\n"
           "  all            all\n"
           "  anything else  exactly one serial number or name; more than one match is an error\n\n"
           "Without them a command that reads takes all; one that changes a port or a driver "
           "wants\n"
           "exactly one. Index numbers are positions and change when an adapter is added or "
           "fails:\n"
           "scripts had better use serial numbers and names.\n";
}

constexpr HelpTopic kTopics[] = {
    {"selecting", "what -a and -p take", SelectingText},
};

constexpr CommandGroup kGroups[] = {
    {"adapter", "adapters: the ports that share a serial number"},
    {"adapter locate", "the LEDs that tell where an adapter is"},
    {"port", "Fibre Channel ports"},
    {"target", "targets that the ports' drivers know"},
    {"target speed", "rates at which frames go to targets"},
    {"qos", "priorities of targets' logical units"},
    {"map", "from targets to devices and volumes of the operating system, and back"},
    {"bind", "persistent binding of targets"},
    {"lunmask", "LUN masks: which logical units the host sees"},
    {"fw", "firmware and boot code of the adapters"},
    {"flash", "the flash of the adapters, region by region"},
    {"flash lock", "the lock that keeps two programs from updating one adapter"},
    {"nvram", "settings of a port that its firmware reads at the start"},
    {"vpd", "vital product data of a port"},
    {"sfp", "transceivers"},
    {"event", "events that adapters report"},
    {"smartsan", "the SmartSAN switch of the driver"},
    {"diag", "diagnostics"},
    {"diag register", "registers of the SerDes and of the retimer"},
    {"scsi", "SCSI commands to logical units of remote ports"},
    {"fc", "requests to the fabric and to remote ports"},
    {"npiv", "virtual ports"},
    {"nvme", "NVMe over Fibre Channel"},
    {"dump", "firmware dumps"},
    {"driver", "drivers and their parameters"},
    {"hbaapi", "the standard HBA API, as programs see the adapters through it"},
    {"driver param", "parameters that a driver reads at its start"},
};

constexpr Document kDocuments[] = {
    {"bindings", "The document of `bind export` and `bind import`", BindDocumentShape},
    {"lun_masks", "The document of `lunmask export` and `lunmask import`", LunMaskDocumentShape},
    {"update", "The journal of an update", JournalShape},
    {"progress", "The rows with which `-o jsonl` tells how far an update is", ProgressShape},
    {"nvram", "The document of `nvram export` and `nvram import`", NvramDocumentShape},
    {"manifest", "MANIFEST.json of the file that `collect` writes", CollectManifestShape},
};

// The order of the help.
constexpr CommandRows (*kFiles[])() = {
    AdapterAndPortCommands,
    LocateCommands,
    StatsCommands,
    DatabaseCommands,
    LockdownCommands,
    TargetCommands,
    TargetSpeedCommands,
    QosCommands,
    MapCommands,
    BindListCommands,
    BindChangeCommands,
    BindTransferCommands,
    BindStoreCommands,
    LunmaskCommands,
    LunmaskTransferCommands,
    FwShowCommands,
    FwInspectCommands,
    FwUpdateCommands,
    FwActivateCommands,
    FwRestoreCommands,
    FlashLayoutCommands,
    FlashReadCommands,
    FlashWriteCommands,
    FlashLockCommands,
    NvramCommands,
    NvramChangeCommands,
    NvramActivateCommands,
    NvramTransferCommands,
    VpdCommands,
    SfpCommands,
    SfpSerdesCommands,
    SfpWatchCommands,
    SfpChangeCommands,
    EventCommands,
    SmartsanCommands,
    DiagRunCommands,
    DiagCommands,
    RegisterCommands,
    ScsiCommands,
    FcCommands,
    NpivCommands,
    NvmeCommands,
    DumpCommands,
    DriverCommands,
    HbaapiCommands,
    HealthCommands,
    MetricsCommands,
    TreeCommands,
    TopCommands,
    ReportCommands,
    CollectCommands,
    BatchCommands,
};

}  // namespace
}  // namespace vxmgr

int main() {
    const std::vector<tools::Command> commands = tools::Joined(vxmgr::kFiles);
    const tools::Tool tool{
        .name = "vxmgr",
        .version = tools::kToolVersion,
        .summary = "Manages Fibre Channel host bus adapters.",
        .commands = commands,
        .groups = vxmgr::kGroups,
        .options = vxmgr::kOptions,
        .libraryVersion = vxmgr::LibraryVersion,
        .statusText = vxmgr::StatusMessage,
        .documents = vxmgr::kDocuments,
        .cause = vxmgr::CauseOf,
        .topics = vxmgr::kTopics,
    };
    vxmgr::WhenSelected(vxmgr::WarnOfInterruption);
    return tools::RunTool(tool);
}
