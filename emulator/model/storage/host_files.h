// Files that outlast the model, from its host.
#pragma once

#include <cstdint>

namespace vxemu {

enum class FileOpening : uint8_t { Existing, Fresh };
enum class FileFound : uint8_t { Opened, NotThere, Failed };

// Names are those of FlashFileName. Called only by requests that run alone, and by the model's
// start and end. A file is open to nobody else for writing.
struct HostFiles {
    void* context;
    FileFound (*open)(void* context, const char* name, FileOpening opening, void** file);
    uint64_t (*bytes)(void* context, void* file);
    // All of it, or false. What was written outlasts whoever wrote it once the call returns.
    bool (*read)(void* context, void* file, uint64_t offset, void* bytes, uint32_t length);
    bool (*write)(void* context, void* file, uint64_t offset, const void* bytes, uint32_t length);
    // An open file takes the place of the one of that name, which is closed.
    bool (*replace)(void* context, void* file, const char* name);
    // An open file goes; it is still to be closed.
    bool (*erase)(void* context, void* file);
    void (*close)(void* context, void* file);
};

}  // namespace vxemu
