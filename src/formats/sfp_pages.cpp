#include "formats/sfp_pages.h"

#include "formats/sums.h"

namespace formats {
namespace {

uint8_t BaseSum(const SfpIdentity& identity) {
    return ByteSum(Part(BytesOf(identity), 0, offsetof(SfpIdentity, baseChecksum)));
}

uint8_t ExtendedSum(const SfpIdentity& identity) {
    constexpr size_t kBegin = offsetof(SfpIdentity, options);
    return ByteSum(
        Part(BytesOf(identity), kBegin, offsetof(SfpIdentity, extendedChecksum) - kBegin));
}

uint8_t PageSum(const SfpDiagnostics& page) {
    return ByteSum(Part(BytesOf(page), 0, offsetof(SfpDiagnostics, checksum)));
}

}  // namespace

bool BaseChecksumHolds(const SfpIdentity& identity) {
    return BaseSum(identity) == identity.baseChecksum;
}

bool ExtendedChecksumHolds(const SfpIdentity& identity) {
    return ExtendedSum(identity) == identity.extendedChecksum;
}

bool ChecksumHolds(const SfpDiagnostics& page) {
    return PageSum(page) == page.checksum;
}

void UpdateChecksums(SfpIdentity& identity) {
    identity.baseChecksum = BaseSum(identity);
    identity.extendedChecksum = ExtendedSum(identity);
}

void UpdateChecksum(SfpDiagnostics& page) {
    page.checksum = PageSum(page);
}

}  // namespace formats
