// What a LUN is: INQUIRY, REPORT LUNS, sense and mode data.
#include <cstring>

#include "model/bytes/bytes.h"
#include "model/fabric/scsi_commands.h"

namespace vxemu {
namespace {

using namespace formats;

constexpr uint8_t kVitalProductData = 0x01;  // EVPD of INQUIRY
constexpr uint32_t kInquiryLength = 96;

InquiryData InquiryOf(uint8_t peripheral, size_t length) {
    InquiryData inquiry = {};
    inquiry.peripheral = peripheral;
    inquiry.version = 0x06;         // SPC-4
    inquiry.responseFormat = 0x12;  // hierarchical LUNs, response format 2
    inquiry.additionalLength = static_cast<uint8_t>(length - offsetof(InquiryData, flags5));
    return inquiry;
}

void PutStandard(DataIn& data, const LunProfile& lun) {
    InquiryData inquiry = InquiryOf(lun.deviceType, kInquiryLength);
    inquiry.flags7 = 0x02;  // command queuing
    CopyPadded(inquiry.vendor, lun.vendor);
    CopyPadded(inquiry.product, lun.product);
    CopyPadded(inquiry.revision, lun.revision);
    data->PutRecord(inquiry);
    data->Zeros(kInquiryLength - data->Length());
}

void PutAbsent(DataIn& data) {
    data->PutRecord(InquiryOf(kNoDevice, sizeof(InquiryData)));
}

void PutPageHead(DataIn& data, const ScsiTask& task, uint8_t page, uint32_t length) {
    VpdPageHead head = {task.lun->deviceType, page, {}};
    PutBigEndian(length, head.length);
    data->PutRecord(head);
}

void PutSupportedPages(DataIn& data, const ScsiTask& task);

void PutSerialNumber(DataIn& data, const ScsiTask& task) {
    const auto length = static_cast<uint32_t>(std::strlen(task.lun->serial));
    PutPageHead(data, task, kSerialPage, length);
    data->Put(task.lun->serial, length);
}

// A name for the LUN, made of the target's: locally assigned (NAA 3), with the LUN's number in the
// places that built-in names leave free.
void PutIdentification(DataIn& data, const ScsiTask& task) {
    const auto serialLength = static_cast<uint32_t>(std::strlen(task.lun->serial));
    char vendor[sizeof InquiryData::vendor];
    CopyPadded(vendor, task.lun->vendor);
    const uint32_t textLength = sizeof vendor + serialLength;
    uint8_t name[8];
    std::memcpy(name, task.target->portName, sizeof name);
    name[0] = static_cast<uint8_t>(0x30 | (name[0] & 0x0F));
    name[1] = static_cast<uint8_t>(name[1] ^ (task.lun->number >> 8));
    name[7] = static_cast<uint8_t>(name[7] ^ task.lun->number);
    PutPageHead(data, task, kIdentificationPage,
                2 * sizeof(DesignatorHead) + sizeof name + textLength);
    data->PutRecord(DesignatorHead{kBinary, kNaa, 0, sizeof name});
    data->PutRecord(name);
    data->PutRecord(DesignatorHead{kAscii, kT10Vendor, 0, static_cast<uint8_t>(textLength)});
    data->PutRecord(vendor);
    data->Put(task.lun->serial, serialLength);
}

struct PageRow {
    uint8_t page;
    void (*put)(DataIn& data, const ScsiTask& task);
};
constexpr PageRow kPages[] = {
    {kSupportedPages, PutSupportedPages},
    {kSerialPage, PutSerialNumber},
    {kIdentificationPage, PutIdentification},
};

void PutSupportedPages(DataIn& data, const ScsiTask& task) {
    PutPageHead(data, task, kSupportedPages, sizeof kPages / sizeof kPages[0]);
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
