#include "support/program.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string_view>

namespace support {
namespace {

constexpr DWORD kPatienceMs = 60000;
constexpr std::string_view kRoleOption = "--role=";

std::string OwnPath() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    return path;
}

// Of a program beside this one.
std::string CommandLine(const std::string& name, const std::string& arguments) {
    const std::string own = OwnPath();
    return "\"" + own.substr(0, own.find_last_of('\\') + 1) + name + "\" " + arguments;
}

HANDLE Inheritable(const std::string& path, DWORD access, DWORD disposition) {
    SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, TRUE};
    return CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &attributes,
                       disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// A child that crashes ends at once, with the exception as its exit code and without a debugger.
LONG WINAPI EndAtCrash(EXCEPTION_POINTERS*) {
    return EXCEPTION_EXECUTE_HANDLER;
}

std::map<std::string, Role>& Roles() {
    static std::map<std::string, Role> roles;
    return roles;
}

}  // namespace

void Process::Start(std::string commandLine, HANDLE in, HANDLE out, HANDLE err) {
    commandLine_ = std::move(commandLine);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = in;
    startup.hStdOutput = out;
    startup.hStdError = err;
    // Wine on a busy machine fails now and then to start a program, with an internal error of its
    // own, before anything of the program has run.
    BOOL started = FALSE;
    for (int attempt = 0; !started && attempt < 5; ++attempt) {
        std::string line = commandLine_;
        started = CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                 &startup, &process_);
        if (!started && GetLastError() != ERROR_INTERNAL_ERROR) {
            break;
        }
    }
    if (!started) {
        ADD_FAILURE() << "does not start: " << commandLine_ << ", error " << GetLastError();
    }
    for (const HANDLE handle : {in, out, err}) {
        CloseHandle(handle);
    }
}

Process::~Process() {
    if (Started()) {
        if (Running()) {
            Kill();
        }
        CloseHandle(process_.hThread);
        CloseHandle(process_.hProcess);
    }
}

bool Process::Running() const {
    return WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT;
}

void Process::Kill() {
    TerminateProcess(process_.hProcess, 99);
    WaitForSingleObject(process_.hProcess, kPatienceMs);
}

DWORD Process::AwaitEnd() {
    DWORD exit = 0;
    if (!Started()) {
        return exit;
    }
    if (WaitForSingleObject(process_.hProcess, kPatienceMs) != WAIT_OBJECT_0) {
        ADD_FAILURE() << "does not end: " << commandLine_;
        Kill();
    }
    GetExitCodeProcess(process_.hProcess, &exit);
    return exit;
}

std::string ScratchPath(const std::string& suffix) {
    static std::atomic<int> number = 0;
    char folder[MAX_PATH] = {};
    GetTempPathA(MAX_PATH, folder);
    return std::string(folder) + "vxmgmt_test_" + std::to_string(GetCurrentProcessId()) + "_" +
           std::to_string(++number) + suffix;
}

std::string TextOfFile(const std::string& path) {
    // In one piece: a stream's own buffer makes a call of every 512 bytes, which Wine takes long
    // for.
    std::ifstream stream(path, std::ios::binary | std::ios::ate);
    std::string text(stream ? static_cast<size_t>(stream.tellg()) : 0, '\0');
    stream.seekg(0);
    stream.read(text.data(), std::ssize(text));
    return text;
}

Program::Program(const std::string& name, const std::string& arguments)
    : outPath_(ScratchPath(".out")), errPath_(ScratchPath(".err")) {
    Start(CommandLine(name, arguments), Inheritable("NUL", GENERIC_READ, OPEN_EXISTING),
          Inheritable(outPath_, GENERIC_WRITE, CREATE_ALWAYS),
          Inheritable(errPath_, GENERIC_WRITE, CREATE_ALWAYS));
}

Program::~Program() {
    if (Started() && Running()) {
        Kill();
    }
    DeleteFileA(outPath_.c_str());
    DeleteFileA(errPath_.c_str());
}

std::string Program::Out() const {
    return TextOfFile(outPath_);
}

Ended Program::Wait() {
    const DWORD exit = AwaitEnd();
    return {exit, TextOfFile(outPath_), TextOfFile(errPath_)};
}

Ended Run(const std::string& name, const std::string& arguments) {
    return Program(name, arguments).Wait();
}

RoleEntry::RoleEntry(const char* name, Role role) {
    Roles()[name] = role;
}

bool RunRole(int argumentCount, char** arguments, int* exitCode) {
    if (argumentCount < 2 || !std::string_view(arguments[1]).starts_with(kRoleOption)) {
        return false;
    }
    SetUnhandledExceptionFilter(&EndAtCrash);
    const auto role = Roles().find(arguments[1] + kRoleOption.size());
    *exitCode = role == Roles().end() ? 4 : role->second();
    return true;
}

ChildProcess::ChildProcess(const char* role) {
    SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
    HANDLE childInput = nullptr;
    HANDLE childOutput = nullptr;
    CreatePipe(&childInput, &toChild_, &inherit, 0);
    CreatePipe(&fromChild_, &childOutput, &inherit, 0);
    // Our own ends must stay here, or the child would hold its own input open.
    SetHandleInformation(toChild_, HANDLE_FLAG_INHERIT, 0);
    SetHandleInformation(fromChild_, HANDLE_FLAG_INHERIT, 0);
    HANDLE error = nullptr;
    DuplicateHandle(GetCurrentProcess(), GetStdHandle(STD_ERROR_HANDLE), GetCurrentProcess(),
                    &error, 0, TRUE, DUPLICATE_SAME_ACCESS);
    Start("\"" + OwnPath() + "\" " + std::string(kRoleOption) + role, childInput, childOutput,
          error);
}

ChildProcess::~ChildProcess() {
    Finish();
    CloseHandle(fromChild_);
}

bool ChildProcess::Send(const std::string& line) {
    const std::string sent = line + "\n";
    DWORD count = 0;
    return WriteFile(toChild_, sent.data(), static_cast<DWORD>(sent.size()), &count, nullptr);
}

std::string ChildProcess::Answer() {
    DWORD count = 0;
    std::string answer;
    for (char letter; ReadFile(fromChild_, &letter, 1, &count, nullptr) && count == 1;) {
        if (letter == '\n') {
            break;
        }
        if (letter != '\r') {
            answer += letter;
        }
    }
    return answer;
}

DWORD ChildProcess::Finish() {
    CloseHandle(std::exchange(toChild_, nullptr));
    return AwaitEnd();
}

int AnswerLines(std::string (*answer)(const std::string& line)) {
    for (std::string line; std::getline(std::cin, line);) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        std::cout << answer(line) << std::endl;
    }
    return 0;
}

}  // namespace support
