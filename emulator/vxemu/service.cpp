#include "service.h"

namespace vxemu {
namespace {

constexpr wchar_t kServiceName[] = L"vxemu";
constexpr wchar_t kDisplayName[] = L"Emulated Fibre Channel adapters";
constexpr wchar_t kDriverFile[] = L"vxemu.sys";
constexpr wchar_t kParametersKey[] = L"SYSTEM\\CurrentControlSet\\Services\\vxemu\\Parameters";
constexpr wchar_t kProfileValue[] = L"Profile";
constexpr wchar_t kFolderValue[] = L"FlashFolder";
constexpr wchar_t kKernelPrefix[] = L"\\??\\";
constexpr DWORD kPollMilliseconds = 50;

// The driver file beside this program, as a Win32 path.
std::wstring DriverFile() {
    std::vector<wchar_t> path(32768);
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    const std::wstring program(path.data(), length);
    return program.substr(0, program.find_last_of(L'\\') + 1) + kDriverFile;
}

std::wstring ImagePath() {
    return kKernelPrefix + DriverFile();
}

uint32_t OpenParameters(frame::OwnedKey& key) {
    return static_cast<uint32_t>(RegCreateKeyExW(HKEY_LOCAL_MACHINE, kParametersKey, 0, nullptr, 0,
                                                 KEY_SET_VALUE, nullptr, key.Receive(), nullptr));
}

ServiceState StateOf(DWORD state) {
    switch (state) {
        case SERVICE_START_PENDING:
            return ServiceState::Starting;
        case SERVICE_RUNNING:
            return ServiceState::Running;
        case SERVICE_STOP_PENDING:
            return ServiceState::Stopping;
        default:
            return ServiceState::Stopped;
    }
}

constexpr const char* kStateNames[] = {"not-installed", "stopped", "starting", "running",
                                       "stopping"};

}  // namespace

const char* NameOf(ServiceState state) {
    return kStateNames[static_cast<int>(state)];
}

const Fields<ServiceState> kServiceFields = {{"service", "Service", Choice(kStateNames), NameOf}};

std::string DriverService::DriverPath() {
    const std::wstring path = DriverFile();
    std::string text(path.size() * 3 + 1, '\0');
    const int length =
        WideCharToMultiByte(CP_UTF8, 0, path.c_str(), static_cast<int>(path.size()), text.data(),
                            static_cast<int>(text.size()), nullptr, nullptr);
    text.resize(static_cast<size_t>(length));
    return text;
}

uint32_t DriverService::Connect(bool change) {
    change_ = change;
    const DWORD access = SC_MANAGER_CONNECT | (change ? SC_MANAGER_CREATE_SERVICE : 0u);
    manager_.Reset(OpenSCManagerW(nullptr, nullptr, access));
    return manager_.Valid() ? ERROR_SUCCESS : GetLastError();
}

uint32_t DriverService::Open() {
    if (service_.Valid()) {
        return ERROR_SUCCESS;
    }
    const DWORD access = change_ ? SERVICE_ALL_ACCESS : SERVICE_QUERY_STATUS;
    service_.Reset(OpenServiceW(manager_.Get(), kServiceName, access));
    return service_.Valid() ? ERROR_SUCCESS : GetLastError();
}

uint32_t DriverService::State(ServiceState* state) {
    *state = ServiceState::NotInstalled;
    const uint32_t error = Open();
    if (error != ERROR_SUCCESS) {
        return error == ERROR_SERVICE_DOES_NOT_EXIST ? ERROR_SUCCESS : error;
    }
    SERVICE_STATUS status;
    if (!QueryServiceStatus(service_.Get(), &status)) {
        return GetLastError();
    }
    *state = StateOf(status.dwCurrentState);
    return ERROR_SUCCESS;
}

uint32_t DriverService::Install(bool* changed) {
    *changed = false;
    if (GetFileAttributesW(DriverFile().c_str()) == INVALID_FILE_ATTRIBUTES) {
        return GetLastError();
    }
    const std::wstring path = ImagePath();
    const uint32_t error = Open();
    if (error == ERROR_SERVICE_DOES_NOT_EXIST) {
        service_.Reset(CreateServiceW(manager_.Get(), kServiceName, kDisplayName,
                                      SERVICE_ALL_ACCESS, SERVICE_KERNEL_DRIVER,
                                      SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL, path.c_str(),
                                      nullptr, nullptr, nullptr, nullptr, nullptr));
        *changed = service_.Valid();
        return *changed ? ERROR_SUCCESS : GetLastError();
    }
    if (error != ERROR_SUCCESS) {
        return error;
    }
    std::vector<uint8_t> buffer(8192);
    auto* config = reinterpret_cast<QUERY_SERVICE_CONFIGW*>(buffer.data());
    DWORD needed = 0;
    if (QueryServiceConfigW(service_.Get(), config, static_cast<DWORD>(buffer.size()), &needed) &&
        lstrcmpiW(config->lpBinaryPathName, path.c_str()) == 0) {
        return ERROR_SUCCESS;
    }
    if (!ChangeServiceConfigW(service_.Get(), SERVICE_NO_CHANGE, SERVICE_NO_CHANGE,
                              SERVICE_NO_CHANGE, path.c_str(), nullptr, nullptr, nullptr, nullptr,
                              nullptr, nullptr)) {
        return GetLastError();
    }
    *changed = true;
    return ERROR_SUCCESS;
}

uint32_t DriverService::Uninstall() {
    const uint32_t error = Open();
    if (error != ERROR_SUCCESS) {
        return error;
    }
    const DWORD result = DeleteService(service_.Get()) ? ERROR_SUCCESS : GetLastError();
    service_.Reset(nullptr);
    return result;
}

uint32_t DriverService::StoreProfile(const Profile& profile) {
    frame::OwnedKey key;
    const uint32_t error = OpenParameters(key);
    return error != ERROR_SUCCESS ? error
                                  : static_cast<uint32_t>(RegSetValueExW(
                                        key.Get(), kProfileValue, 0, REG_BINARY,
                                        reinterpret_cast<const BYTE*>(&profile), sizeof profile));
}

uint32_t DriverService::StoreFlashFolder(const std::wstring& folder) {
    frame::OwnedKey key;
    const uint32_t error = OpenParameters(key);
    if (error != ERROR_SUCCESS) {
        return error;
    }
    if (folder.empty()) {
        return static_cast<uint32_t>(RegDeleteValueW(key.Get(), kFolderValue));
    }
    const std::wstring path = kKernelPrefix + folder;
    return static_cast<uint32_t>(RegSetValueExW(
        key.Get(), kFolderValue, 0, REG_SZ, reinterpret_cast<const BYTE*>(path.c_str()),
        static_cast<DWORD>((path.size() + 1) * sizeof path[0])));
}

uint32_t DriverService::Start() {
    const uint32_t error = Open();
    if (error != ERROR_SUCCESS) {
        return error;
    }
    return StartServiceW(service_.Get(), 0, nullptr) ? ERROR_SUCCESS : GetLastError();
}

uint32_t DriverService::Stop() {
    const uint32_t error = Open();
    if (error != ERROR_SUCCESS) {
        return error;
    }
    SERVICE_STATUS status;
    return ControlService(service_.Get(), SERVICE_CONTROL_STOP, &status) ? ERROR_SUCCESS
                                                                         : GetLastError();
}

uint32_t DriverService::WaitFor(ServiceState wanted, std::chrono::milliseconds atMost,
                                ServiceState* state) {
    const auto end = std::chrono::steady_clock::now() + atMost;
    for (;;) {
        const uint32_t error = State(state);
        if (error != ERROR_SUCCESS || *state == wanted) {
            return error;
        }
        if (std::chrono::steady_clock::now() >= end) {
            return ERROR_TIMEOUT;
        }
        ::Sleep(kPollMilliseconds);
    }
}

}  // namespace vxemu
