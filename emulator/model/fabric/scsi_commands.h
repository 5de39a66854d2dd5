// The commands that the emulated targets know, by file.
#pragma once

#include "model/bytes/byte_writer.h"
#include "model/fabric/scsi_task.h"

namespace vxemu {

inline constexpr uint8_t kDisk = 0x00;  // peripheral device type

inline void Fail(ScsiTask& task, const Sense& sense) {
    task.status = ScsiStatus::CheckCondition;
    task.sense = sense;
}

// Data for the initiator, at most as much as it has asked for and has room for.
class DataIn {
  public:
    DataIn(ScsiTask& task, uint64_t allocationLength)
        : task_(task),
          allocation_(allocationLength),
          writer_(task.dataIn, Min(allocationLength, task.dataInRoom)) {}
    ~DataIn() {
        const uint32_t sent = Min(allocation_, writer_.Length());
        task_.returned = Min(sent, task_.dataInRoom);
        task_.overrun = sent > task_.dataInRoom;
    }
    DataIn(const DataIn&) = delete;
    DataIn& operator=(const DataIn&) = delete;

    ByteWriter* operator->() { return &writer_; }

  private:
    static uint32_t Min(uint64_t left, uint32_t right) {
        return left < right ? static_cast<uint32_t>(left) : right;
    }

    ScsiTask& task_;
    uint64_t allocation_;
    ByteWriter writer_;
};

// scsi_identity.cpp
void Inquiry(ScsiTask& task);
void ReportLuns(ScsiTask& task);
void RequestSense(ScsiTask& task);
void TestUnitReady(ScsiTask& task);
void ModeSense6(ScsiTask& task);

// scsi_blocks.cpp
void ReadCapacity10(ScsiTask& task);
void ServiceActionIn16(ScsiTask& task);
void ReadBlocks(ScsiTask& task);
void WriteBlocks(ScsiTask& task);
void SynchronizeCache(ScsiTask& task);

}  // namespace vxemu
