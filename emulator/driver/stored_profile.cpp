#include "stored_profile.h"

#include <cstring>

namespace driver {
namespace {

constexpr wchar_t kParametersKey[] = L"Parameters";
constexpr wchar_t kProfileValue[] = L"Profile";

// STATUS_OBJECT_NAME_NOT_FOUND when nothing is stored.
NTSTATUS ReadStored(UNICODE_STRING* registryPath, vxemu::Profile& profile) {
    Key service;
    OBJECT_ATTRIBUTES attributes = AttributesOf(nullptr, registryPath);
    NTSTATUS status = ZwOpenKey(service.Receive(), KEY_READ, &attributes);
    if (!NT_SUCCESS(status)) {
        return status;
    }
    Key parameters;
    ObjectName parametersName(kParametersKey);
    attributes = AttributesOf(service.Get(), parametersName.Get());
    status = ZwOpenKey(parameters.Receive(), KEY_READ, &attributes);
    if (!NT_SUCCESS(status)) {
        return status;
    }

    constexpr ULONG kLength =
        offsetof(KEY_VALUE_PARTIAL_INFORMATION, Data) + sizeof(vxemu::Profile);
    auto* value = static_cast<KEY_VALUE_PARTIAL_INFORMATION*>(Allocate(kLength));
    if (value == nullptr) {
        return STATUS_INSUFFICIENT_RESOURCES;
    }
    ObjectName valueName(kProfileValue);
    ULONG length = 0;
    status = ZwQueryValueKey(parameters.Get(), valueName.Get(), KeyValuePartialInformation, value,
                             kLength, &length);
    if (NT_SUCCESS(status)) {
        const vxemu::ProfileFault fault = vxemu::ValidateProfile(value->Data, value->DataLength);
        if (value->Type == REG_BINARY && fault.error == vxemu::ProfileError::None) {
            std::memcpy(&profile, value->Data, sizeof profile);
        } else {
            status = STATUS_INVALID_PARAMETER;
        }
    } else if (status == STATUS_BUFFER_OVERFLOW) {
        status = STATUS_INVALID_PARAMETER;
    }
    Release(value);
    return status;
}

}  // namespace

NTSTATUS LoadProfile(UNICODE_STRING* registryPath, vxemu::Profile** profile) {
    *profile = static_cast<vxemu::Profile*>(Allocate(sizeof(vxemu::Profile)));
    if (*profile == nullptr) {
        return STATUS_INSUFFICIENT_RESOURCES;
    }
    const NTSTATUS status = ReadStored(registryPath, **profile);
    if (status == STATUS_OBJECT_NAME_NOT_FOUND) {
        vxemu::kBuiltInProfileTable[0].fill(**profile);
        return STATUS_SUCCESS;
    }
    if (!NT_SUCCESS(status)) {
        Release(*profile);
        *profile = nullptr;
    }
    return status;
}

}  // namespace driver
