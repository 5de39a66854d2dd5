// The blocks of a disk.
#include "model/fabric/scsi_commands.h"

namespace vxemu {
namespace {

// Where the block address and the number of blocks stand, by operation code.
struct TransferRow {
    uint8_t operationCode;
    uint8_t addressAt;
    uint8_t addressSize;
    uint8_t countAt;
    uint8_t countSize;
};
constexpr TransferRow kTransfers[] = {
    {0x08, 1, 3, 4, 1},  {0x0A, 1, 3, 4, 1},  {0x28, 2, 4, 7, 2}, {0x2A, 2, 4, 7, 2},
    {0x88, 2, 8, 10, 4}, {0x8A, 2, 8, 10, 4}, {0xA8, 2, 4, 6, 4}, {0xAA, 2, 4, 6, 4},
};

struct Blocks {
    uint64_t address;
    uint64_t count;
};

Blocks BlocksOf(const uint8_t* cdb) {
    for (const TransferRow& row : kTransfers) {
        if (row.operationCode != cdb[0]) {
            continue;
        }
        Blocks blocks = {BigEndian(cdb + row.addressAt, row.addressSize),
                         BigEndian(cdb + row.countAt, row.countSize)};
        if (row.addressSize == 3) {
            blocks.address &= 0x1FFFFF;
            blocks.count = blocks.count == 0 ? 256 : blocks.count;
        }
        return blocks;
    }
    return {};
}

// The bytes of a transfer; false when there are no such blocks.
bool Locate(ScsiTask& task, uint64_t& offset, uint64_t& length) {
    const Blocks blocks = BlocksOf(task.cdb);
    if (blocks.address > task.lun->blocks || blocks.count > task.lun->blocks - blocks.address) {
        Fail(task, kBlockOutOfRange);
        return false;
    }
    offset = blocks.address * task.lun->blockSize;
    length = blocks.count * task.lun->blockSize;
    return true;
}

}  // namespace

void ReadCapacity10(ScsiTask& task) {
    if (task.lun->blocks == 0) {
        return Fail(task, kMediumNotPresent);
    }
    constexpr uint64_t kTooLarge = 0xFFFFFFFF;  // ask READ CAPACITY (16)
    const uint64_t last = task.lun->blocks - 1;
    DataIn data(task, 8);
    data->Put32(static_cast<uint32_t>(last < kTooLarge ? last : kTooLarge));
    data->Put32(task.lun->blockSize);
}

void ServiceActionIn16(ScsiTask& task) {
    if ((task.cdb[1] & 0x1F) != formats::kReadCapacity16) {
        return Fail(task, kInvalidFieldInCdb);
    }
    if (task.lun->blocks == 0) {
        return Fail(task, kMediumNotPresent);
    }
    DataIn data(task, BigEndian(task.cdb + 10, 4));
    data->Put64(task.lun->blocks - 1);
    data->Put32(task.lun->blockSize);
    data->Zeros(20);
}

void ReadBlocks(ScsiTask& task) {
    uint64_t offset = 0;
    uint64_t length = 0;
    if (!Locate(task, offset, length)) {
        return;
    }
    task.overrun = length > task.dataInRoom;
    task.returned = task.overrun ? task.dataInRoom : static_cast<uint32_t>(length);
    const Fabric& fabric = *task.port->fabric;
    fabric.store.Read(DiskOf(fabric, *task.lun), offset, task.dataIn, task.returned);
}

// Less data than the command speaks of: nothing is written.
void WriteBlocks(ScsiTask& task) {
    uint64_t offset = 0;
    uint64_t length = 0;
    if (!Locate(task, offset, length)) {
        return;
    }
    if (length > task.dataOutLength) {
        task.overrun = true;
        return;
    }
    Fabric& fabric = *task.port->fabric;
    if (!fabric.store.Write(fabric.host, DiskOf(fabric, *task.lun), offset, task.dataOut,
                            static_cast<uint32_t>(length))) {
        Fail(task, kSpaceAllocationFailed);
    }
}

void SynchronizeCache(ScsiTask&) {}

}  // namespace vxemu
