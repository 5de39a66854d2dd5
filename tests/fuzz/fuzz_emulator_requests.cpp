// Requests from user mode to an emulated port: any bytes of any length, in any order.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "model/model.h"
#include "require.h"

namespace {

void* Allocate(void*, size_t bytes) {
    return std::calloc(1, bytes);
}
void Release(void*, void* block) {
    std::free(block);
}
uint64_t Milliseconds(void*) {
    return 1000;
}

struct DestroyModel {
    void operator()(vxemu::Model* model) const { vxemu::Model::Destroy(model); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto profile = std::make_unique<vxemu::Profile>();
    Require(vxemu::FillBuiltInProfile("lab", *profile));
    const std::unique_ptr<vxemu::Model, DestroyModel> model(
        vxemu::Model::Create({nullptr, Allocate, Release, Milliseconds}, *profile));
    Require(model != nullptr);

    // Each request: kind and port, length of the input, length of the output, then the input.
    while (size >= 5) {
        const uint8_t port = data[0] & 0x7F;
        const bool control = (data[0] & 0x80) != 0;
        const uint32_t outputLength = data[3] | data[4] << 8;
        const uint32_t inputLength =
            static_cast<uint32_t>(std::min<size_t>(data[1] | data[2] << 8, size - 5));
        data += 5;
        size -= 5;
        std::vector<uint8_t> buffer(std::max(inputLength, outputLength));
        std::copy_n(data, inputLength, buffer.begin());
        data += inputLength;
        size -= inputLength;
        uint32_t code = 0;
        if (control && inputLength >= sizeof code) {
            std::memcpy(&code, buffer.data(), sizeof code);
        }
        uint32_t returned = 0;
        const vxemu::Completion completion =
            control ? model->Control(code, buffer.data(), inputLength, outputLength, &returned)
                    : model->Request(port, buffer.data(), inputLength, outputLength, &returned);
        Require(returned <= outputLength);
        Require(completion == vxemu::Completion::Done || returned == 0);
    }
    return 0;
}
