// A file that a command makes for somebody: it is not there before it is whole, and one that is
// there already is only replaced when that was asked for.
#pragma once

#include <cstdio>
#include <functional>
#include <span>

#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

inline constexpr Argument kForceArgument =
    FlagOption("--force", "replace the file when it is there already");

class NewFile {
  public:
    // What it is in messages.
    NewFile(Invocation& invocation, std::string path, std::FILE* stream)
        : invocation_(invocation), path_(std::move(path)), stream_(stream) {}
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    bool Write(std::span<const uint8_t> bytes);
    // Ends the command when it was not written whole, and on the disk.
    void Finish();
    [[noreturn]] void Fail();

  private:
    Invocation& invocation_;
    const std::string path_;
    std::FILE* stream_;
};

// Has the file of the argument FILE made; it gets its name when make returns. Ends the command
// before that when it cannot be made, or is there without --force.
void MakeNewFile(Invocation& invocation, const std::function<void(NewFile& file)>& make);

}  // namespace vxmgr
