// A copy of the library for tests of its load and unload, and a gate for processes that load it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <span>
#include <string>

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

// Lets loaders load at one moment.
class LoadGate {
  public:
    LoadGate();
    ~LoadGate();
    LoadGate(const LoadGate&) = delete;
    LoadGate& operator=(const LoadGate&) = delete;

    // Waits until so many loaders stand before the gate, and lets them through.
    void Open(int loaders);
    // The loader's side of it.
    static void Wait();

  private:
    HANDLE waiting_;
    HANDLE open_;
};

}  // namespace support
