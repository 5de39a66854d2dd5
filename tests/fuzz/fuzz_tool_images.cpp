// Files and adapter contents that the manager takes apart: flash images and product data that hold
// anything.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "require.h"
#include "vxmgr/flash/flash_image.h"
#include "vxmgr/settings/vpd_pci.h"
#include "vxmgr/sfp/sfp_identity.h"

namespace {

using vxmgr::Bytes;

bool LiesIn(Bytes part, Bytes whole) {
    return part.empty() || (part.data() >= whole.data() &&
                            part.data() + part.size() <= whole.data() + whole.size());
}

void DecodeProductData(Bytes bytes) {
    const vxmgr::PciVpd vpd = vxmgr::DecodeVpd(bytes);
    Require(vpd.used <= bytes.size());
    for (const vxmgr::VpdItem& item : vpd.items) {
        Require(LiesIn(item.data, bytes));
        Require(item.data.empty() || bytes.data() + item.offset == item.data.data());
        Require(item.IsText() || item.Shown().size() >= item.data.size());
    }
    vpd.Identifier();
    vpd.Text("SN");
    // What is sound stays so when more bytes follow its end.
    if (vpd.faults.empty()) {
        std::vector<uint8_t> longer(bytes.begin(), bytes.end());
        longer.resize(longer.size() + 16, 0xFF);
        const vxmgr::PciVpd again = vxmgr::DecodeVpd(longer);
        Require(again.used == vpd.used && again.items.size() == vpd.items.size());
    }
}

void InspectFlash(Bytes bytes) {
    const vxmgr::ImageInfo info = vxmgr::InspectImage(bytes);
    Require(info.size == bytes.size());
    Require(info.boot.bytes <= bytes.size() || !info.boot.problem.empty());
    Require(info.boot.images.size() <= formats::kLongestChain);
    for (const vxmgr::RomImage& image : info.boot.images) {
        Require(image.offset < bytes.size());
    }
}

void DecodeTransceiver(Bytes bytes) {
    const auto identity = vxmgr::Padded<vxmgr::SfpIdentity>(bytes);
    vxmgr::kSfpIdentityFields.Make(identity);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const Bytes bytes(data, size);
    DecodeProductData(bytes);
    DecodeTransceiver(bytes);
    InspectFlash(bytes);
    if (size < 26) {
        return 0;
    }
    // Random bytes hardly ever begin a chain.
    std::vector<uint8_t> chain(data, data + size);
    std::memcpy(chain.data(), &formats::kRomSignature, sizeof formats::kRomSignature);
    const size_t at = (chain[24] + chain[25] * size_t{256}) % size;
    std::memcpy(chain.data() + at, "PCIR", std::min<size_t>(4, size - at));
    chain[24] = static_cast<uint8_t>(at);
    chain[25] = static_cast<uint8_t>(at >> 8);
    InspectFlash(chain);
    return 0;
}
