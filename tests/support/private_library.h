// A copy of the library for tests of its load and unload, and processes that load it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <span>
#include <string>

#include "support/child_process.h"
#include "support/scratch_file.h"

namespace support {

// A copy of the library's file with names of its own for the two shared mappings: the library that
// the test program itself has loaded holds neither open and has no slot there.
class PrivateLibrary {
  public:
    static constexpr char kEventAreaName[] = "Global\\VXTST_GetAENMapFile";
    static constexpr char kFlashLockAreaName[] = "Global\\VXTST_FlashUpdateLocksMapFile";

    PrivateLibrary();
    const std::string& Path() const { return file_.Path(); }

  private:
    ScratchFile file_;
};

// The data of a loaded library that all processes loading the same file share.
std::span<uint8_t> SharedSection(HMODULE library);

// A process that loads and unloads a private library when it is told to.
class LibraryLoader {
  public:
    LibraryLoader() : child_("library-loader") {}
    // "loaded", or "error " and the Windows error.
    std::string Load(const PrivateLibrary& library) { return child_.Ask("load " + library.Path()); }
    // Loads when the gate opens; Loaded() waits for it.
    void LoadAtGate(const PrivateLibrary& library) {
        child_.Send("load-at-gate " + library.Path());
    }
    std::string Loaded() { return child_.Answer(); }
    void Unload() { child_.Ask("unload"); }
    // Handles that the process has open.
    uint32_t Handles() { return static_cast<uint32_t>(std::stoul("0" + child_.Ask("handles"))); }
    uint32_t ProcessId() { return static_cast<uint32_t>(std::stoul("0" + child_.Ask("process"))); }
    void Kill() { child_.Kill(); }
    DWORD Finish() { return child_.Finish(); }

  private:
    ChildProcess child_;
};

// Lets loaders load at one moment.
class LoadGate {
  public:
    LoadGate();
    ~LoadGate();
    LoadGate(const LoadGate&) = delete;
    LoadGate& operator=(const LoadGate&) = delete;

    // Waits until so many loaders stand before the gate, and lets them through.
    void Open(int loaders);

  private:
    HANDLE waiting_;
    HANDLE open_;
};

}  // namespace support
