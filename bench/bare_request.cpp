#include "bare_request.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace bench {

namespace {

void PutHeader(uint32_t code, uint32_t length, transport::SrbIoControl& header) {
    header.headerLength = transport::kHeaderLength;
    memcpy(header.signature, transport::kSignature, sizeof header.signature);
    header.timeout = transport::kTimeoutSeconds;
    header.controlCode = code;
    header.length = length;
}

// A request that fails measures nothing.
void Demand(bool sent) {
    if (!sent) {
        fprintf(stderr, "a bare request failed: error %lu\n", GetLastError());
        exit(1);
    }
}

}  // namespace

BareExtended::BareExtended(Carrier carrier, transport::Command command, uint32_t inputLength,
                           uint32_t outputLength)
    : carrier_(carrier),
      inputLength_(inputLength),
      outputLength_(outputLength),
      envelope_{},
      input_(inputLength),
      buffer_(transport::kEnvelopeLength + std::max(inputLength, outputLength)),
      output_(outputLength) {
    PutHeader(command.code, static_cast<uint32_t>(buffer_.size()) - transport::kHeaderLength,
              envelope_.srb);
    memcpy(envelope_.ext.signature, transport::kSignature, sizeof envelope_.ext.signature);
    envelope_.ext.levelAndVersion = transport::kInterfaceLevelAndVersion;
    envelope_.ext.subCode = command.subCode;
    envelope_.ext.requestLen = inputLength;
    envelope_.ext.responseLen = outputLength;
}

void BareExtended::Exchange(const uint8_t* input, uint8_t* output) {
    memcpy(buffer_.data(), &envelope_, sizeof envelope_);
    std::copy_n(input, inputLength_, buffer_.begin() + sizeof envelope_);
    Demand(carrier_.Send(buffer_.data(), transport::kEnvelopeLength + inputLength_, buffer_.data(),
                         buffer_.size()));
    std::copy_n(buffer_.begin() + sizeof envelope_, outputLength_, output);
}

BarePlain::BarePlain(Carrier carrier, uint32_t code, std::vector<uint8_t> input,
                     uint32_t outputLength)
    : carrier_(carrier),
      request_(transport::kHeaderLength + input.size()),
      reply_(transport::kHeaderLength + outputLength),
      output_(outputLength) {
    transport::SrbIoControl header = {};
    PutHeader(code, std::max(static_cast<uint32_t>(input.size()), outputLength), header);
    memcpy(request_.data(), &header, sizeof header);
    std::copy(input.begin(), input.end(), request_.begin() + sizeof header);
}

void BarePlain::Send() {
    Demand(carrier_.Send(request_.data(), request_.size(), reply_.data(), reply_.size()));
    std::copy(reply_.begin() + transport::kHeaderLength, reply_.end(), output_.begin());
}

}  // namespace bench
