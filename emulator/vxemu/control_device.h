// The control device of the running driver.
#pragma once

#include <cstdint>

#include "frame/owned.h"
#include "model/control.h"

namespace vxemu {

// Functions return a Windows error code, 0 for success.
class ControlDevice {
  public:
    // For asking only, or for changes too.
    uint32_t Open(bool change);

    // A request without a record whose reply is one.
    template <typename Reply>
    uint32_t Ask(uint32_t code, Reply* reply) {
        return Transfer(code, nullptr, 0, reply, sizeof *reply);
    }

    template <typename Record>
    uint32_t Send(uint32_t code, const Record& record) {
        return Transfer(code, &record, sizeof record, nullptr, 0);
    }

    // A request that is answered with a number, or with what is wrong.
    template <typename Record, typename Reply>
    uint32_t Send(uint32_t code, const Record& record, Reply* reply) {
        return Transfer(code, &record, sizeof record, reply, sizeof *reply);
    }

  private:
    // An answer that is not exactly outputLength bytes is an error.
    uint32_t Transfer(uint32_t code, const void* input, uint32_t inputLength, void* output,
                      uint32_t outputLength);

    frame::OwnedFile device_;
};

}  // namespace vxemu
