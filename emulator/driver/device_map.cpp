#include "device_map.h"

#include <cstring>

namespace driver {
namespace {

constexpr wchar_t kMapParent[] = L"\\Registry\\Machine\\HARDWARE\\DEVICEMAP";
constexpr wchar_t kMapKey[] = L"Scsi";
constexpr wchar_t kPortKeyPrefix[] = L"Scsi Port ";
constexpr wchar_t kDriverValue[] = L"Driver";
// Marks a key as one of ours, so that one left behind by a crash is taken over.
constexpr wchar_t kMarkValue[] = L"Emulated";

NTSTATUS OpenMap(Key& map) {
    Key parent;
    ObjectName parentName(kMapParent);
    OBJECT_ATTRIBUTES attributes = AttributesOf(nullptr, parentName.Get());
    NTSTATUS status = ZwCreateKey(parent.Receive(), KEY_READ | KEY_WRITE, &attributes, 0, nullptr,
                                  REG_OPTION_VOLATILE, nullptr);
    if (!NT_SUCCESS(status)) {
        return status;
    }
    ObjectName name(kMapKey);
    attributes = AttributesOf(parent.Get(), name.Get());
    return ZwCreateKey(map.Receive(), KEY_READ | KEY_WRITE, &attributes, 0, nullptr,
                       REG_OPTION_VOLATILE, nullptr);
}

bool HasValue(HANDLE key, const wchar_t* name) {
    ObjectName value(name);
    KEY_VALUE_PARTIAL_INFORMATION information;
    ULONG length = 0;
    const NTSTATUS status = ZwQueryValueKey(key, value.Get(), KeyValuePartialInformation,
                                            &information, sizeof information, &length);
    return NT_SUCCESS(status) || status == STATUS_BUFFER_OVERFLOW ||
           status == STATUS_BUFFER_TOO_SMALL;
}

// Writes a text of the model, which is plain ASCII.
NTSTATUS SetText(HANDLE key, const wchar_t* name, const char* text) {
    wchar_t wide[sizeof(vxemu::AdapterProfile::driverName)];
    uint32_t length = 0;
    for (; text[length] != 0; ++length) {
        wide[length] = static_cast<wchar_t>(text[length]);
    }
    wide[length++] = 0;
    ObjectName value(name);
    return ZwSetValueKey(key, value.Get(), 0, REG_SZ, wide,
                         length * static_cast<ULONG>(sizeof wide[0]));
}

bool WritePort(HANDLE map, uint32_t number, const char* driverName) {
    Key key;
    ObjectName name(kPortKeyPrefix, number);
    OBJECT_ATTRIBUTES attributes = AttributesOf(map, name.Get());
    const NTSTATUS status = ZwCreateKey(key.Receive(), KEY_READ | KEY_WRITE, &attributes, 0,
                                        nullptr, REG_OPTION_VOLATILE, nullptr);
    if (!NT_SUCCESS(status)) {
        return false;
    }
    if (HasValue(key.Get(), kDriverValue) && !HasValue(key.Get(), kMarkValue)) {
        return false;
    }
    ObjectName mark(kMarkValue);
    ULONG one = 1;
    ZwSetValueKey(key.Get(), mark.Get(), 0, REG_DWORD, &one, sizeof one);
    SetText(key.Get(), kDriverValue, driverName);
    return true;
}

// The key goes with its values; when something else has been put below it, only ours go.
void RemovePort(HANDLE map, uint32_t number) {
    Key key;
    ObjectName name(kPortKeyPrefix, number);
    OBJECT_ATTRIBUTES attributes = AttributesOf(map, name.Get());
    if (!NT_SUCCESS(ZwOpenKey(key.Receive(), KEY_READ | KEY_WRITE | DELETE, &attributes))) {
        return;
    }
    const wchar_t* const values[] = {kDriverValue, kMarkValue};
    for (const wchar_t* value : values) {
        ObjectName valueName(value);
        ZwDeleteValueKey(key.Get(), valueName.Get());
    }
    UCHAR information[sizeof(KEY_FULL_INFORMATION) + 256];
    ULONG length = 0;
    if (NT_SUCCESS(
            ZwQueryKey(key.Get(), KeyFullInformation, information, sizeof information, &length))) {
        const auto* full = reinterpret_cast<const KEY_FULL_INFORMATION*>(information);
        if (full->SubKeys == 0 && full->Values == 0) {
            ZwDeleteKey(key.Get());
        }
    }
}

}  // namespace

void MapPort(Shared& shared, uint32_t port) {
    const uint32_t number = shared.model->ScsiPortNumber(port);
    Key map;
    if (NT_SUCCESS(OpenMap(map)) && WritePort(map.Get(), number, shared.model->DriverName(port))) {
        shared.mapped |= 1ull << number;
    }
}

void UnmapPort(Shared& shared, uint32_t number) {
    const uint64_t bit = 1ull << number;
    Key map;
    if ((shared.mapped & bit) != 0 && NT_SUCCESS(OpenMap(map))) {
        RemovePort(map.Get(), number);
        shared.mapped &= ~bit;
    }
}

void UnmapPorts(Shared& shared) {
    for (uint32_t number = 0; number <= vxemu::kMaxScsiPort; ++number) {
        UnmapPort(shared, number);
    }
}

}  // namespace driver
