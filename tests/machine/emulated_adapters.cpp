#include "machine/emulated_adapters.h"

#include <algorithm>
#include <cstdlib>

#include "transport/ext_ioctl.h"

namespace support {

namespace {

uint32_t ErrorOf(vxemu::Completion completion) {
    switch (completion) {
        case vxemu::Completion::Done:
            return ERROR_SUCCESS;
        case vxemu::Completion::Busy:
            return ERROR_BUSY;
        case vxemu::Completion::Invalid:
            return ERROR_INVALID_FUNCTION;
        case vxemu::Completion::ShortBuffer:
            return ERROR_INVALID_PARAMETER;
        default:
            return ERROR_DEVICE_NOT_CONNECTED;
    }
}

const vxemu::Host kHost = {
    nullptr,
    [](void*, size_t bytes) { return calloc(1, bytes); },
    [](void*, void* block) { free(block); },
    [](void*) -> uint64_t { return GetTickCount64(); },
};

}  // namespace

// Carries a request as the I/O manager does: one system buffer, of which as many bytes come back
// as the driver says.
class EmulatedAdapters::Port : public Device {
  public:
    Port(EmulatedAdapters& owner, uint32_t index) : owner_(owner), index_(index) {}

    uint32_t Control(uint32_t code, const void* input, uint32_t inputSize, void* output,
                     uint32_t outputSize, uint32_t* returned) override {
        if (code != transport::kIoctlScsiMiniport) {
            return ERROR_INVALID_FUNCTION;
        }
        std::vector<uint8_t> buffer(std::max(inputSize, outputSize));
        std::copy_n(static_cast<const uint8_t*>(input), inputSize, buffer.begin());
        const std::lock_guard hold(owner_.lock_);
        const vxemu::Completion completion =
            owner_.model_->Request(index_, buffer.data(), inputSize, outputSize, returned);
        std::copy_n(buffer.begin(), std::min(*returned, outputSize), static_cast<uint8_t*>(output));
        return ErrorOf(completion);
    }

  private:
    EmulatedAdapters& owner_;
    uint32_t index_;
};

EmulatedAdapters::EmulatedAdapters(FakeSystem& system, const vxemu::Profile& profile)
    : model_(vxemu::Model::Create(kHost, profile)) {
    if (model_ == nullptr) {
        ADD_FAILURE() << "the profile is not valid";
        return;
    }
    for (uint32_t index = 0; index < model_->PortCount(); ++index) {
        ports_.push_back(std::make_unique<Port>(*this, index));
        system.AttachScsiPort(model_->ScsiPortNumber(index), ports_.back().get());
    }
}

EmulatedAdapters::~EmulatedAdapters() {
    vxemu::Model::Destroy(model_);
}

void EmulatedAdapters::SetLink(uint32_t scsiPort, bool up) {
    vxemu::LinkRequest request = {scsiPort, up ? 1u : 0u};
    uint32_t returned = 0;
    const std::lock_guard hold(lock_);
    EXPECT_EQ(vxemu::Completion::Done,
              model_->Control(vxemu::control::kSetLink, reinterpret_cast<uint8_t*>(&request),
                              sizeof request, 0, &returned));
}

}  // namespace support
