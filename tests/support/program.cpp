#include "support/program.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <sstream>

namespace support {
namespace {

constexpr DWORD kPatienceMs = 60000;

std::string ProgramFolder() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    const std::string whole = path;
    return whole.substr(0, whole.find_last_of('\\') + 1);
}

HANDLE Inheritable(const std::string& path, DWORD access, DWORD disposition) {
    SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, TRUE};
    return CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &attributes,
                       disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

}  // namespace

std::string ScratchPath(const std::string& suffix) {
    static std::atomic<int> number = 0;
    char folder[MAX_PATH] = {};
    GetTempPathA(MAX_PATH, folder);
    return std::string(folder) + "vxmgmt_test_" + std::to_string(GetCurrentProcessId()) + "_" +
           std::to_string(++number) + suffix;
}

std::string TextOfFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

Program::Program(const std::string& name, const std::string& arguments)
    : arguments_(name + " " + arguments),
      outPath_(ScratchPath(".out")),
      errPath_(ScratchPath(".err")) {
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = Inheritable("NUL", GENERIC_READ, OPEN_EXISTING);
    startup.hStdOutput = Inheritable(outPath_, GENERIC_WRITE, CREATE_ALWAYS);
    startup.hStdError = Inheritable(errPath_, GENERIC_WRITE, CREATE_ALWAYS);
    std::string line = "\"" + ProgramFolder() + name + "\" " + arguments;
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                        &process_)) {
        ADD_FAILURE() << name << " does not start: error " << GetLastError();
    }
    for (const HANDLE handle : {startup.hStdInput, startup.hStdOutput, startup.hStdError}) {
        CloseHandle(handle);
    }
}

Program::~Program() {
    if (process_.hProcess != nullptr) {
        if (Running()) {
            Kill();
        }
        CloseHandle(process_.hThread);
        CloseHandle(process_.hProcess);
    }
    DeleteFileA(outPath_.c_str());
    DeleteFileA(errPath_.c_str());
}

void Program::Kill() {
    TerminateProcess(process_.hProcess, 99);
    WaitForSingleObject(process_.hProcess, kPatienceMs);
}

bool Program::Running() const {
    return WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT;
}

std::string Program::Out() const {
    return TextOfFile(outPath_);
}

Ended Program::Wait() {
    Ended ended;
    if (process_.hProcess == nullptr) {
        return ended;
    }
    if (WaitForSingleObject(process_.hProcess, kPatienceMs) != WAIT_OBJECT_0) {
        ADD_FAILURE() << "does not end: " << arguments_;
        Kill();
    }
    GetExitCodeProcess(process_.hProcess, &ended.exit);
    ended.out = TextOfFile(outPath_);
    ended.err = TextOfFile(errPath_);
    return ended;
}

Ended Run(const std::string& name, const std::string& arguments) {
    return Program(name, arguments).Wait();
}

}  // namespace support
