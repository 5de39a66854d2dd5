// Option ROM images and firmware images, the adapter's own and the caller's, that hold anything.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "flash/carried_identity.h"
#include "flash/version_text.h"
#include "formats/firmware_image.h"
#include "formats/rom_image.h"
#include "require.h"

namespace {

using Bytes = std::vector<uint8_t>;

// The marks that random bytes hardly ever have, put where the input says.
Bytes WithMarks(const uint8_t* data, size_t size, uint8_t places) {
    Bytes bytes(data, data + size);
    const auto put = [&](size_t at, const void* mark, size_t length) {
        if (at + length <= bytes.size()) {
            std::memcpy(bytes.data() + at, mark, length);
        }
    };
    const uint16_t signature = formats::kRomSignature;
    put(0, &signature, sizeof signature);
    const size_t where = size > 25 ? bytes[24] + bytes[25] * size_t{256} : 0;
    put(where, formats::kRomDataMark, sizeof formats::kRomDataMark);
    if ((places & 1) != 0) {
        put(28, formats::kSubsystemMark, sizeof formats::kSubsystemMark);
    }
    if ((places & 2) != 0) {
        put(size / 2, formats::kNvramMark, sizeof formats::kNvramMark);
    }
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 4) {
        return 0;
    }
    const size_t split = (data[0] + data[1] * size_t{256}) % (size - 3);
    const uint8_t places = data[2];
    const Bytes image = WithMarks(data + 3, split, places);
    const Bytes current = WithMarks(data + 3 + split, size - 3 - split, places >> 2);

    // A flash that has nothing to carry over changes nothing.
    Bytes whole = image;
    flash::CarryOverIdentity(whole, current);
    Bytes boot = image;
    flash::CarryOverBootIdentity(boot, current, (places & 0x10) != 0 ? 512 : 256);
    Bytes same = image;
    Require(flash::CarryOverIdentity(same, {}) && flash::CarryOverBootIdentity(same, {}, 256) &&
            same == image);

    for (const formats::RomCode code :
         {formats::RomCode::Bios, formats::RomCode::Fcode, formats::RomCode::Efi}) {
        const auto found = formats::FindImage(image, code);
        Require(!found || (found->start < image.size() && found->length != 0 &&
                           found->codeType == static_cast<uint8_t>(code)));
    }
    for (const flash::VersionKindRow& row : flash::kVersionKinds) {
        flash::VersionText text;
        flash::FormatVersion(image, row.kind, text);
        flash::VersionRecord record;
        flash::FormatVersionRecord(text, row.letter, record);
        Require(record[sizeof record - 1] == 0);
    }
    const size_t region = data[0] * size_t{16};
    if (formats::CheckFirmware(image, region) == formats::FirmwareCheck::Good) {
        const size_t words = formats::FirmwareWord(image, formats::kSegmentLengthWord);
        Require(words * 4 <= std::min(region, image.size()));
    }
    return 0;
}
