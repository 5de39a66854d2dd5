// A SCSI port whose driver answers as the test says and remembers every request.
#pragma once

#include <concepts>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "machine/fake_system.h"
#include "properties/driver_replies.h"
#include "transport/ext_ioctl.h"

namespace support {

namespace command = transport::command;
using Bytes = std::vector<uint8_t>;

template <typename Record>
Bytes BytesOf(const Record& record) {
    const auto* first = reinterpret_cast<const uint8_t*>(&record);
    return Bytes(first, first + sizeof record);
}

inline void Append(Bytes& bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

// Length bytes that count up from first, so that a byte in the wrong place shows.
Bytes Counting(uint32_t length, uint8_t first = 1);

template <size_t Size>
void SetText(char (&field)[Size], std::string_view text) {
    memset(field, 0, Size);
    memcpy(field, text.data(), text.size() < Size ? text.size() : Size);
}

struct SentRequest {
    Bytes bytes;  // the whole input buffer
    uint32_t inputSize, outputSize;
    bool oneBuffer;  // input and output are the same memory

    bool IsExtended() const;
    // Fields are zero where the buffer is shorter than the record.
    transport::ExtRequest Envelope() const;
    uint32_t Code() const { return Envelope().srb.controlCode; }
    // What follows the header: of an extended request what follows the EXT_IOCTL body.
    Bytes Data() const;
};

struct Reply {
    uint32_t error = 0;  // Windows error: the transfer fails
    uint32_t status = 0;
    uint32_t detailStatus = 0;
    Bytes data = {};
    std::optional<uint32_t> responseLength = {};  // as many bytes as data has, unless given
    std::optional<uint32_t> returned = {};        // what the transfer reports and hands back
};

class ScriptedPort : public Device {
  public:
    using Handler = std::function<Reply(const SentRequest&)>;

    // A port that passes discovery and both open probes.
    explicit ScriptedPort(std::string_view driverVersion = "9.04.02.20",
                          uint16_t deviceId = 0x7740);

    void On(transport::Command command, Reply reply);
    void On(transport::Command command, std::invocable<const SentRequest&> auto handler) {
        Handle(command, std::move(handler));
    }
    void Handle(transport::Command command, Handler handler);
    void OnPlain(uint32_t code, Reply reply);
    void OnSelector(properties::LegacySelector selector, Reply reply);
    // Answers the next request, whatever it is, before any rule is looked at. Queues up.
    void Next(Reply reply);
    void NextBusy(uint32_t times);

    // What the probes answer; change and call AnswerProbes again.
    properties::NodeReply node = {};
    properties::ChipReply chip = {};
    properties::DriverReply driver = {};
    void AnswerProbes();

    std::vector<SentRequest> Requests() const;
    std::vector<SentRequest> Requests(transport::Command command) const;
    SentRequest Last() const;
    void Forget();

    // Answers IOCTL_SCSI_GET_INQUIRY_DATA; empty: the port does not know the request.
    Bytes unitList;

    uint32_t Control(uint32_t code, const void* input, uint32_t inputSize, void* output,
                     uint32_t outputSize, uint32_t* returned) override;

  private:
    Reply Answer(const SentRequest& request);

    mutable std::mutex lock_;
    std::map<std::pair<uint32_t, uint32_t>, Handler> extended_;
    std::map<std::pair<uint32_t, uint32_t>, Handler> plain_;
    std::vector<Reply> next_;
    std::vector<SentRequest> requests_;
};

}  // namespace support
