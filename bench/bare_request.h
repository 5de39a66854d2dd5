// A driver request without the library: the same bytes as the library sends, in a buffer that is
// made once. Each send restores the envelope and copies the reply to where a caller would want it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

#include "transport/ext_ioctl.h"

namespace bench {

// What carries a request: a device handle, and DeviceIoControl or a stand-in for it.
struct Carrier {
    HANDLE device;
    decltype(&DeviceIoControl) control;

    bool Send(void* input, size_t inputSize, void* output, size_t outputSize) const {
        DWORD returned = 0;
        return control(device, transport::kIoctlScsiMiniport, input, static_cast<DWORD>(inputSize),
                       output, static_cast<DWORD>(outputSize), &returned, nullptr) != FALSE;
    }
};

class BareRequest {
  public:
    virtual ~BareRequest() = default;
    virtual void Send() = 0;
};

class BareExtended : public BareRequest {
  public:
    BareExtended(Carrier carrier, transport::Command command, uint32_t inputLength,
                 uint32_t outputLength);
    void Send() override { Exchange(input_.data(), output_.data()); }
    // With data of the caller's, as long as the request's.
    void Exchange(const uint8_t* input, uint8_t* output);
    transport::ExtRequest& Envelope() { return envelope_; }
    // The data to send and the data that came.
    std::vector<uint8_t>& Input() { return input_; }
    const std::vector<uint8_t>& Output() const { return output_; }

  private:
    Carrier carrier_;
    uint32_t inputLength_;
    uint32_t outputLength_;
    transport::ExtRequest envelope_;
    std::vector<uint8_t> input_;
    std::vector<uint8_t> buffer_;
    std::vector<uint8_t> output_;
};

class BarePlain : public BareRequest {
  public:
    BarePlain(Carrier carrier, uint32_t code, std::vector<uint8_t> input, uint32_t outputLength);
    void Send() override;

  private:
    Carrier carrier_;
    std::vector<uint8_t> request_;
    std::vector<uint8_t> reply_;
    std::vector<uint8_t> output_;
};

}  // namespace bench
