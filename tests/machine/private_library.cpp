#include "machine/private_library.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <sstream>
#include <utility>

#include "machine/event_peer.h"
#include "machine/import_redirection.h"

namespace support {

namespace {

constexpr char kWaitingName[] = "vxt-waiting-loaders";
constexpr char kOpenName[] = "vxt-gate-for-loaders";

}  // namespace

PrivateLibrary::PrivateLibrary() {
    char path[MAX_PATH];
    GetModuleFileNameA(LibraryModule(), path, sizeof path);
    std::ostringstream original;
    original << std::ifstream(path, std::ios::binary).rdbuf();
    std::string bytes = original.str();
    for (const auto& [everybodys, ours] :
         {std::pair(support::kEventAreaName, kEventAreaName),
          std::pair(support::kFlashLockAreaName, kFlashLockAreaName)}) {
        const size_t at = bytes.find(std::string(everybodys) + '\0');
        if (at == std::string::npos) {
            ADD_FAILURE() << "the library does not name " << everybodys;
            return;
        }
        bytes.replace(at, strlen(ours), ours);
    }
    std::ofstream(Path(), std::ios::binary) << bytes;
}

std::span<uint8_t> SharedSection(HMODULE library) {
    auto* const base = reinterpret_cast<uint8_t*>(library);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_SECTION_HEADER* section = IMAGE_FIRST_SECTION(headers);
    for (int i = 0; i < headers->FileHeader.NumberOfSections; ++i, ++section) {
        if ((section->Characteristics & IMAGE_SCN_MEM_SHARED) != 0) {
            return {base + section->VirtualAddress, section->Misc.VirtualSize};
        }
    }
    ADD_FAILURE() << "the library shares no section";
    return {};
}

LoadGate::LoadGate()
    : waiting_(CreateSemaphoreA(nullptr, 0, 1000, kWaitingName)),
      open_(CreateSemaphoreA(nullptr, 0, 1000, kOpenName)) {}

LoadGate::~LoadGate() {
    CloseHandle(waiting_);
    CloseHandle(open_);
}

void LoadGate::Open(int loaders) {
    for (int i = 0; i < loaders; ++i) {
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(waiting_, 60000));
    }
    ReleaseSemaphore(open_, loaders, nullptr);
}

void LoadGate::Wait() {
    const HANDLE waiting = OpenSemaphoreA(SEMAPHORE_ALL_ACCESS, FALSE, kWaitingName);
    const HANDLE open = OpenSemaphoreA(SEMAPHORE_ALL_ACCESS, FALSE, kOpenName);
    ReleaseSemaphore(waiting, 1, nullptr);
    WaitForSingleObject(open, 60000);
    CloseHandle(open);
    CloseHandle(waiting);
}

}  // namespace support
