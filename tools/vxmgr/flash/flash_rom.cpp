#include "vxmgr/flash/flash_rom.h"

#include "formats/sums.h"
#include "formats/version_numbers.h"
#include "vxmgr/app/code_text.h"

namespace vxmgr {
namespace {

using formats::kRomUnit;
using formats::RomData;

constexpr size_t kMostDevices = 64;

constexpr CodeText kCodeTypes[] = {
    {kBiosCode, "BIOS"},
    {1, "FCODE"},
    {2, "PA-RISC"},
    {3, "EFI"},
};

Sum ChecksumOf(Bytes rom, size_t length) {
    if (length == 0 || length > rom.size()) {
        return Sum::Bad;
    }
    const uint8_t sum = formats::ByteSum(Part(rom, 0, length));
    // An adapter that carries its identity over into an image leaves the byte before the checksum
    // out of the sum: what was read back from one is just as good.
    return sum == 0 || sum == rom[length - 2] ? Sum::Good : Sum::Bad;
}

std::vector<uint16_t> DevicesOf(Bytes data, const RomData& head) {
    std::vector<uint16_t> devices = {head.deviceId};
    size_t at = head.deviceList;
    while (at != 0 && Holds<uint16_t>(data, at) && devices.size() < kMostDevices) {
        const auto device = Padded<uint16_t>(Part(data, at));
        if (device == 0) {
            break;
        }
        if (device != head.deviceId) {
            devices.push_back(device);
        }
        at += sizeof device;
    }
    return devices;
}

std::string VersionOf(const RomData& data) {
    char text[8];
    formats::TextWriter writer(text);
    formats::WriteBootVersion(writer, data.majorRevision, data.revision);
    return text;
}

// Decodes the image at offset; a text tells why there is none.
std::string DecodeRom(Bytes bytes, size_t offset, RomImage* image) {
    const Bytes rom = Part(bytes, offset);
    if (rom.size() < formats::kShortestRom || !formats::BeginsRom(rom)) {
        return "no image begins";
    }
    const auto head = Padded<formats::RomHeader>(rom);
    if (!Holds<RomData>(rom, head.dataOffset)) {
        return "the image ends before its description";
    }
    const Bytes description = Part(rom, head.dataOffset);
    const auto data = Padded<RomData>(description);
    if (std::memcmp(data.mark, formats::kRomDataMark, sizeof data.mark) != 0 || data.length == 0) {
        return "the image has no description";
    }
    image->offset = offset;
    image->length = data.length * size_t{kRomUnit};
    if (image->length > rom.size()) {
        return "the image is longer than what there is";
    }
    image->codeType = data.codeType;
    image->version = VersionOf(data);
    image->vendorId = data.vendorId;
    image->devices = DevicesOf(Part(description, 0, image->length), data);
    image->last = (data.indicator & formats::kLastImage) != 0;
    if (data.codeType == kBiosCode) {
        image->checksum = ChecksumOf(Part(rom, 0, image->length), head.length * size_t{kRomUnit});
    }
    return {};
}

}  // namespace

const RomImage* RomChain::Bios() const {
    const auto found = std::ranges::find(images, kBiosCode, &RomImage::codeType);
    return found == images.end() ? nullptr : &*found;
}

std::string CodeTypeName(uint8_t codeType) {
    return TextOfCode(kCodeTypes, codeType, "other code");
}

RomChain DecodeRomChain(Bytes bytes) {
    RomChain chain;
    while (chain.problem.empty()) {
        RomImage image;
        const std::string problem = DecodeRom(bytes, chain.bytes, &image);
        if (!problem.empty()) {
            chain.problem = problem + " at byte " + std::to_string(chain.bytes) +
                            (chain.images.empty() ? "" : ", and none before is marked as the last");
            break;
        }
        chain.images.push_back(image);
        chain.bytes += image.length;
        if (image.last) {
            break;
        }
        if (chain.images.size() == formats::kLongestChain) {
            chain.problem = "none of the first " + std::to_string(formats::kLongestChain) +
                            " images is marked as the last";
        }
    }
    return chain;
}

}  // namespace vxmgr
