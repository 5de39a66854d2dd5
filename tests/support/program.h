// Other processes: programs of the build as a user runs them, and the test program itself, started
// again to play a named role. They end by themselves or by force.
#pragma once

#include <windows.h>

#include <string>

namespace support {

class Process {
  public:
    Process() = default;
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    bool Running() const;
    void Kill();

  protected:
    // The handles are inherited, and closed here.
    void Start(std::string commandLine, HANDLE in, HANDLE out, HANDLE err);
    bool Started() const { return process_.hProcess != nullptr; }
    // The exit code; a process that does not end within a minute is a failure.
    DWORD AwaitEnd();

  private:
    std::string commandLine_;
    PROCESS_INFORMATION process_ = {};
};

struct Ended {
    DWORD exit = 0;
    std::string out, err;
};

// A program with a command line, and everything that it printed.
class Program : public Process {
  public:
    // name: the file beside the test program, e.g. "vxmgr.exe".
    Program(const std::string& name, const std::string& arguments);
    ~Program();

    // What it has printed so far.
    std::string Out() const;
    Ended Wait();

  private:
    std::string outPath_;
    std::string errPath_;
};

// Starts the program and waits for its end.
Ended Run(const std::string& name, const std::string& arguments);

// A file name of this run in the folder for temporary files, and the text of a file.
std::string ScratchPath(const std::string& suffix);
std::string TextOfFile(const std::string& path);

using Role = int (*)();

// Registers a role before main runs:  const RoleEntry kWatcher("watcher", &RunWatcher);
struct RoleEntry {
    RoleEntry(const char* name, Role role);
};

// Runs the role that the command line names; false when it names none.
bool RunRole(int argumentCount, char** arguments, int* exitCode);

// This program in a role. The two sides talk in lines over the child's standard input and output.
class ChildProcess : public Process {
  public:
    explicit ChildProcess(const char* role);
    ~ChildProcess();

    // Sends one line and returns the child's answer, empty when the child is gone.
    std::string Ask(const std::string& line) { return Send(line) ? Answer() : std::string(); }
    // The two halves, for children that are to work side by side.
    bool Send(const std::string& line);
    std::string Answer();
    // Ends the conversation and returns the exit code.
    DWORD Finish();

  private:
    HANDLE toChild_ = nullptr;
    HANDLE fromChild_ = nullptr;
};

// The child's side: answers each line that comes until the input ends.
int AnswerLines(std::string (*answer)(const std::string& line));

}  // namespace support
