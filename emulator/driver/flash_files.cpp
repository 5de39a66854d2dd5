// Requests that come here run alone, at PASSIVE_LEVEL and without a fast mutex, as files demand.
#include "flash_files.h"

namespace driver {
namespace {

using vxemu::FileFound;
using vxemu::FileOpening;

constexpr wchar_t kFlashParameters[] = L"Parameters";
constexpr wchar_t kFolderValue[] = L"FlashFolder";
constexpr ULONG kLongestFolder = 32768;

// The value: a path as the kernel has them.
NTSTATUS OpenFolder(HANDLE parameters, HANDLE* folder) {
    ObjectName name(kFolderValue);
    ULONG length = 0;
    ZwQueryValueKey(parameters, name.Get(), KeyValuePartialInformation, nullptr, 0, &length);
    if (length == 0 || length > kLongestFolder) {
        return STATUS_OBJECT_NAME_NOT_FOUND;
    }
    auto* const value = static_cast<KEY_VALUE_PARTIAL_INFORMATION*>(Allocate(length));
    if (value == nullptr) {
        return STATUS_INSUFFICIENT_RESOURCES;
    }
    NTSTATUS status =
        ZwQueryValueKey(parameters, name.Get(), KeyValuePartialInformation, value, length, &length);
    if (NT_SUCCESS(status) && value->Type == REG_SZ && value->DataLength >= sizeof(wchar_t)) {
        UNICODE_STRING path;
        path.Buffer = reinterpret_cast<wchar_t*>(value->Data);
        path.Length = static_cast<USHORT>(value->DataLength - sizeof(wchar_t));
        path.MaximumLength = path.Length;
        OBJECT_ATTRIBUTES attributes = AttributesOf(nullptr, &path);
        IO_STATUS_BLOCK io;
        status =
            ZwCreateFile(folder, FILE_LIST_DIRECTORY | FILE_TRAVERSE | SYNCHRONIZE, &attributes,
                         &io, nullptr, 0, FILE_SHARE_READ | FILE_SHARE_WRITE, FILE_OPEN,
                         FILE_DIRECTORY_FILE | FILE_SYNCHRONOUS_IO_NONALERT, nullptr, 0);
    } else if (NT_SUCCESS(status)) {
        status = STATUS_INVALID_PARAMETER;
    }
    Release(value);
    return status;
}

FileFound OpenInFolder(void* folder, const char* fileName, FileOpening opening, void** file) {
    ObjectName name(L"", fileName);
    OBJECT_ATTRIBUTES attributes = AttributesOf(folder, name.Get());
    IO_STATUS_BLOCK io;
    const NTSTATUS status = ZwCreateFile(
        file, GENERIC_READ | GENERIC_WRITE | DELETE | SYNCHRONIZE, &attributes, &io, nullptr,
        FILE_ATTRIBUTE_NORMAL, FILE_SHARE_READ,
        opening == FileOpening::Fresh ? FILE_OVERWRITE_IF : FILE_OPEN,
        FILE_NON_DIRECTORY_FILE | FILE_WRITE_THROUGH | FILE_SYNCHRONOUS_IO_NONALERT, nullptr, 0);
    if (NT_SUCCESS(status)) {
        return FileFound::Opened;
    }
    return status == STATUS_OBJECT_NAME_NOT_FOUND ? FileFound::NotThere : FileFound::Failed;
}

uint64_t FileBytes(void*, void* file) {
    FILE_STANDARD_INFORMATION information = {};
    IO_STATUS_BLOCK io;
    const NTSTATUS status = ZwQueryInformationFile(file, &io, &information, sizeof information,
                                                   FileStandardInformation);
    return NT_SUCCESS(status) ? static_cast<uint64_t>(information.EndOfFile.QuadPart) : 0;
}

bool ReadBytes(void*, void* file, uint64_t offset, void* bytes, uint32_t length) {
    LARGE_INTEGER place;
    place.QuadPart = static_cast<int64_t>(offset);
    IO_STATUS_BLOCK io = {};
    return NT_SUCCESS(
               ZwReadFile(file, nullptr, nullptr, nullptr, &io, bytes, length, &place, nullptr)) &&
           io.Information == length;
}

bool WriteBytes(void*, void* file, uint64_t offset, const void* bytes, uint32_t length) {
    LARGE_INTEGER place;
    place.QuadPart = static_cast<int64_t>(offset);
    IO_STATUS_BLOCK io = {};
    return NT_SUCCESS(ZwWriteFile(file, nullptr, nullptr, nullptr, &io, const_cast<void*>(bytes),
                                  length, &place, nullptr)) &&
           io.Information == length;
}

bool PutInPlace(void* folder, void* file, const char* fileName) {
    ObjectName name(L"", fileName);
    const UNICODE_STRING& text = *name.Get();
    const ULONG length = static_cast<ULONG>(sizeof(FILE_RENAME_INFORMATION)) + text.Length;
    auto* const rename = static_cast<FILE_RENAME_INFORMATION*>(Allocate(length));
    if (rename == nullptr) {
        return false;
    }
    rename->ReplaceIfExists = TRUE;
    rename->RootDirectory = folder;
    rename->FileNameLength = text.Length;
    RtlCopyMemory(rename->FileName, text.Buffer, text.Length);
    IO_STATUS_BLOCK io;
    const NTSTATUS status = ZwSetInformationFile(file, &io, rename, length, FileRenameInformation);
    Release(rename);
    return NT_SUCCESS(status);
}

bool EraseOnClose(void*, void* file) {
    FILE_DISPOSITION_INFORMATION disposition = {TRUE};
    IO_STATUS_BLOCK io;
    return NT_SUCCESS(ZwSetInformationFile(file, &io, &disposition, sizeof disposition,
                                           FileDispositionInformation));
}

void CloseFile(void*, void* file) {
    ZwClose(file);
}

}  // namespace

void FlashFiles::Open(UNICODE_STRING* registryPath) {
    Key service;
    Key parameters;
    OBJECT_ATTRIBUTES attributes = AttributesOf(nullptr, registryPath);
    if (!NT_SUCCESS(ZwOpenKey(service.Receive(), KEY_READ, &attributes))) {
        return;
    }
    ObjectName name(kFlashParameters);
    attributes = AttributesOf(service.Get(), name.Get());
    HANDLE folder = nullptr;
    if (NT_SUCCESS(ZwOpenKey(parameters.Receive(), KEY_READ, &attributes)) &&
        NT_SUCCESS(OpenFolder(parameters.Get(), &folder))) {
        folder_ = folder;
        files_ = {folder,     OpenInFolder, FileBytes,    ReadBytes,
                  WriteBytes, PutInPlace,   EraseOnClose, CloseFile};
    }
}

void FlashFiles::Close() {
    if (folder_ != nullptr) {
        ZwClose(folder_);
        folder_ = nullptr;
    }
}

}  // namespace driver
