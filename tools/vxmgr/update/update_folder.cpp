#include "vxmgr/update/update_folder.h"

#include <windows.h>

#include <aclapi.h>
#include <knownfolders.h>
#include <sddl.h>
#include <shlobj.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <filesystem>
#include <memory>

#include "common/console.h"
#include "frame/owned.h"
#include "records/text.h"
#include "vxmgr/app/files.h"
#include "vxmgr/update/update_messages.h"

namespace vxmgr {
namespace {

namespace fs = std::filesystem;

// The system and administrators: everything, also what comes to stand in the folder. Nobody else.
constexpr char kFolderSecurity[] = "O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)";
// Where nothing can be given away: as the maker's own, with the same access.
constexpr char kOwnFolderSecurity[] = "D:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)";

struct LocalFreer {
    void operator()(void* memory) const { LocalFree(memory); }
};
using LocalMemory = std::unique_ptr<void, LocalFreer>;

fs::path PathOf(const std::string& text) {
    return tools::console::ToWide(text);
}

// Names come from adapters: nothing but letters and digits gets into a path.
std::string SafeName(const std::string& text) {
    std::string name;
    for (const char c : text) {
        name += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
    return name.empty() ? "_" : name;
}

bool MakeSecured(const std::string& path, const char* security) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorA(security, SDDL_REVISION_1,
                                                              &descriptor, nullptr)) {
        return false;
    }
    const LocalMemory owner(descriptor);
    SECURITY_ATTRIBUTES attributes{sizeof attributes, descriptor, FALSE};
    return CreateDirectoryW(PathOf(path).c_str(), &attributes) != FALSE ||
           GetLastError() == ERROR_ALREADY_EXISTS;
}

void MakeOne(Invocation& invocation, const std::string& path) {
    if (!MakeSecured(path, kFolderSecurity) && !MakeSecured(path, kOwnFolderSecurity)) {
        invocation.Fail(GetLastError(), "the folder " + path + " cannot be made");
    }
    if (!IsTrusted(path)) {
        FailAt(path, ExitCode::Refused,
               "the folder belongs to neither the administrators nor you: backups in it could be "
               "forged, nothing was written",
               "find out whose it is, and have it removed by an administrator");
    }
}

std::vector<std::string> FoldersIn(const std::string& path) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(PathOf(path), error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code ignored;
        if (entry->is_directory(ignored)) {
            names.push_back(tools::console::ToUtf8(entry->path().filename().wstring()));
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

// "20260131T235959123Z": sorts by time.
std::string TimeName() {
    std::string name;
    for (const char c : FormatUtc(std::chrono::system_clock::now())) {
        name += std::isalnum(static_cast<unsigned char>(c)) != 0 ? std::string(1, c) : "";
    }
    return name;
}

bool IsSid(PSID sid, WELL_KNOWN_SID_TYPE type) {
    return IsWellKnownSid(sid, type) != FALSE;
}

bool IsThisUser(PSID sid) {
    HANDLE opened = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened)) {
        return false;
    }
    const frame::OwnedObject token(opened);
    alignas(TOKEN_USER) uint8_t buffer[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
    DWORD length = 0;
    return GetTokenInformation(opened, TokenUser, buffer, sizeof buffer, &length) &&
           EqualSid(sid, reinterpret_cast<TOKEN_USER*>(buffer)->User.Sid);
}

}  // namespace

std::string JoinPath(const std::string& folder, const std::string& name) {
    return folder + "\\" + name;
}

std::string AbsolutePath(const std::string& path) {
    std::error_code error;
    const fs::path absolute = fs::absolute(PathOf(path), error);
    return error ? path : tools::console::ToUtf8(absolute.wstring());
}

std::string QuotedPath(const std::string& path) {
    return path.find(' ') == std::string::npos ? path : "\"" + path + "\"";
}

uint32_t MakeNewFolder(const std::string& path) {
    std::error_code error;
    if (fs::exists(PathOf(path), error) && !fs::is_empty(PathOf(path), error)) {
        return ERROR_DIR_NOT_EMPTY;
    }
    return tools::console::MakeFolder(path);
}

std::string UpdatesFolder() {
    PWSTR found = nullptr;
    const HRESULT result = SHGetKnownFolderPath(FOLDERID_ProgramData, 0, nullptr, &found);
    const std::string folder =
        SUCCEEDED(result) ? tools::console::ToUtf8(found) : "C:\\ProgramData";
    CoTaskMemFree(found);
    return JoinPath(JoinPath(folder, "vxmgr"), "updates");
}

std::string UpdatesFolderOf(const std::string& serial) {
    return JoinPath(UpdatesFolder(), SafeName(serial));
}

std::string MakeUpdateFolder(Invocation& invocation, const std::string& serial) {
    const std::string updates = UpdatesFolder();
    const std::string own = UpdatesFolderOf(serial);
    std::string path = JoinPath(own, TimeName());
    for (const std::string& folder : {updates.substr(0, updates.rfind('\\')), updates, own, path}) {
        MakeOne(invocation, folder);
    }
    return path;
}

std::vector<std::string> UpdateFolders(const std::string& serial) {
    const std::string own = UpdatesFolderOf(serial);
    std::vector<std::string> paths;
    for (const std::string& name : FoldersIn(own)) {
        const std::string path = JoinPath(own, name);
        std::error_code ignored;
        if (fs::exists(PathOf(JoinPath(path, kJournalFile)), ignored)) {
            paths.push_back(path);
        }
    }
    return paths;
}

std::vector<std::string> AdaptersWithUpdates() {
    return FoldersIn(UpdatesFolder());
}

bool IsTrusted(const std::string& path) {
    PSID owner = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (GetNamedSecurityInfoW(PathOf(path).wstring().data(), SE_FILE_OBJECT,
                              OWNER_SECURITY_INFORMATION, &owner, nullptr, nullptr, nullptr,
                              &descriptor) != ERROR_SUCCESS) {
        return false;
    }
    const LocalMemory memory(descriptor);
    return owner != nullptr && (IsSid(owner, WinLocalSystemSid) ||
                                IsSid(owner, WinBuiltinAdministratorsSid) || IsThisUser(owner));
}

uint32_t SaveDurably(const std::string& path, Bytes bytes) {
    const std::wstring temporary = PathOf(path + ".part").wstring();
    {
        const frame::OwnedFile file(CreateFileW(temporary.c_str(), GENERIC_WRITE, 0, nullptr,
                                                CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        DWORD written = 0;
        if (!file.Valid() ||
            !WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written,
                       nullptr) ||
            !FlushFileBuffers(file.Get())) {
            return GetLastError();
        }
        if (written != bytes.size()) {
            return ERROR_DISK_FULL;
        }
    }
    return MoveFileExW(temporary.c_str(), PathOf(path).c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)
               ? ERROR_SUCCESS
               : GetLastError();
}

uint32_t LoadTrusted(const std::string& path, size_t most, std::vector<uint8_t>* bytes) {
    if (!fs::exists(PathOf(path))) {
        return ERROR_FILE_NOT_FOUND;
    }
    if (!IsTrusted(path)) {
        return ERROR_INVALID_OWNER;
    }
    const frame::OwnedFile file(CreateFileW(PathOf(path).c_str(), GENERIC_READ, FILE_SHARE_READ,
                                            nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                                            nullptr));
    LARGE_INTEGER size{};
    if (!file.Valid() || !GetFileSizeEx(file.Get(), &size)) {
        return GetLastError();
    }
    if (static_cast<uint64_t>(size.QuadPart) > most) {
        return ERROR_FILE_TOO_LARGE;
    }
    bytes->resize(static_cast<size_t>(size.QuadPart));
    DWORD read = 0;
    if (!ReadFile(file.Get(), bytes->data(), static_cast<DWORD>(bytes->size()), &read, nullptr)) {
        return GetLastError();
    }
    bytes->resize(read);
    return ERROR_SUCCESS;
}

}  // namespace vxmgr
