#include "flash_folder.h"

#include <windows.h>

#include <aclapi.h>
#include <sddl.h>

#include <vector>

#include "frame/owned.h"

namespace vxemu {
namespace {

// Full access for the system and for administrators, nothing from the folder above.
constexpr wchar_t kFolderSecurity[] = L"D:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)";
constexpr wchar_t kFolderName[] = L"\\vxemu";

struct LocalTraits {
    using Value = void*;
    static Value Empty() { return nullptr; }
    static void Close(Value value) { LocalFree(value); }
};
using LocalBlock = frame::Owned<LocalTraits>;

bool IsOwnUser(PSID sid) {
    frame::OwnedObject token;
    std::vector<uint8_t> user(512);
    DWORD length = 0;
    return OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.Receive()) != FALSE &&
           GetTokenInformation(token.Get(), TokenUser, user.data(), static_cast<DWORD>(user.size()),
                               &length) != FALSE &&
           EqualSid(sid, reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid) != FALSE;
}

uint32_t CheckExisting(const std::wstring& folder) {
    const DWORD attributes = GetFileAttributesW(folder.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        return GetLastError();
    }
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0 ||
        (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        return ERROR_DIRECTORY;
    }
    PSID owner = nullptr;
    LocalBlock descriptor;
    const DWORD error =
        GetNamedSecurityInfoW(folder.c_str(), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &owner,
                              nullptr, nullptr, nullptr, descriptor.Receive());
    if (error != ERROR_SUCCESS) {
        return error;
    }
    const bool trusted =
        owner != nullptr && (IsWellKnownSid(owner, WinBuiltinAdministratorsSid) != FALSE ||
                             IsWellKnownSid(owner, WinLocalSystemSid) != FALSE || IsOwnUser(owner));
    return trusted ? ERROR_SUCCESS : ERROR_INVALID_OWNER;
}

}  // namespace

uint32_t MakeFlashFolder(std::wstring* folder) {
    wchar_t base[MAX_PATH];
    const DWORD length = GetEnvironmentVariableW(L"ProgramData", base, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) {
        return ERROR_PATH_NOT_FOUND;
    }
    *folder = std::wstring(base, length) + kFolderName;
    LocalBlock descriptor;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(kFolderSecurity, SDDL_REVISION_1,
                                                              descriptor.Receive(), nullptr)) {
        return GetLastError();
    }
    SECURITY_ATTRIBUTES security = {sizeof security, descriptor.Get(), FALSE};
    if (CreateDirectoryW(folder->c_str(), &security)) {
        return ERROR_SUCCESS;
    }
    const DWORD error = GetLastError();
    return error == ERROR_ALREADY_EXISTS ? CheckExisting(*folder) : error;
}

}  // namespace vxemu
