#include "requests.h"

#include <ntddscsi.h>

#include "devices.h"
#include "disks.h"
#include "transport/ext_ioctl.h"

namespace driver {
namespace {

using vxemu::Completion;

NTSTATUS StatusOf(Completion completion) {
    switch (completion) {
        case Completion::Done:
            return STATUS_SUCCESS;
        case Completion::Busy:
            return STATUS_DEVICE_BUSY;
        case Completion::Invalid:
            return STATUS_INVALID_DEVICE_REQUEST;
        case Completion::ShortBuffer:
            return STATUS_INVALID_PARAMETER;
        case Completion::NoDevice:
            return STATUS_NO_SUCH_DEVICE;
    }
    return STATUS_INVALID_DEVICE_REQUEST;
}

NTSTATUS Complete(IRP* irp, NTSTATUS status, uint32_t returned) {
    irp->IoStatus.Status = status;
    irp->IoStatus.Information = returned;
    IoCompleteRequest(irp, IO_NO_INCREMENT);
    return status;
}

}  // namespace

NTSTATUS NTAPI OpenOrClose(DEVICE_OBJECT* device, IRP* irp) {
    DeviceExtension& extension = ExtensionOf(device);
    const bool opens = IoGetCurrentIrpStackLocation(irp)->MajorFunction == IRP_MJ_CREATE;
    Shared& shared = *extension.shared;
    NTSTATUS status = STATUS_SUCCESS;
    // The control device counts as one of the first port, which it does not change.
    shared.access.WithinPort(extension.port, [&] {
        if (opens && shared.stopping) {
            status = STATUS_DELETE_PENDING;
        } else if (opens && (extension.gone ||
                             (extension.kind == DeviceKind::Disk && !IsDiskThere(extension)))) {
            status = STATUS_NO_SUCH_DEVICE;
        } else {
            extension.handles += opens ? 1 : -1;
            if (extension.kind == DeviceKind::Port && !extension.gone) {
                shared.model->CountHandle(extension.port, opens ? 1 : -1);
            }
        }
    });
    return Complete(irp, status, 0);
}

NTSTATUS NTAPI DeviceControl(DEVICE_OBJECT* device, IRP* irp) {
    const DeviceExtension& extension = ExtensionOf(device);
    Shared& shared = *extension.shared;
    const auto& parameters = IoGetCurrentIrpStackLocation(irp)->Parameters.DeviceIoControl;
    if (extension.kind == DeviceKind::Disk) {
        irp->IoStatus.Information = 0;
        const NTSTATUS answered = DiskControl(extension, irp);
        return Complete(irp, answered, static_cast<uint32_t>(irp->IoStatus.Information));
    }
    const bool control = extension.kind == DeviceKind::Control;
    if (!control && parameters.IoControlCode == IOCTL_SCSI_GET_INQUIRY_DATA) {
        irp->IoStatus.Information = 0;
        const NTSTATUS answered = ListUnits(extension, irp);
        return Complete(irp, answered, static_cast<uint32_t>(irp->IoStatus.Information));
    }
    if (!control && parameters.IoControlCode != transport::kIoctlScsiMiniport) {
        return Complete(irp, STATUS_INVALID_DEVICE_REQUEST, 0);
    }
    auto* buffer = static_cast<uint8_t*>(irp->AssociatedIrp.SystemBuffer);
    uint32_t returned = 0;
    uint32_t delay = 0;
    NTSTATUS status = STATUS_DELETE_PENDING;
    const vxemu::Reach reach =
        control ? vxemu::Reach::Model : vxemu::ReachOf(buffer, parameters.InputBufferLength);
    shared.access.As(reach, extension.port, [&] {
        if (shared.stopping) {
            return;
        }
        if (extension.gone) {
            status = STATUS_NO_SUCH_DEVICE;
        } else if (control) {
            status = StatusOf(shared.model->Control(parameters.IoControlCode, buffer,
                                                    parameters.InputBufferLength,
                                                    parameters.OutputBufferLength, &returned));
            if (const NTSTATUS followed = FollowModel(device->DriverObject, shared);
                !NT_SUCCESS(followed)) {
                status = followed;
                returned = 0;
            }
        } else {
            status =
                StatusOf(shared.model->Request(extension.port, buffer, parameters.InputBufferLength,
                                               parameters.OutputBufferLength, &returned, &delay));
        }
    });
    if (delay != 0) {
        irp->IoStatus.Status = status;
        irp->IoStatus.Information = returned;
        if (shared.delayed.Start(irp, delay)) {
            return STATUS_PENDING;
        }
    }
    return Complete(irp, status, returned);
}

}  // namespace driver
