// vxemu.sys: the emulated adapters as SCSI ports of the system.
#include <cstring>

#include "device_map.h"
#include "devices.h"
#include "kernel.h"
#include "requests.h"
#include "stored_profile.h"

namespace driver {

void* Allocate(size_t bytes) {
    void* block = ExAllocatePoolWithTag(NonPagedPoolNx, bytes, kPoolTag);
    if (block != nullptr) {
        std::memset(block, 0, bytes);
    }
    return block;
}

void Release(void* block) {
    ExFreePoolWithTag(block, kPoolTag);
}

namespace {

void* AllocateForModel(void*, size_t bytes) {
    return Allocate(bytes);
}
void ReleaseForModel(void*, void* block) {
    Release(block);
}

uint64_t Milliseconds(void*) {
    LARGE_INTEGER frequency;
    const LARGE_INTEGER counter = KeQueryPerformanceCounter(&frequency);
    const auto ticks = static_cast<uint64_t>(counter.QuadPart);
    const auto perSecond = static_cast<uint64_t>(frequency.QuadPart);
    return ticks / perSecond * 1000 + ticks % perSecond * 1000 / perSecond;
}

// A request is served on behalf of the process that sent it.
uint32_t RequestingProcess(void*) {
    return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(PsGetCurrentProcessId()));
}

void EnterCommon(void* shared) {
    static_cast<Shared*>(shared)->access.Common().lock();
}
void LeaveCommon(void* shared) {
    static_cast<Shared*>(shared)->access.Common().unlock();
}

// Takes down whatever has been set up. Where the system stops a driver whose devices are still
// open, their users meet a refusal first and a missing device then.
void TearDown(DRIVER_OBJECT* object, Shared* shared) {
    shared->access.Alone([&] { shared->stopping = true; });
    shared->delayed.Finish();
    UnmapPorts(*shared);
    RemoveDevices(object);
    vxemu::Model::Destroy(shared->model);
    shared->flashFiles.Close();
    shared->access.Delete();
    Release(shared);
}

void NTAPI Unload(DRIVER_OBJECT* object) {
    if (object->DeviceObject != nullptr) {
        TearDown(object, ExtensionOf(object->DeviceObject).shared);
    }
}

NTSTATUS Start(DRIVER_OBJECT* object, UNICODE_STRING* registryPath) {
    auto* shared = static_cast<Shared*>(Allocate(sizeof(Shared)));
    if (shared == nullptr) {
        return STATUS_INSUFFICIENT_RESOURCES;
    }
    shared->access.Initialize();
    shared->delayed.Initialize();
    vxemu::Profile* profile = nullptr;
    NTSTATUS status = LoadProfile(registryPath, &profile);
    if (NT_SUCCESS(status)) {
        shared->flashFiles.Open(registryPath);
        const vxemu::Host host = {
            shared,      AllocateForModel, ReleaseForModel,   Milliseconds,
            EnterCommon, LeaveCommon,      RequestingProcess, shared->flashFiles.Get()};
        shared->model = vxemu::Model::Create(host, *profile);
        Release(profile);
        status = STATUS_INSUFFICIENT_RESOURCES;
        if (shared->model != nullptr) {
            status = CreateDevices(object, shared);
        }
    }
    if (!NT_SUCCESS(status)) {
        TearDown(object, shared);
        return status;
    }
    return STATUS_SUCCESS;
}

}  // namespace
}  // namespace driver

// Not checked itself: it changes the word that the checks compare with.
extern "C" __attribute__((no_stack_protector)) NTSTATUS NTAPI
DriverEntry(DRIVER_OBJECT* object, UNICODE_STRING* registryPath) {
    driver::SeedStackGuard();
    object->MajorFunction[IRP_MJ_CREATE] = driver::OpenOrClose;
    object->MajorFunction[IRP_MJ_CLOSE] = driver::OpenOrClose;
    object->MajorFunction[IRP_MJ_DEVICE_CONTROL] = driver::DeviceControl;
    object->DriverUnload = driver::Unload;
    return driver::Start(object, registryPath);
}
