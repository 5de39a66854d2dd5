#include "devices.h"

#include "device_map.h"
#include "disks.h"
#include "model/control.h"
#include "stored_config.h"

namespace driver {
namespace {

constexpr wchar_t kControlDeviceObject[] = L"\\Device\\vxemu";
constexpr wchar_t kControlDeviceLink[] = L"\\DosDevices\\vxemu";
constexpr wchar_t kPortDeviceObject[] = L"\\Device\\VxemuPort";
constexpr wchar_t kPortDeviceLink[] = L"\\DosDevices\\scsi";

NTSTATUS CreateDevice(DRIVER_OBJECT* driver, const DeviceExtension& extension, ObjectName& name,
                      ObjectName& link) {
    DEVICE_OBJECT* device = nullptr;
    const ULONG type =
        extension.kind == DeviceKind::Control ? FILE_DEVICE_UNKNOWN : FILE_DEVICE_CONTROLLER;
    NTSTATUS status = IoCreateDevice(driver, sizeof(DeviceExtension), name.Get(), type,
                                     FILE_DEVICE_SECURE_OPEN, FALSE, &device);
    if (!NT_SUCCESS(status)) {
        return status;
    }
    // A link that exists belongs to a real port: leave it, and this device, alone.
    status = IoCreateSymbolicLink(link.Get(), name.Get());
    if (!NT_SUCCESS(status)) {
        IoDeleteDevice(device);
        return status;
    }
    ExtensionOf(device) = extension;
    device->Flags |= DO_BUFFERED_IO;
    device->Flags &= ~static_cast<ULONG>(DO_DEVICE_INITIALIZING);
    return STATUS_SUCCESS;
}

void Unlink(const DeviceExtension& extension) {
    if (extension.gone) {
        return;
    }
    if (extension.kind == DeviceKind::Disk) {
        UnlinkDisk(extension);
    } else if (extension.kind == DeviceKind::Port) {
        ObjectName link(kPortDeviceLink, extension.number, L":");
        IoDeleteSymbolicLink(link.Get());
    } else {
        ObjectName link(kControlDeviceLink);
        IoDeleteSymbolicLink(link.Get());
    }
}

// A device that is still open goes with a later change, or with the driver.
void RemoveMissing(DRIVER_OBJECT* driver, Shared& shared) {
    DEVICE_OBJECT* next = nullptr;
    for (DEVICE_OBJECT* device = driver->DeviceObject; device != nullptr; device = next) {
        next = device->NextDevice;
        DeviceExtension& extension = ExtensionOf(device);
        if (extension.kind == DeviceKind::Control || shared.model->HasPort(extension.port)) {
            continue;
        }
        if (extension.kind == DeviceKind::Port && !extension.gone) {
            shared.devices &= ~(1ull << extension.port);
            shared.nextDisk = 0;  // its disks' numbers are free again
            UnmapPort(shared, extension.number);
        }
        Unlink(extension);
        extension.gone = true;
    }
    for (DEVICE_OBJECT* device = driver->DeviceObject; device != nullptr; device = next) {
        next = device->NextDevice;
        if (ExtensionOf(device).gone && ExtensionOf(device).handles == 0) {
            IoDeleteDevice(device);
        }
    }
}

// The object's own name is none of an earlier port that somebody still has open.
NTSTATUS CreatePort(DRIVER_OBJECT* driver, Shared& shared, uint32_t port) {
    const uint32_t number = shared.model->ScsiPortNumber(port);
    ObjectName link(kPortDeviceLink, number, L":");
    ObjectName name(kPortDeviceObject, shared.portsMade++);
    ApplyStore(*shared.model, port);
    const NTSTATUS status =
        CreateDevice(driver, {&shared, DeviceKind::Port, port, {}, number, 0, false}, name, link);
    if (NT_SUCCESS(status)) {
        shared.devices |= 1ull << port;
        CreateDisks(driver, shared, port);
        MapPort(shared, port);
    }
    return status;
}

}  // namespace

NTSTATUS CreateDevices(DRIVER_OBJECT* driver, Shared* shared) {
    ObjectName name(kControlDeviceObject);
    ObjectName link(kControlDeviceLink);
    const NTSTATUS status =
        CreateDevice(driver, {shared, DeviceKind::Control, 0, {}, 0, 0, false}, name, link);
    return NT_SUCCESS(status) ? FollowModel(driver, *shared) : status;
}

NTSTATUS FollowModel(DRIVER_OBJECT* driver, Shared& shared) {
    RemoveMissing(driver, shared);
    for (uint32_t port = 0; port < vxemu::kMaxPorts; ++port) {
        if (!shared.model->HasPort(port) || (shared.devices & (1ull << port)) != 0) {
            continue;
        }
        const NTSTATUS status = CreatePort(driver, shared, port);
        if (!NT_SUCCESS(status)) {
            shared.model->RemoveAdapter(port);
            RemoveMissing(driver, shared);
            return status;
        }
    }
    return STATUS_SUCCESS;
}

void RemoveDevices(DRIVER_OBJECT* driver) {
    while (DEVICE_OBJECT* device = driver->DeviceObject) {
        Unlink(ExtensionOf(device));
        IoDeleteDevice(device);
    }
}

}  // namespace driver
