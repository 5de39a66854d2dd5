// What a LUN is: INQUIRY, REPORT LUNS, sense and mode data.
#include <cstring>

#include "model/fabric/scsi_commands.h"

namespace vxemu {
namespace {

constexpr uint8_t kVitalProductData = 0x01;  // EVPD of INQUIRY
constexpr uint32_t kInquiryLength = 96;
constexpr uint32_t kAbsentInquiryLength = 36;

// A text, filled up with blanks.
void PutText(DataIn& data, const char* text, uint32_t size) {
    const auto length = static_cast<uint32_t>(std::strlen(text));
    data->Put(text, length < size ? length : size);
    for (uint32_t at = length; at < size; ++at) {
        data->Put8(' ');
    }
}

void PutStandard(DataIn& data, const LunProfile& lun) {
    data->Put8(lun.deviceType);
    data->Put8(0);
    data->Put8(0x06);  // SPC-4
    data->Put8(0x12);  // hierarchical LUNs, response format 2
    data->Put8(kInquiryLength - 5);
    data->Put16(0);
    data->Put8(0x02);  // command queuing
    PutText(data, lun.vendor, 8);
    PutText(data, lun.product, 16);
    PutText(data, lun.revision, 4);
    data->Zeros(kInquiryLength - data->Length());
}

void PutAbsent(DataIn& data) {
    data->Put8(kNoDevice);
    data->Put8(0);
    data->Put8(0x06);
    data->Put8(0x12);
    data->Put8(kAbsentInquiryLength - 5);
    data->Zeros(kAbsentInquiryLength - data->Length());
}

void PutPageHead(DataIn& data, const ScsiTask& task, uint8_t page, uint32_t length) {
    data->Put8(task.lun->deviceType);
    data->Put8(page);
    data->Put16(length);
}

void PutSupportedPages(DataIn& data, const ScsiTask& task);

void PutSerialNumber(DataIn& data, const ScsiTask& task) {
    const auto length = static_cast<uint32_t>(std::strlen(task.lun->serial));
    PutPageHead(data, task, 0x80, length);
    data->Put(task.lun->serial, length);
}

// A name for the LUN, made of the target's: locally assigned (NAA 3), with the LUN's number in the
// places that built-in names leave free.
void PutIdentification(DataIn& data, const ScsiTask& task) {
    const auto serialLength = static_cast<uint32_t>(std::strlen(task.lun->serial));
    constexpr uint32_t kVendorLength = 8;
    const uint32_t textLength = kVendorLength + serialLength;
    uint8_t name[8];
    std::memcpy(name, task.target->portName, sizeof name);
    name[0] = static_cast<uint8_t>(0x30 | (name[0] & 0x0F));
    name[1] = static_cast<uint8_t>(name[1] ^ (task.lun->number >> 8));
    name[7] = static_cast<uint8_t>(name[7] ^ task.lun->number);
    PutPageHead(data, task, 0x83, 4 + sizeof name + 4 + textLength);
    data->Put8(0x01);  // binary
    data->Put8(0x03);  // NAA, of the LUN
    data->Put8(0);
    data->Put8(sizeof name);
    data->Put(name, sizeof name);
    data->Put8(0x02);  // ASCII
    data->Put8(0x01);  // T10 vendor identification, of the LUN
    data->Put8(0);
    data->Put8(static_cast<uint8_t>(textLength));
    PutText(data, task.lun->vendor, kVendorLength);
    data->Put(task.lun->serial, serialLength);
}

struct PageRow {
    uint8_t page;
    void (*put)(DataIn& data, const ScsiTask& task);
};
constexpr PageRow kPages[] = {
    {0x00, PutSupportedPages},
    {0x80, PutSerialNumber},
    {0x83, PutIdentification},
};

void PutSupportedPages(DataIn& data, const ScsiTask& task) {
    PutPageHead(data, task, 0x00, sizeof kPages / sizeof kPages[0]);
    for (const PageRow& row : kPages) {
        data->Put8(row.page);
    }
}

}  // namespace

void Inquiry(ScsiTask& task) {
    const bool vitalProductData = (task.cdb[1] & kVitalProductData) != 0;
    const uint8_t page = task.cdb[2];
    const uint64_t allocation = BigEndian(task.cdb + 3, 2);
    if (!vitalProductData) {
        if (page != 0) {
            return Fail(task, kInvalidFieldInCdb);
        }
        DataIn data(task, allocation);
        return task.lun == nullptr ? PutAbsent(data) : PutStandard(data, *task.lun);
    }
    for (const PageRow& row : kPages) {
        if (row.page == page && task.lun != nullptr) {
            DataIn data(task, allocation);
            return row.put(data, task);
        }
    }
    Fail(task, kInvalidFieldInCdb);
}

void ReportLuns(ScsiTask& task) {
    if (task.target->refusesReportLuns != 0) {
        return Fail(task, kInvalidCommand);
    }
    constexpr uint8_t kWellKnownOnly = 0x01;
    constexpr uint8_t kEverything = 0x02;
    const uint8_t report = task.cdb[2];
    const uint64_t allocation = BigEndian(task.cdb + 6, 4);
    if (report > kEverything || allocation < 16) {
        return Fail(task, kInvalidFieldInCdb);
    }
    DataIn data(task, allocation);
    if (report == kWellKnownOnly) {
        return data->Zeros(8);
    }
    data->Put32(8 * CountLuns(*task.port, *task.target));
    data->Put32(0);
    for (uint32_t number = 0; number <= kMaxLunNumber; ++number) {
        if (VisibleLun(*task.port, *task.target, number) != nullptr) {
            data->Put16(number < 256 ? number : 0x4000 | number);  // peripheral, flat addressing
            data->Zeros(6);
        }
    }
}

void RequestSense(ScsiTask& task) {
    const SenseData sense = SenseDataOf(task.lun == nullptr ? kLunNotSupported : kNoSense);
    DataIn data(task, task.cdb[4]);
    data->Put(&sense, sizeof sense);
}

void TestUnitReady(ScsiTask& task) {
    if (task.lun->deviceType == kDisk && task.lun->blocks == 0) {
        Fail(task, kMediumNotPresent);
    }
}

// The header alone: no page has changeable or interesting values.
void ModeSense6(ScsiTask& task) {
    DataIn data(task, task.cdb[4]);
    data->Put8(3);
    data->Zeros(3);
}

}  // namespace vxemu
