#include "support/child_process.h"

#include <cstdio>
#include <iostream>
#include <map>
#include <string_view>

namespace support {

namespace {

constexpr std::string_view kRoleOption = "--role=";

// A child that crashes ends at once, with the exception as its exit code and without a debugger.
LONG WINAPI EndAtCrash(EXCEPTION_POINTERS*) {
    return EXCEPTION_EXECUTE_HANDLER;
}

std::map<std::string, Role>& Roles() {
    static std::map<std::string, Role> roles;
    return roles;
}

}  // namespace

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

    char program[MAX_PATH];
    GetModuleFileNameA(nullptr, program, sizeof program);
    std::string command = "\"";
    command.append(program).append("\" ").append(kRoleOption).append(role);
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = childInput;
    startup.hStdOutput = childOutput;
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    if (!CreateProcessA(program, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &startup, &process_)) {
        fprintf(stderr, "cannot start the role %s: error %lu\n", role, GetLastError());
    }
    CloseHandle(childInput);
    CloseHandle(childOutput);
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

void ChildProcess::Kill() {
    TerminateProcess(process_.hProcess, 99);
    WaitForSingleObject(process_.hProcess, INFINITE);
}

DWORD ChildProcess::Finish() {
    if (process_.hProcess == nullptr) {
        return 0;
    }
    CloseHandle(toChild_);
    DWORD code = 0;
    if (WaitForSingleObject(process_.hProcess, 60000) == WAIT_OBJECT_0) {
        GetExitCodeProcess(process_.hProcess, &code);
    } else {
        Kill();
        code = WAIT_TIMEOUT;
    }
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
    process_ = {};
    return code;
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
