#include "vxmgr/app/files.h"

#include <filesystem>
#include <fstream>

#include "common/console.h"

namespace vxmgr {
namespace {

namespace fs = std::filesystem;

fs::path PathOf(const std::string& text) {
    return fs::path(std::u8string(text.begin(), text.end()));
}

// Removes the temporary file unless it got its final name.
class Temporary {
  public:
    explicit Temporary(std::string path) : path_(std::move(path)) {}
    ~Temporary() {
        std::error_code ignored;
        fs::remove(PathOf(path_), ignored);
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    const std::string& Path() const { return path_; }

  private:
    const std::string path_;
};

}  // namespace

void ReplaceFile(Invocation& invocation, const std::string& path,
                 const std::function<void(const std::string& temporary)>& make) {
    std::error_code error;
    if (fs::is_directory(PathOf(path), error)) {
        invocation.Fail(ExitCode::Usage, path + " is a folder", "name a file");
    }
    const Temporary temporary(path + ".part");
    make(temporary.Path());
    invocation.CheckStop();
    invocation.Require(console::Replace(temporary.Path(), path), path + " cannot be written");
}

void SaveFile(Invocation& invocation, const std::string& path, Bytes bytes) {
    ReplaceFile(invocation, path, [&](const std::string& temporary) {
        uint32_t error = 0;
        std::FILE* file = console::CreateForWriting(temporary, &error);
        if (file == nullptr) {
            invocation.Fail(error, path + " cannot be written");
        }
        const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
        if (std::fclose(file) != 0 || !written) {
            invocation.Fail(ExitCode::Failed, path + " cannot be written", "is the disk full?");
        }
    });
}

uint64_t FileSize(const std::string& path) {
    std::error_code error;
    const uintmax_t size = fs::file_size(PathOf(path), error);
    return error ? 0 : size;
}

std::vector<uint8_t> LoadFile(Invocation& invocation, const std::string& path, size_t most) {
    std::ifstream file(PathOf(path), std::ios::binary);
    if (!file) {
        invocation.Fail(ExitCode::NotFound, path + " cannot be read");
    }
    std::vector<uint8_t> bytes(most + 1);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<size_t>(file.gcount()));
    if (bytes.size() > most) {
        invocation.Fail(ExitCode::Usage,
                        path + " is longer than " + std::to_string(most) + " bytes");
    }
    return bytes;
}

}  // namespace vxmgr
