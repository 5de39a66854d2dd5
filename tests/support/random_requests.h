// Requests as a careless or hostile program sends them: garbage, envelopes with a wrong field, and
// such as are right but for what they ask for.
#pragma once

#include <algorithm>
#include <cstring>
#include <iterator>
#include <random>
#include <vector>

#include "transport/ext_ioctl.h"

namespace support {

struct RandomRequest {
    std::vector<uint8_t> bytes;
    uint32_t outputLength = 0;
};

class RandomRequests {
  public:
    explicit RandomRequests(uint32_t seed) : random_(seed) {}

    uint32_t Below(uint32_t end) { return random_() % end; }

    RandomRequest Next() {
        using namespace transport;
        RandomRequest result;
        if (Below(32) == 0) {
            result.bytes.resize(Below(300));
            Fill(result.bytes.data(), result.bytes.size());
            result.outputLength = Below(300);
            return result;
        }
        const uint32_t input = Length();
        const uint32_t output = Length();
        ExtRequest request = {};
        request.srb.headerLength = kHeaderLength;
        std::memcpy(request.srb.signature, kSignature, sizeof kSignature);
        request.srb.timeout = kTimeoutSeconds;
        request.ext.levelAndVersion = kInterfaceLevelAndVersion;
        std::memcpy(request.ext.signature, kSignature, sizeof kSignature);
        request.ext.parameter = Below(4) == 0 ? Word() : 0;
        request.ext.instance = static_cast<uint16_t>(Below(8) == 0 ? Word() : 0);
        request.ext.detailStatus = Below(8) == 0 ? Word() : 0;
        request.ext.requestLen = input;
        request.ext.responseLen = output;
        size_t head = sizeof request;
        if (Below(8) == 0) {
            request.srb.controlCode = kPlainCommands[Below(std::size(kPlainCommands))].code;
            head = sizeof request.srb;
        } else {
            const ExtendedCommandRow& row = kExtendedCommands[Below(std::size(kExtendedCommands))];
            const bool asItStands = row.kind == SubCode::Fixed && Below(8) != 0;
            request.srb.controlCode = row.code;
            request.ext.subCode =
                static_cast<uint16_t>(row.subCode + (asItStands ? 0 : Below(256)));
        }
        request.srb.length =
            static_cast<uint32_t>(sizeof request - sizeof request.srb) + std::max(input, output);
        if (Below(8) == 0) {
            // One word of the envelope is another.
            const uint32_t word = Word();
            std::memcpy(reinterpret_cast<uint8_t*>(&request) + Below(sizeof request / 4) * 4, &word,
                        sizeof word);
        }
        result.bytes.resize(head + input);
        std::memcpy(result.bytes.data(), &request, head);
        Fill(result.bytes.data() + head, input);
        result.outputLength = static_cast<uint32_t>(sizeof request) + output;
        if (Below(16) == 0) {
            result.bytes.resize(Below(static_cast<uint32_t>(result.bytes.size()) + 1));
        }
        if (Below(16) == 0) {
            result.outputLength = Below(result.outputLength + 1);
        }
        return result;
    }

  private:
    // Mostly about as much as the records have, now and then more than a transfer may.
    uint32_t Length() {
        constexpr uint32_t kUsual[] = {0, 4, 8, 16, 20, 32, 60, 64, 84, 256, 512, 1024, 4096};
        return Below(64) == 0 ? Below(70000) : kUsual[Below(std::size(kUsual))];
    }
    uint32_t Word() {
        constexpr uint32_t kEdges[] = {0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF0, 0xFFFFFFFF};
        const uint32_t kind = Below(3);
        return kind == 0 ? kEdges[Below(std::size(kEdges))] : kind == 1 ? Below(1024) : random_();
    }
    // Zeros, small numbers, or anything; text that a record has is rarely right by chance.
    void Fill(uint8_t* bytes, size_t count) {
        const uint32_t end = Below(3) == 0 ? 1 : Below(2) == 0 ? 4 : 256;
        for (size_t at = 0; at < count; ++at) {
            bytes[at] = static_cast<uint8_t>(Below(end));
        }
    }

    std::mt19937 random_;
};

}  // namespace support
