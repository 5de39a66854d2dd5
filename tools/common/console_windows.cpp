// clang-format off
#include <windows.h>
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
// clang-format on

#include <atomic>
#include <cstdlib>
#include <filesystem>

#include "console.h"
#include "frame/owned.h"
#include "status_codes.h"

namespace tools::console {
namespace {

std::string ToUtf8(const wchar_t* text, int length) {
    if (length == 0) {
        return {};
    }
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, length, result.data(), size, nullptr, nullptr);
    return result;
}

HANDLE HandleOf(std::FILE* stream) {
    const int descriptor = _fileno(stream);
    return descriptor < 0 ? INVALID_HANDLE_VALUE
                          : reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
}

std::atomic<void (*)(bool)> interruptNotify{nullptr};

BOOL WINAPI HandleControl(DWORD event) {
    void (*notify)(bool) = interruptNotify.load();
    if (notify == nullptr) {
        return FALSE;
    }
    notify(event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT);
    return TRUE;
}

}  // namespace

std::vector<std::string> CommandLineWords() {
    int count = 0;
    LPWSTR* words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> result;
    for (int i = 0; words != nullptr && i < count; ++i) {
        result.push_back(ToUtf8(words[i], static_cast<int>(wcslen(words[i]))));
    }
    LocalFree(words);
    return result;
}

bool IsConsole(std::FILE* stream) {
    DWORD mode = 0;
    return GetConsoleMode(HandleOf(stream), &mode) != FALSE;
}

bool IsElevated() {
    frame::OwnedObject token;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.Receive())) {
        return false;
    }
    TOKEN_ELEVATION elevation{};
    DWORD size = sizeof elevation;
    return GetTokenInformation(token.Get(), TokenElevation, &elevation, size, &size) &&
           elevation.TokenIsElevated != 0;
}

bool HasEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0';
}

bool EnableColor(std::FILE* stream) {
    constexpr DWORD kVirtualTerminal = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING
    DWORD mode = 0;
    return GetConsoleMode(HandleOf(stream), &mode) != FALSE &&
           SetConsoleMode(HandleOf(stream), mode | kVirtualTerminal) != FALSE;
}

size_t Width(std::FILE* stream) {
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (!GetConsoleScreenBufferInfo(HandleOf(stream), &info) ||
        info.srWindow.Right < info.srWindow.Left) {
        return 0;
    }
    return static_cast<size_t>(info.srWindow.Right - info.srWindow.Left) + 1;
}

bool Write(std::FILE* stream, const std::string& text) {
    if (IsConsole(stream)) {
        const std::wstring wide = ToWide(text);
        std::fflush(stream);
        DWORD written = 0;
        return WriteConsoleW(HandleOf(stream), wide.data(), static_cast<DWORD>(wide.size()),
                             &written, nullptr) != FALSE;
    }
    _setmode(_fileno(stream), _O_BINARY);
    return std::fwrite(text.data(), 1, text.size(), stream) == text.size() &&
           std::fflush(stream) == 0;
}

bool ReadLine(std::string* line) {
    line->clear();
    for (int c = std::getchar(); c != EOF; c = std::getchar()) {
        if (c == '\n') {
            return true;
        }
        if (c != '\r') {
            *line += static_cast<char>(c);
        }
    }
    return !line->empty();
}

std::FILE* CreateForWriting(const std::string& path, uint32_t* error) {
    frame::OwnedFile file(CreateFileW(ToWide(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                      CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.Valid()) {
        *error = GetLastError();
        return nullptr;
    }
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(file.Get()), _O_BINARY);
    std::FILE* stream = descriptor < 0 ? nullptr : _fdopen(descriptor, "wb");
    if (stream == nullptr) {
        *error = ERROR_TOO_MANY_OPEN_FILES;
    } else {
        file.Release();  // the stream's
    }
    return stream;
}

uint32_t CanBeReplaced(const std::string& path) {
    const DWORD attributes = GetFileAttributesW(ToWide(path).c_str());
    constexpr DWORD kInTheWay = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY;
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & kInTheWay) != 0
               ? ERROR_ACCESS_DENIED
               : ERROR_SUCCESS;
}

uint32_t Replace(const std::string& from, const std::string& to) {
    constexpr int kTries = 20;
    constexpr DWORD kBetween = 100;
    uint32_t error = ERROR_SUCCESS;
    for (int i = 0; i < kTries; ++i) {
        if (MoveFileExW(ToWide(from).c_str(), ToWide(to).c_str(), MOVEFILE_REPLACE_EXISTING)) {
            return ERROR_SUCCESS;
        }
        error = GetLastError();
        if (error != ERROR_ACCESS_DENIED && error != ERROR_SHARING_VIOLATION) {
            break;
        }
        Sleep(kBetween);
    }
    return error;
}

void Remove(const std::string& path) {
    DeleteFileW(ToWide(path).c_str());
}

uint32_t MakeFolder(const std::string& path) {
    std::error_code error;
    std::filesystem::create_directories(ToWide(path), error);
    return static_cast<uint32_t>(error.value());
}

std::string ToUtf8(const std::wstring& text) {
    return ToUtf8(text.data(), static_cast<int>(text.size()));
}

std::wstring ToWide(const std::string& text) {
    if (text.empty()) {
        return {};
    }
    const int length = static_cast<int>(text.size());
    const int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
    std::wstring result(static_cast<size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), length, result.data(), size);
    return result;
}

std::string ToSystemCodePage(const std::string& text) {
    const std::wstring wide = ToWide(text);
    const int length = static_cast<int>(wide.size());
    const int size =
        WideCharToMultiByte(CP_ACP, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, 0, wide.data(), length, result.data(), size, nullptr, nullptr);
    return result;
}

std::string SystemErrorText(uint32_t code) {
    wchar_t buffer[512];
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                  nullptr, code, 0, buffer, 512, nullptr);
    while (length > 0 && buffer[length - 1] <= L' ') {
        --length;
    }
    return length == 0 ? WindowsText(code) : ToUtf8(buffer, static_cast<int>(length));
}

void TrustOwnFoldersAlone() {
    SetDllDirectoryW(L"");  // not the current folder
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
}

void OnInterrupt(void (*notify)(bool closing)) {
    interruptNotify = notify;
    SetConsoleCtrlHandler(HandleControl, TRUE);
}

void ExitNow(int code) {
    std::fflush(nullptr);
    _exit(code);
}

}  // namespace tools::console
