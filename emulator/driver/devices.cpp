#include "devices.h"

#include "disks.h"
#include "model/control.h"

namespace driver {
namespace {

constexpr wchar_t kControlDeviceObject[] = L"\\Device\\vxemu";
constexpr wchar_t kControlDeviceLink[] = L"\\DosDevices\\vxemu";
constexpr wchar_t kPortDeviceObject[] = L"\\Device\\ScsiPort";
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

}  // namespace

NTSTATUS CreateDevices(DRIVER_OBJECT* driver, Shared* shared) {
    ObjectName name(kControlDeviceObject);
    ObjectName link(kControlDeviceLink);
    NTSTATUS status = CreateDevice(driver, {shared, DeviceKind::Control, 0, {}, 0}, name, link);
    for (uint32_t port = 0; NT_SUCCESS(status) && port < shared->model->PortCount(); ++port) {
        const uint32_t number = shared->model->ScsiPortNumber(port);
        ObjectName portName(kPortDeviceObject, number);
        ObjectName portLink(kPortDeviceLink, number, L":");
        status = CreateDevice(driver, {shared, DeviceKind::Port, port, {}, 0}, portName, portLink);
    }
    if (NT_SUCCESS(status)) {
        CreateDisks(driver, shared);
    }
    return status;
}

void RemoveDevices(DRIVER_OBJECT* driver) {
    while (DEVICE_OBJECT* device = driver->DeviceObject) {
        const DeviceExtension& extension = ExtensionOf(device);
        if (extension.kind == DeviceKind::Control) {
            ObjectName link(kControlDeviceLink);
            IoDeleteSymbolicLink(link.Get());
        } else if (extension.kind == DeviceKind::Disk) {
            UnlinkDisk(extension);
        } else {
            ObjectName link(kPortDeviceLink,
                            extension.shared->model->ScsiPortNumber(extension.port), L":");
            IoDeleteSymbolicLink(link.Get());
        }
        IoDeleteDevice(device);
    }
}

}  // namespace driver
