// How far a test of random input goes: a few rounds with a fixed seed wherever all tests run, as
// many as VXMGMT_TEST_ROUNDS says, with the seed of VXMGMT_TEST_SEED, in a long run
// (scripts/fuzz.sh).
#pragma once

#include <cstdint>
#include <cstdlib>

namespace support {

inline uint32_t NumberOfEnvironment(const char* name, uint32_t otherwise) {
    const char* const text = std::getenv(name);
    return text != nullptr ? static_cast<uint32_t>(std::strtoul(text, nullptr, 10)) : otherwise;
}
inline uint32_t Rounds(uint32_t few) {
    return NumberOfEnvironment("VXMGMT_TEST_ROUNDS", few);
}
inline uint32_t Seed() {
    return NumberOfEnvironment("VXMGMT_TEST_SEED", 1);
}

}  // namespace support
