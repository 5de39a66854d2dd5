#include <cstddef>
#include <cstring>

#include "passthru/passthru.h"
#include "properties/chip_families.h"
#include "properties/generation.h"
#include "properties/properties.h"
#include "transport/requests.h"

namespace passthru {
namespace {

#pragma pack(push, 1)
// Results of the shorter query, and where the longer query's result keeps them when it stands in.
struct ShortResult {
    uint16_t word0;
    uint16_t word2;
    uint8_t reserved4[4];
    uint8_t lanes[64];
};
struct FallbackResult {
    uint8_t reserved0[2];
    uint16_t word0;
    uint32_t word2;
    uint8_t lanes[64];
};
#pragma pack(pop)
static_assert(sizeof(ShortResult) == sizeof(HX_DPORT_RESULT));
static_assert(offsetof(ShortResult, lanes) == 8);
static_assert(offsetof(FallbackResult, word2) == 4);
static_assert(offsetof(FallbackResult, lanes) == 8);
static_assert(sizeof(HX_DPORT_RESULT_EX2) == 1088);

constexpr size_t kRunningBytes = 3 * sizeof(uint16_t);  // all that a running test tells

HX_STATUS CheckSupport(uint32_t handle, const void* result) {
    if (const HX_STATUS status = properties::CheckQuery(handle, result); status != HXMGT_SUCCESS) {
        return status;
    }
    if (!properties::TakesExtendedRequests(handle)) {
        return HXMGT_NOT_SUPPORTED;
    }
    HX_CHIP_PROPERTY chip{};
    if (const HX_STATUS status = properties::GetChipProperty(handle, &chip);
        status != HXMGT_SUCCESS) {
        return status;
    }
    return properties::ChipOf(chip.deviceId).Has(properties::ChipTrait::Newest)
               ? HXMGT_SUCCESS
               : HXMGT_NOT_SUPPORTED;
}

}  // namespace

HX_STATUS RunDportEx(uint32_t handle, HX_DPORT_RESULT* result) {
    if (const HX_STATUS status = CheckSupport(handle, result); status != HXMGT_SUCCESS) {
        return status;
    }
    HX_DPORT_RESULT reply{};
    const HX_STATUS status =
        transport::Exchange(handle, transport::command::DportDiagnostic, reply, reply);
    *result = reply;
    return status;
}

HX_STATUS RunDportEx2(uint32_t handle, HX_DPORT_RESULT_EX2* result) {
    if (const HX_STATUS status = CheckSupport(handle, result); status != HXMGT_SUCCESS) {
        return status;
    }
    HX_DPORT_RESULT_EX2 reply{};
    const HX_STATUS status =
        transport::Exchange(handle, transport::command::DportResults, reply, reply);
    if (status == HXMGT_SUCCESS) {
        *result = reply;
    } else if (status == HXMGT_DIAGNOSTIC_TEST_RUNNING) {
        std::memcpy(result->bytes, reply.bytes, kRunningBytes);
    } else if (status == HXMGT_INVALID_SUBCODE) {
        ShortResult brief{};
        const HX_STATUS fallback =
            transport::Exchange(handle, transport::command::DportDiagnostic, brief, brief);
        auto& out = *reinterpret_cast<FallbackResult*>(result->bytes);
        out.word0 = brief.word0;
        out.word2 = brief.word2;
        std::memcpy(out.lanes, brief.lanes, sizeof out.lanes);
        return fallback;
    }
    return status;
}

}  // namespace passthru
