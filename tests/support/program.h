// Programs of the build as a user runs them: started with a command line, ended by themselves or by
// force, with everything that they printed.
#pragma once

#include <windows.h>

#include <string>

namespace support {

struct Ended {
    DWORD exit = 0;
    std::string out, err;
};

class Program {
  public:
    // name: the file beside the test program, e.g. "vxmgr.exe".
    Program(const std::string& name, const std::string& arguments);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void Kill();
    bool Running() const;
    // What it has printed so far.
    std::string Out() const;
    // Waits for the end; a program that does not end within a minute is a failure.
    Ended Wait();

  private:
    std::string arguments_;
    std::string outPath_;
    std::string errPath_;
    PROCESS_INFORMATION process_{};
};

// A file name of this run in the folder for temporary files, and the text of a file.
std::string ScratchPath(const std::string& suffix);
std::string TextOfFile(const std::string& path);

// Starts the program and waits for its end.
Ended Run(const std::string& name, const std::string& arguments);

}  // namespace support
