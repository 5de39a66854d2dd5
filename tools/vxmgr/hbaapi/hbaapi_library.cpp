#include "vxmgr/hbaapi/hbaapi_library.h"

#include "common/console.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {
namespace {

constexpr wchar_t kLibraryName[] = L"VXMGMT.DLL";
constexpr wchar_t kKey[] = L"SOFTWARE\\SNIA\\HBA\\VXCORE";
constexpr wchar_t kValue[] = L"LibraryFile";

// A registry key that closes itself.
class Key {
  public:
    Key() = default;
    ~Key() {
        if (key_ != nullptr) {
            RegCloseKey(key_);
        }
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    LSTATUS Open(REGSAM access) {
        return RegOpenKeyExW(HKEY_LOCAL_MACHINE, kKey, 0, access, &key_);
    }
    LSTATUS Create() {
        return RegCreateKeyExW(HKEY_LOCAL_MACHINE, kKey, 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                               &key_, nullptr);
    }
    HKEY Get() const { return key_; }

    bool IsEmpty() const {
        DWORD keys = 1;
        DWORD values = 1;
        return RegQueryInfoKeyW(key_, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values,
                                nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS &&
               keys == 0 && values == 0;
    }

  private:
    HKEY key_ = nullptr;
};

bool IsMissing(LSTATUS status) {
    return status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND;
}

}  // namespace

std::optional<std::string> OwnLibraryFile() {
    std::vector<wchar_t> path(32768);  // the longest that a path can be
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0 || length >= path.size()) {
        return std::nullopt;
    }
    std::wstring file(path.data(), length);
    file.erase(file.find_last_of(L"\\/") + 1);
    file += kLibraryName;
    const DWORD attributes = GetFileAttributesW(file.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return std::nullopt;
    }
    return console::ToUtf8(file);
}

VendorLibrary::~VendorLibrary() {
    if (started_) {
        api_.FreeLibraryHandler();
    }
    if (module_ != nullptr) {
        FreeLibrary(module_);
    }
}

bool VendorLibrary::Load(const std::string& file, std::string* error) {
    // What it needs itself may lie beside it.
    module_ = LoadLibraryExW(console::ToWide(file).c_str(), nullptr,
                             LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
    if (module_ == nullptr) {
        *error = file + ": " + console::SystemErrorText(GetLastError());
        return false;
    }
    const auto registerLibrary = reinterpret_cast<HBA_REGISTERLIBRARY>(
        reinterpret_cast<void (*)()>(GetProcAddress(module_, "HBA_RegisterLibrary")));
    if (registerLibrary == nullptr || registerLibrary(&api_) != HBA_STATUS_OK) {
        *error = file + " does not offer the standard HBA API";
        return false;
    }
    if (api_.GetVersionHandler() != HBA_VERSION) {
        *error = file + " offers version " + std::to_string(api_.GetVersionHandler()) +
                 " of the standard HBA API";
        return false;
    }
    started_ = api_.LoadLibraryHandler() == HBA_STATUS_OK;
    if (!started_) {
        *error = file + " refuses to start";
    }
    return started_;
}

std::string RegistrationKey() {
    return "HKEY_LOCAL_MACHINE\\" + console::ToUtf8(kKey);
}

uint32_t ReadRegisteredFile(std::optional<std::string>* file) {
    file->reset();
    Key key;
    LSTATUS status = key.Open(KEY_QUERY_VALUE);
    DWORD size = 0;
    if (status == ERROR_SUCCESS) {
        status = RegGetValueW(key.Get(), nullptr, kValue, RRF_RT_REG_SZ, nullptr, nullptr, &size);
    }
    if (status != ERROR_SUCCESS) {
        return IsMissing(status) ? 0 : static_cast<uint32_t>(status);
    }
    std::wstring text(size / sizeof(wchar_t) + 1, L'\0');
    size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    status = RegGetValueW(key.Get(), nullptr, kValue, RRF_RT_REG_SZ, nullptr, text.data(), &size);
    if (status == ERROR_SUCCESS) {
        text.resize(text.find(L'\0'));
        *file = console::ToUtf8(text);
    }
    return static_cast<uint32_t>(status);
}

uint32_t WriteRegisteredFile(const std::string& file) {
    Key key;
    LSTATUS status = key.Create();
    if (status == ERROR_SUCCESS) {
        const std::wstring text = console::ToWide(file);
        status = RegSetValueExW(key.Get(), kValue, 0, REG_SZ,
                                reinterpret_cast<const BYTE*>(text.c_str()),
                                static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    }
    return static_cast<uint32_t>(status);
}

uint32_t RemoveRegisteredFile() {
    bool empty = false;
    {
        Key key;
        LSTATUS status = key.Open(KEY_SET_VALUE | KEY_QUERY_VALUE);
        if (status == ERROR_SUCCESS) {
            status = RegDeleteValueW(key.Get(), kValue);
            empty = key.IsEmpty();
        }
        if (status != ERROR_SUCCESS) {
            return IsMissing(status) ? 0 : static_cast<uint32_t>(status);
        }
    }
    // The value is gone either way; an empty key does no harm.
    if (empty) {
        RegDeleteKeyW(HKEY_LOCAL_MACHINE, kKey);
    }
    return 0;
}

}  // namespace vxmgr
