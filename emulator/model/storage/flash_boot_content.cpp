// Boot code: a chain of PCI expansion ROM images, then erased flash.
#include "flash/region_rules.h"
#include "formats/rom_image.h"
#include "model/storage/flash_content.h"
#include "model/storage/nvram_content.h"

namespace vxemu {
namespace {

using formats::RomCode;
using properties::ChipTrait;

constexpr uint8_t kErased = 0xFF;
constexpr uint32_t kDataAt = 0x40;
constexpr uint32_t kTextAt = 0x60;
constexpr uint32_t kNvramMarkAt = 0x200;
constexpr uint32_t kNvramAt = kNvramMarkAt + formats::kNvramMarkLead;

// What the bytes behind the header's length are on an EFI image.
#pragma pack(push, 1)
struct EfiHeader {
    uint16_t signature;
    uint16_t units;
    uint32_t efiSignature;
    uint16_t subsystem;
    uint16_t machine;
    uint16_t compression;
};
static_assert(sizeof(EfiHeader) == 14);
#pragma pack(pop)

struct RomRow {
    RomCode code;
    uint8_t units;
    const char* name;
    formats::VersionNumbers version;  // 0: the adapter's option ROM version
};
constexpr RomRow kChain[] = {
    {RomCode::Bios, 64, "Emulated BIOS ", {}},
    {RomCode::Fcode, 32, "Emulated FCODE ", {{4, 11}}},
    {RomCode::Efi, 128, "Emulated EFI ", {{7, 24}}},
};

class Rom {
  public:
    Rom(const FlashOrigin& origin, const RomRow& row, bool last)
        : origin_(origin), row_(row), last_(last) {}

    uint32_t Bytes() const { return row_.units * formats::kRomUnit; }

    void Put(ByteWindow window) const {
        PutBody(window);
        if (!window.Part(Bytes() - 1, 1).Empty()) {
            window.PutRecord(Bytes() - 1, Checksum());
        }
    }

  private:
    formats::VersionNumbers Version() const { return BootVersion(origin_.Adapter(), row_.code); }

    // The byte before the checksum is left out of some sums, so it is 0.
    void PutBody(ByteWindow window) const {
        window.Pattern(0, Bytes() - 2, static_cast<uint32_t>(row_.code));
        window.Fill(Bytes() - 2, 2, 0);
        PutHeader(window);
        PutData(window);
        char text[32];
        const formats::VersionNumbers version = Version();
        formats::WriteBootVersion(formats::TextWriter(text).Text(row_.name), version.parts[0],
                                  version.parts[1]);
        window.PutRecord(kTextAt, text);
        if (row_.code == RomCode::Bios) {
            PutNvramBlock(window);
        }
    }

    void PutHeader(ByteWindow window) const {
        formats::RomHeader header = {};
        header.signature = formats::kRomSignature;
        header.length = row_.units;
        header.dataOffset = kDataAt;
        std::memcpy(header.subsystemMark, formats::kSubsystemMark, sizeof header.subsystemMark);
        header.subsystemVendor = origin_.Adapter().subsystemVendorId;
        window.PutRecord(0, header);
        if (row_.code == RomCode::Efi) {
            // EFI boot service driver for x64, not compressed.
            window.PutRecord(0,
                             EfiHeader{header.signature, row_.units, 0x00000EF1, 0x0B, 0x8664, 0});
        }
    }

    void PutData(ByteWindow window) const {
        const formats::VersionNumbers version = Version();
        formats::RomData data = {};
        std::memcpy(data.mark, formats::kRomDataMark, sizeof data.mark);
        data.vendorId = properties::kVendorId;
        data.deviceId = origin_.Adapter().deviceId;
        data.dataLength = sizeof data + sizeof(uint16_t);
        data.classCode[1] = 0x04;  // serial bus, Fibre Channel
        data.classCode[2] = 0x0C;
        data.length = row_.units;
        data.revision = static_cast<uint8_t>(version.parts[1]);
        data.majorRevision = static_cast<uint8_t>(version.parts[0]);
        data.codeType = static_cast<uint8_t>(row_.code);
        data.indicator = last_ ? formats::kLastImage : 0;
        window.PutRecord(kDataAt, data);
        window.Fill(kDataAt + sizeof data, sizeof(uint16_t), 0);
    }

    // Chips without numbered regions for it keep settings inside the boot code.
    void PutNvramBlock(ByteWindow window) const {
        const properties::Chip chip = properties::ChipOf(origin_.Adapter().deviceId);
        if (chip.Has(ChipTrait::RegionLayout) ||
            window.Part(kNvramMarkAt, formats::kNvramMarkLead + flash::kExtendedBlock).Empty()) {
            return;
        }
        window.Put(kNvramMarkAt, formats::kNvramMark, formats::kNvramMarkLead);
        const PortProfile* port = origin_.profile->ports;
        while (port->adapter != origin_.adapter) {
            ++port;  // every adapter has one
        }
        uint8_t block[flash::kExtendedBlock];
        FillNvram(origin_.Adapter(), *port, NvramKindOf(chip), block);
        window.Put(kNvramAt, block, flash::FlashNvramBytes(chip));
    }

    uint8_t Checksum() const {
        uint32_t sum = 0;
        ForEachPiece(
            Bytes(), [&](ByteWindow piece) { PutBody(piece); },
            [&](const uint8_t* bytes, uint32_t length) {
                for (uint32_t at = 0; at < length; ++at) {
                    sum += bytes[at];
                }
            });
        return static_cast<uint8_t>(0 - sum);
    }

    const FlashOrigin& origin_;
    const RomRow& row_;
    bool last_;
};

}  // namespace

formats::VersionNumbers BootVersion(const AdapterProfile& adapter, RomCode code) {
    for (const RomRow& row : kChain) {
        if (row.code == code && row.version != formats::VersionNumbers{}) {
            return row.version;
        }
    }
    return formats::ParseVersion(adapter.optionRomVersion);
}

void PutBootCode(const FlashOrigin& origin, bool biosAlone, uint32_t regionBytes,
                 ByteWindow window) {
    uint32_t at = 0;
    for (const RomRow& row : kChain) {
        const Rom rom(origin, row, biosAlone || &row == &kChain[std::size(kChain) - 1]);
        if (const ByteWindow part = window.Part(at, rom.Bytes()); !part.Empty()) {
            rom.Put(part);
        }
        at += rom.Bytes();
        if (biosAlone) {
            break;
        }
    }
    window.Fill(at, regionBytes - at, kErased);
}

}  // namespace vxemu
