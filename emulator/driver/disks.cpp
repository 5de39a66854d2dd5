#include "disks.h"

#include <ntdddisk.h>
#include <ntddscsi.h>
#include <ntddstor.h>

#include <algorithm>
#include <cstring>

namespace driver {
namespace {

constexpr wchar_t kDiskObject[] = L"\\Device\\VxemuDisk";
constexpr wchar_t kDiskLink[] = L"\\DosDevices\\PhysicalDrive";
constexpr ULONG kInquiryBytes = 36;
// Numbers below are left to the disks of the system, which come and go.
constexpr uint32_t kFirstDiskNumber = 32;

template <typename Record>
NTSTATUS Answer(IRP* irp, const Record& record) {
    const auto& parameters = IoGetCurrentIrpStackLocation(irp)->Parameters.DeviceIoControl;
    if (parameters.OutputBufferLength < sizeof record) {
        return STATUS_BUFFER_TOO_SMALL;
    }
    std::memcpy(irp->AssociatedIrp.SystemBuffer, &record, sizeof record);
    irp->IoStatus.Information = sizeof record;
    return STATUS_SUCCESS;
}

NTSTATUS Address(IRP* irp, const vxemu::OsDisk& disk, uint32_t) {
    const SCSI_ADDRESS address = {sizeof address, disk.scsiPort, disk.bus, disk.target, disk.lun};
    return Answer(irp, address);
}

NTSTATUS Number(IRP* irp, const vxemu::OsDisk&, uint32_t number) {
    STORAGE_DEVICE_NUMBER record = {};
    record.DeviceType = FILE_DEVICE_DISK;
    record.DeviceNumber = number;
    record.PartitionNumber = 0;
    return Answer(irp, record);
}

uint64_t BytesOf(const vxemu::OsDisk& disk) {
    return disk.blocks * disk.blockSize;
}

NTSTATUS Length(IRP* irp, const vxemu::OsDisk& disk, uint32_t) {
    GET_LENGTH_INFORMATION record = {};
    record.Length.QuadPart = static_cast<LONGLONG>(BytesOf(disk));
    return Answer(irp, record);
}

// As the system makes it up for a disk of any size.
DISK_GEOMETRY GeometryOf(const vxemu::OsDisk& disk) {
    constexpr ULONG kSectorsPerTrack = 63;
    constexpr ULONG kTracksPerCylinder = 255;
    DISK_GEOMETRY geometry = {};
    geometry.MediaType = FixedMedia;
    geometry.Cylinders.QuadPart =
        static_cast<LONGLONG>(disk.blocks / (kSectorsPerTrack * kTracksPerCylinder));
    geometry.TracksPerCylinder = kTracksPerCylinder;
    geometry.SectorsPerTrack = kSectorsPerTrack;
    geometry.BytesPerSector = disk.blockSize;
    return geometry;
}

NTSTATUS Geometry(IRP* irp, const vxemu::OsDisk& disk, uint32_t) {
    return Answer(irp, GeometryOf(disk));
}

NTSTATUS GeometryEx(IRP* irp, const vxemu::OsDisk& disk, uint32_t) {
    DISK_GEOMETRY_EX record = {};
    record.Geometry = GeometryOf(disk);
    record.DiskSize.QuadPart = static_cast<LONGLONG>(BytesOf(disk));
    return Answer(irp, record);
}

struct QueryRow {
    ULONG code;
    NTSTATUS (*answer)(IRP* irp, const vxemu::OsDisk& disk, uint32_t number);
};
constexpr QueryRow kQueries[] = {
    {IOCTL_SCSI_GET_ADDRESS, Address},
    {IOCTL_STORAGE_GET_DEVICE_NUMBER, Number},
    {IOCTL_DISK_GET_LENGTH_INFO, Length},
    {IOCTL_DISK_GET_DRIVE_GEOMETRY, Geometry},
    {IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, GeometryEx},
};

// Makes a device with the first free number from *number on, and steps that on behind it. A number
// is not free either while somebody has a disk open that is gone.
bool CreateDisk(DRIVER_OBJECT* driver, const DeviceExtension& extension, uint32_t* number) {
    constexpr uint32_t kMostCollisions = 1000;
    NTSTATUS status = STATUS_OBJECT_NAME_COLLISION;
    for (uint32_t tries = 0; status == STATUS_OBJECT_NAME_COLLISION && tries < kMostCollisions;
         ++tries) {
        ObjectName name(kDiskObject, *number);
        ObjectName link(kDiskLink, *number);
        DEVICE_OBJECT* device = nullptr;
        status = IoCreateDevice(driver, sizeof(DeviceExtension), name.Get(), FILE_DEVICE_DISK,
                                FILE_DEVICE_SECURE_OPEN, FALSE, &device);
        if (NT_SUCCESS(status)) {
            ExtensionOf(device) = extension;
            ExtensionOf(device).number = *number;
            status = IoCreateSymbolicLink(link.Get(), name.Get());
            if (NT_SUCCESS(status)) {
                device->Flags |= DO_BUFFERED_IO;
                device->Flags &= ~static_cast<ULONG>(DO_DEVICE_INITIALIZING);
            } else {
                IoDeleteDevice(device);
            }
        }
        ++*number;
    }
    return NT_SUCCESS(status);
}

}  // namespace

void CreateDisks(DRIVER_OBJECT* driver, Shared& shared, uint32_t port) {
    shared.nextDisk = std::max(shared.nextDisk, kFirstDiskNumber);
    for (uint32_t index = 0; index < shared.model->DiskKeys(); ++index) {
        DeviceExtension extension = {&shared, DeviceKind::Disk, port, {}, 0, 0, false};
        if (shared.model->GetDiskKey(port, index, extension.disk) &&
            !CreateDisk(driver, extension, &shared.nextDisk)) {
            return;  // adapters without all of their disks are better than none
        }
    }
}

NTSTATUS ListUnits(const DeviceExtension& port, IRP* irp) {
    const auto& parameters = IoGetCurrentIrpStackLocation(irp)->Parameters.DeviceIoControl;
    const ULONG room = parameters.OutputBufferLength;
    auto* const reply = static_cast<UCHAR*>(irp->AssociatedIrp.SystemBuffer);
    // One bus head serves for all: each unit says which bus it is on.
    constexpr ULONG kHead = sizeof(SCSI_ADAPTER_BUS_INFO);
    constexpr ULONG kUnit = offsetof(SCSI_INQUIRY_DATA, InquiryData) + kInquiryBytes;
    static_assert(kHead % alignof(SCSI_INQUIRY_DATA) == 0);
    static_assert(kUnit % alignof(SCSI_INQUIRY_DATA) == 0);
    if (room < kHead) {
        return STATUS_BUFFER_TOO_SMALL;
    }
    std::memset(reply, 0, room);
    auto& head = *reinterpret_cast<SCSI_ADAPTER_BUS_INFO*>(reply);
    head.NumberOfBuses = 1;
    Shared& shared = *port.shared;
    ULONG end = kHead;
    ULONG* link = &head.BusData[0].InquiryDataOffset;
    shared.access.WithinPort(port.port, [&] {
        for (uint32_t index = 0; index < shared.model->DiskKeys(); ++index) {
            vxemu::DiskKey key;
            vxemu::OsDisk disk;
            if (shared.stopping || port.gone || !shared.model->GetDiskKey(port.port, index, key) ||
                !shared.model->FindDisk(port.port, key, disk)) {
                continue;
            }
            if (room - end >= kUnit) {
                auto& unit = *reinterpret_cast<SCSI_INQUIRY_DATA*>(reply + end);
                unit.PathId = disk.bus;
                unit.TargetId = disk.target;
                unit.Lun = disk.lun;
                unit.DeviceClaimed = TRUE;
                unit.InquiryDataLength = kInquiryBytes;  // zeros: a disk
                *link = end;
                link = &unit.NextInquiryDataOffset;
                ++head.BusData[0].NumberOfLogicalUnits;
                end += kUnit;
            } else {
                end = room + 1;
                break;
            }
        }
    });
    if (port.gone) {
        return STATUS_NO_SUCH_DEVICE;
    }
    if (end > room) {
        return STATUS_BUFFER_TOO_SMALL;
    }
    irp->IoStatus.Information = end;
    return STATUS_SUCCESS;
}

void UnlinkDisk(const DeviceExtension& extension) {
    ObjectName link(kDiskLink, extension.number);
    IoDeleteSymbolicLink(link.Get());
}

bool IsDiskThere(const DeviceExtension& extension) {
    vxemu::OsDisk disk;
    return !extension.gone &&
           extension.shared->model->FindDisk(extension.port, extension.disk, disk);
}

NTSTATUS DiskControl(const DeviceExtension& extension, IRP* irp) {
    Shared& shared = *extension.shared;
    vxemu::OsDisk disk = {};
    bool there = false;
    shared.access.WithinPort(extension.port, [&] {
        there = !shared.stopping && !extension.gone &&
                shared.model->FindDisk(extension.port, extension.disk, disk);
    });
    if (!there) {
        return STATUS_NO_SUCH_DEVICE;
    }
    const ULONG code = IoGetCurrentIrpStackLocation(irp)->Parameters.DeviceIoControl.IoControlCode;
    for (const QueryRow& row : kQueries) {
        if (row.code == code) {
            return row.answer(irp, disk, extension.number);
        }
    }
    return STATUS_INVALID_DEVICE_REQUEST;
}

}  // namespace driver
