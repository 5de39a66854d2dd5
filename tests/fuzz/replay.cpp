// Every target of the fuzzers over its seeds and over random changes of them, without a fuzzer: so
// that they are built and hold with every other test.
// Usage: fuzz_replay FOLDER        that has a folder of seeds for each target, or none
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#define VXMGMT_FUZZ_TARGET(name) extern "C" int name(const uint8_t* data, size_t size);
#include "fuzz_targets.inc"
#undef VXMGMT_FUZZ_TARGET

namespace {

namespace fs = std::filesystem;
using Input = std::vector<uint8_t>;

struct Target {
    const char* name;
    int (*run)(const uint8_t* data, size_t size);
};
constexpr Target kTargets[] = {
#define VXMGMT_FUZZ_TARGET(name) {#name, name},
#include "fuzz_targets.inc"
};

constexpr int kChanges = 200;  // of each seed
constexpr size_t kLongestNoise = 4096;

std::vector<Input> SeedsIn(const fs::path& folder) {
    std::vector<Input> seeds(1);  // nothing at all
    std::error_code none;
    for (const fs::directory_entry& file : fs::directory_iterator(folder, none)) {
        std::ifstream stream(file.path(), std::ios::binary);
        seeds.emplace_back(std::istreambuf_iterator<char>(stream),
                           std::istreambuf_iterator<char>());
    }
    return seeds;
}

// A few bytes of it are others, or it ends early; of an empty one: noise of any length.
Input Changed(Input input, std::mt19937& random) {
    if (input.empty()) {
        input.resize(random() % kLongestNoise);
        for (uint8_t& byte : input) {
            byte = static_cast<uint8_t>(random());
        }
        return input;
    }
    for (int i = 0; i < 4; ++i) {
        input[random() % input.size()] = static_cast<uint8_t>(random());
    }
    if (random() % 4 == 0) {
        input.resize(random() % input.size());
    }
    return input;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        return 2;
    }
    for (const Target& target : kTargets) {
        std::printf("%s\n", target.name);  // for whoever reads how it ended
        std::fflush(stdout);
        std::mt19937 random(1);
        for (const Input& seed : SeedsIn(fs::path(arguments[1]) / target.name)) {
            target.run(seed.data(), seed.size());
            for (int i = 0; i < kChanges; ++i) {
                const Input input = Changed(seed, random);
                target.run(input.data(), input.size());
            }
        }
    }
    return 0;
}
