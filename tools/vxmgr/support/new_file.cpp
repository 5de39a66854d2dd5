#include "vxmgr/support/new_file.h"

#include <io.h>

#include <filesystem>

#include "common/console.h"
#include "vxmgr/app/files.h"

namespace vxmgr {

NewFile::~NewFile() {
    if (stream_ != nullptr) {
        std::fclose(stream_);
    }
}

bool NewFile::Write(std::span<const uint8_t> bytes) {
    return std::fwrite(bytes.data(), 1, bytes.size(), stream_) == bytes.size();
}

void NewFile::Finish() {
    const bool whole =
        std::fflush(stream_) == 0 && std::ferror(stream_) == 0 && _commit(_fileno(stream_)) == 0;
    if (std::fclose(std::exchange(stream_, nullptr)) != 0 || !whole) {
        Fail();
    }
}

void NewFile::Fail() {
    invocation_.Fail(ExitCode::Failed, path_ + " cannot be written", "is the disk full?");
}

void MakeNewFile(Invocation& invocation, const std::function<void(NewFile& file)>& make) {
    const std::string path = invocation.Given().Text("FILE");
    std::error_code error;
    const std::filesystem::file_status status =
        std::filesystem::status(console::ToWide(path), error);
    if (std::filesystem::exists(status) && !std::filesystem::is_directory(status) &&
        !invocation.Given().Has("force")) {
        invocation.Fail(ExitCode::Refused, path + " is there already",
                        "give another name, or --force to replace it");
    }
    ReplaceFile(invocation, path, [&](const std::string& temporary) {
        uint32_t code = 0;
        std::FILE* const stream = console::CreateForWriting(temporary, &code);
        if (stream == nullptr) {
            invocation.Fail(code, path + " cannot be written");
        }
        NewFile file(invocation, path, stream);
        make(file);
        file.Finish();
    });
}

}  // namespace vxmgr
