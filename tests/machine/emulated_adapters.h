// The emulated adapters inside the test process, behind the device names of their SCSI ports.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <vector>

#include "machine/fake_system.h"
#include "model/control.h"
#include "model/model.h"

namespace support {

class EmulatedAdapters {
  public:
    EmulatedAdapters(FakeSystem& system, const vxemu::Profile& profile);
    ~EmulatedAdapters();
    EmulatedAdapters(const EmulatedAdapters&) = delete;
    EmulatedAdapters& operator=(const EmulatedAdapters&) = delete;

    // One control request; the reply type gives its length.
    template <typename Reply, typename Request>
    Reply Control(uint32_t code, const Request& request) {
        union {
            Request request;
            Reply reply;
        } buffer = {request};
        uint32_t returned = 0;
        const std::lock_guard hold(lock_);
        EXPECT_EQ(vxemu::Completion::Done,
                  model_->Control(code, reinterpret_cast<uint8_t*>(&buffer), sizeof request,
                                  sizeof(Reply), &returned));
        return buffer.reply;
    }
    uint32_t AddFault(const vxemu::FaultRule& rule) {
        return Control<vxemu::CountReply>(vxemu::control::kFaultAdd, rule).count;
    }
    void ClearFaults() {
        Control<vxemu::CountReply>(vxemu::control::kFaultClear, vxemu::FaultClear{0});
    }
    void SetLink(uint32_t scsiPort, bool up);

  private:
    class Port;

    std::mutex lock_;  // the model wants one request at a time
    vxemu::Model* model_;
    std::vector<std::unique_ptr<Port>> ports_;
};

}  // namespace support
