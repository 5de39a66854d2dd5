#include "machine/import_redirection.h"

#include <cstdint>
#include <cstdio>

namespace support {

namespace {

HMODULE named = nullptr;

template <typename T>
const T* At(HMODULE module, uint32_t offset) {
    return reinterpret_cast<const T*>(reinterpret_cast<const uint8_t*>(module) + offset);
}

}  // namespace

std::vector<Import> ImportsOf(HMODULE module) {
    std::vector<Import> imports;
    const auto* dos = At<IMAGE_DOS_HEADER>(module, 0);
    const auto* headers = At<IMAGE_NT_HEADERS>(module, static_cast<uint32_t>(dos->e_lfanew));
    const IMAGE_DATA_DIRECTORY& directory =
        headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (directory.Size == 0) {
        return imports;
    }
    for (const auto* table = At<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress);
         table->Name != 0; ++table) {
        const auto* name = At<IMAGE_THUNK_DATA>(module, table->OriginalFirstThunk);
        const auto* slot = At<IMAGE_THUNK_DATA>(module, table->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++slot) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) {
                continue;
            }
            const auto* byName =
                At<IMAGE_IMPORT_BY_NAME>(module, static_cast<uint32_t>(name->u1.AddressOfData));
            imports.push_back({At<char>(module, table->Name),
                               reinterpret_cast<const char*>(byName->Name),
                               reinterpret_cast<void**>(const_cast<IMAGE_THUNK_DATA*>(slot))});
        }
    }
    return imports;
}

HMODULE LibraryModule() {
    return named != nullptr ? named : GetModuleHandleA("VXMGMT.DLL");
}

void UseLibrary(HMODULE module) {
    named = module;
}

ImportRedirection::ImportRedirection(HMODULE module, const char* function, void* replacement) {
    for (const Import& import : ImportsOf(module)) {
        if (import.function == function) {
            slot_ = import.slot;
            original_ = *slot_;
            Write(slot_, replacement);
            return;
        }
    }
}

ImportRedirection::~ImportRedirection() {
    if (slot_ != nullptr) {
        Write(slot_, original_);
    }
}

void ImportRedirection::Write(void** slot, void* value) {
    DWORD protection = 0;
    if (VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection)) {
        *slot = value;
        VirtualProtect(slot, sizeof *slot, protection, &protection);
    }
}

}  // namespace support
