// Other processes: the test program starts itself again to play a named role. The two sides talk
// in lines over the child's standard input and output.
#pragma once

#include <windows.h>

#include <string>

namespace support {

using Role = int (*)();

// Registers a role before main runs:  const RoleEntry kWatcher("watcher", &RunWatcher);
struct RoleEntry {
    RoleEntry(const char* name, Role role);
};

// Runs the role that the command line names; false when it names none.
bool RunRole(int argumentCount, char** arguments, int* exitCode);

class ChildProcess {
  public:
    explicit ChildProcess(const char* role);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Sends one line and returns the child's answer, empty when the child is gone.
    std::string Ask(const std::string& line) { return Send(line) ? Answer() : std::string(); }
    // The two halves, for children that are to work side by side.
    bool Send(const std::string& line);
    std::string Answer();
    void Kill();
    // Ends the conversation and returns the exit code.
    DWORD Finish();

  private:
    PROCESS_INFORMATION process_ = {};
    HANDLE toChild_ = nullptr;
    HANDLE fromChild_ = nullptr;
};

// The child's side: answers each line that comes until the input ends.
int AnswerLines(std::string (*answer)(const std::string& line));

}  // namespace support
