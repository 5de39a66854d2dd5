#include "model/fabric/scsi_task.h"

#include "model/fabric/scsi_commands.h"

namespace vxemu {
namespace {

enum Needs : uint8_t {
    kNothing,  // answered even where there is no LUN
    kLun,
    kBlocks,  // a disk
};

struct CommandRow {
    uint8_t operationCode;
    Needs needs;
    void (*run)(ScsiTask& task);
};
constexpr CommandRow kCommands[] = {
    {0x00, kLun, TestUnitReady},
    {0x03, kNothing, RequestSense},
    {0x08, kBlocks, ReadBlocks},
    {0x0A, kBlocks, WriteBlocks},
    {formats::kInquiry, kNothing, Inquiry},
    {0x1A, kLun, ModeSense6},
    {formats::kReadCapacity10, kBlocks, ReadCapacity10},
    {0x28, kBlocks, ReadBlocks},
    {0x2A, kBlocks, WriteBlocks},
    {0x35, kBlocks, SynchronizeCache},
    {0x88, kBlocks, ReadBlocks},
    {0x8A, kBlocks, WriteBlocks},
    {0x91, kBlocks, SynchronizeCache},
    {formats::kServiceActionIn16, kBlocks, ServiceActionIn16},
    {formats::kReportLuns, kNothing, ReportLuns},
    {0xA8, kBlocks, ReadBlocks},
    {0xAA, kBlocks, WriteBlocks},
};

}  // namespace

SenseData SenseDataOf(const Sense& sense) {
    SenseData data = {};
    data.fixed.response = formats::kCurrentSense;
    data.fixed.key = sense.key;
    data.fixed.additionalLength = sizeof data - offsetof(formats::FixedSense, commandSpecific);
    data.fixed.code = sense.code;
    data.fixed.qualifier = sense.qualifier;
    return data;
}

void RunScsi(ScsiTask& task, uint32_t lunNumber) {
    task.lun = VisibleLun(*task.port, *task.target, lunNumber);
    task.status = ScsiStatus::Good;
    task.sense = kNoSense;
    task.returned = 0;
    task.overrun = false;
    for (const CommandRow& row : kCommands) {
        if (row.operationCode != task.cdb[0]) {
            continue;
        }
        if (row.needs != kNothing && task.lun == nullptr) {
            return Fail(task, kLunNotSupported);
        }
        if (row.needs == kBlocks && task.lun->deviceType != kDisk) {
            break;
        }
        return row.run(task);
    }
    Fail(task, task.lun == nullptr ? kLunNotSupported : kInvalidCommand);
}

}  // namespace vxemu
