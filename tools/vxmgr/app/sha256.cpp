#include "vxmgr/app/sha256.h"

#include <windows.h>

#include <bcrypt.h>

#include <memory>
#include <stdexcept>

namespace vxmgr {
namespace {

constexpr size_t kDigestBytes = 32;

struct HashCloser {
    void operator()(void* hash) const { BCryptDestroyHash(hash); }
};
struct ProviderCloser {
    void operator()(void* provider) const { BCryptCloseAlgorithmProvider(provider, 0); }
};

void Demand(NTSTATUS status) {
    if (!BCRYPT_SUCCESS(status)) {
        throw std::runtime_error("the system does not calculate SHA-256");
    }
}

}  // namespace

std::string Sha256Of(Bytes bytes) {
    BCRYPT_ALG_HANDLE opened = nullptr;
    Demand(BCryptOpenAlgorithmProvider(&opened, BCRYPT_SHA256_ALGORITHM, nullptr, 0));
    const std::unique_ptr<void, ProviderCloser> provider(opened);
    BCRYPT_HASH_HANDLE begun = nullptr;
    Demand(BCryptCreateHash(opened, &begun, nullptr, 0, nullptr, 0, 0));
    const std::unique_ptr<void, HashCloser> hash(begun);
    Demand(BCryptHashData(begun, const_cast<uint8_t*>(bytes.data()),
                          static_cast<ULONG>(bytes.size()), 0));
    uint8_t digest[kDigestBytes];
    Demand(BCryptFinishHash(begun, digest, sizeof digest, 0));
    return HexDigits({digest, sizeof digest});
}

}  // namespace vxmgr
