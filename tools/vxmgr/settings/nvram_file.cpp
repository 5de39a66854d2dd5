#include "vxmgr/settings/nvram_file.h"

#include <filesystem>
#include <random>
#include <system_error>

#include "common/console.h"
#include "vxmgr/app/files.h"
#include "vxmgr/settings/nvram_document.h"
#include "vxmgr/settings/nvram_text.h"

namespace vxmgr {
namespace {

constexpr size_t kLongestFile = size_t{1} << 20;
constexpr uint32_t kKeepBlock = 0;  // mode of the library's reader: lines change the block at hand

std::string_view AsText(const std::vector<uint8_t>& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

[[noreturn]] void Refuse(Invocation& invocation, const std::string& path, const std::string& text) {
    invocation.Fail(ExitCode::Refused, path + ": " + text, "nothing was changed");
}

// What a port keeps when it takes the settings of another one.
void KeepIdentity(const PortNvram& own, std::vector<uint8_t>& block) {
    for (const NvramVariable& variable : own.map.variables) {
        if (variable.role == NvramRole::Identity) {
            SetValue(block, variable, ValueOf(own.bytes, variable));
        }
    }
    MakeChecksum(own.map.kind, block);
}

uint16_t ChipOf(const PortNvram& nvram) {
    const auto& chip = nvram.ItsPort().chip;
    return chip ? chip->deviceId : uint16_t{0};
}

void CheckFit(Invocation& invocation, const PortNvram& nvram, const std::string& path,
              const NvramDocument& document) {
    const uint16_t chip = ChipOf(nvram);
    if (document.origin.chip != chip) {
        Refuse(invocation, path,
               "it is for chip " + Hex(document.origin.chip, 4) + ", the port has " + Hex(chip, 4));
    }
    if (document.block.size() != nvram.bytes.size()) {
        Refuse(invocation, path,
               "its block has " + std::to_string(document.block.size()) + " bytes, the port's " +
                   std::to_string(nvram.bytes.size()));
    }
}

void CheckOwner(Invocation& invocation, const PortNvram& nvram, const std::string& path,
                const DocumentPort& origin) {
    const auto& port = nvram.ItsPort().port;
    if (!port || origin.portName != Wwn::Of(port->portName)) {
        invocation.Fail(ExitCode::Refused,
                        path + ": it is of port " + origin.portName.Colons() +
                            ", serial:" + origin.serial + ", not of the selected one",
                        "--as-port takes its settings; names and board IDs stay");
    }
}

void CheckReadOnly(Invocation& invocation, const PortNvram& nvram, const std::string& path,
                   const std::vector<uint8_t>& block) {
    for (const NvramChange& change : DifferenceOf(nvram.map, nvram.bytes, block).changes) {
        if (change.variable->readOnly) {
            Refuse(invocation, path,
                   change.variable->name + " differs, which is read-only on this chip family");
        }
    }
}

// A file that goes with the scope.
class ScratchFile {
  public:
    ScratchFile() : path_(Folder() / Name()) {}
    ~ScratchFile() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    std::string Path() const {
        const std::u8string text = path_.u8string();
        return {text.begin(), text.end()};
    }

  private:
    static std::filesystem::path Folder() {
        std::error_code ignored;  // no such folder: the file cannot be written, which is reported
        return std::filesystem::temp_directory_path(ignored);
    }
    static std::string Name() {
        return "vxmgr-" + std::to_string(std::random_device()()) + ".nvram";
    }

    std::filesystem::path path_;
};

// The library's own text of the block, which shows the names that it knows.
std::string ModelText(Invocation& invocation, const PortNvram& nvram) {
    const ScratchFile model;
    SaveNvramText(invocation, nvram, model.Path());
    return std::string(AsText(LoadFile(invocation, model.Path(), kLongestFile)));
}

std::vector<uint8_t> ReadText(Invocation& invocation, const PortNvram& nvram,
                              const std::string& path, bool withReadOnly) {
    std::vector<uint8_t> block = nvram.bytes;
    if (ReadNVRamFile(console::ToSystemCodePage(path).c_str(), block.data(), kKeepBlock,
                      withReadOnly ? 1 : 0) == 0) {
        invocation.Fail(ExitCode::Failed, path + " cannot be read");
    }
    return block;
}

// Read-only variables keep their values in a block that is to be written.
std::vector<uint8_t> BlockOfText(Invocation& invocation, const PortNvram& nvram,
                                 const std::string& path, FileUse use) {
    std::vector<uint8_t> asked = ReadText(invocation, nvram, path, true);
    if (use == FileUse::Compare) {
        return asked;
    }
    std::vector<uint8_t> block = ReadText(invocation, nvram, path, false);
    const std::string kept =
        TextsJoined(DifferenceOf(nvram.map, block, asked).changes, ", ",
                    [](const NvramChange& change) { return change.variable->name; });
    if (!kept.empty()) {
        invocation.Warn("read-only variables keep their values: " + kept);
    }
    MakeChecksum(nvram.map.kind, block);
    return block;
}

std::vector<uint8_t> BlockOfDocument(Invocation& invocation, const PortNvram& nvram,
                                     const std::string& path, std::string_view text, FileUse use) {
    NvramDocument document = ReadNvramDocument(text, nvram.map);
    CheckFit(invocation, nvram, path, document);
    if (use == FileUse::Compare) {
        return std::move(document.block);
    }
    if (invocation.Given().Has("as-port")) {
        KeepIdentity(nvram, document.block);
    } else {
        CheckOwner(invocation, nvram, path, document.origin.port);
    }
    CheckReadOnly(invocation, nvram, path, document.block);
    return std::move(document.block);
}

}  // namespace

std::vector<uint8_t> LoadNvramFile(Invocation& invocation, const PortNvram& nvram, FileUse use) {
    const std::string path = invocation.Given().Text("FILE");
    const std::vector<uint8_t> bytes = LoadFile(invocation, path, kLongestFile);
    try {
        if (LooksLikeDocument(AsText(bytes))) {
            return BlockOfDocument(invocation, nvram, path, AsText(bytes), use);
        }
        if (nvram.map.kind != NvramKind::Classic) {
            throw DocumentError{"it is no document, and this chip's blocks have no text form"};
        }
        if (use == FileUse::Write && !nvram.IsWhole()) {
            throw DocumentError{
                "a text does not hold the whole block, and the port's own is damaged"};
        }
        CheckNvramText(AsText(bytes), ModelText(invocation, nvram));
        return BlockOfText(invocation, nvram, path, use);
    } catch (const DocumentError& error) {
        Refuse(invocation, path, error.text);
    }
}

void SaveNvramDocument(Invocation& invocation, const PortNvram& nvram, const std::string& path) {
    const Port& port = nvram.ItsPort();
    NvramOrigin origin;
    origin.port.serial = port.Serial();
    origin.chip = ChipOf(nvram);
    if (port.port) {
        origin.port.portName = Wwn::Of(port.port->portName);
    }
    if (port.node) {
        origin.port.nodeName = Wwn::Of(port.node->nodeName);
    }
    const std::string text = NvramDocumentText(origin, nvram.map, nvram.bytes);
    SaveFile(invocation, path, {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

void SaveNvramText(Invocation& invocation, const PortNvram& nvram, const std::string& path) {
    if (nvram.map.kind != NvramKind::Classic) {
        invocation.Fail(ExitCode::NotSupported, "this chip's blocks have no text form",
                        "leave out --text: the document has every variable");
    }
    ReplaceFile(invocation, path, [&](const std::string& temporary) {
        if (WriteNVRamFile(nvram.bytes.data(), console::ToSystemCodePage(temporary).c_str()) == 0) {
            invocation.Fail(ExitCode::Failed, path + " cannot be written", "is the disk full?");
        }
    });
}

}  // namespace vxmgr
