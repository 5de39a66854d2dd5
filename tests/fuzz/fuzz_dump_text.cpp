// Firmware dumps of any content: the text ends in a line of its own, stays in proportion to the
// dump, and a shorter dump gives the beginning of the same text.
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "dumps/dump_text.h"
#include "require.h"

namespace {

constexpr std::string_view kEnd = "Firmware Dump [END]\n";

class TextSink final : public dumps::DumpSink {
  public:
    void Write(std::string_view part) override { text += part; }
    dumps::LocalTime ToLocal(uint64_t fileTime) override {
        const auto number = static_cast<uint16_t>(fileTime);
        return {number, number, number, number, number, number, number};
    }
    std::string text;
};

struct Input {
    uint8_t layout;
    dumps::Extents extents;
};

// The text without its last line.
std::string BodyOf(const Input& input, const uint8_t* data, size_t size, dumps::DumpEnd& end) {
    const std::vector<uint8_t> exact(data, data + size);
    TextSink sink;
    end = dumps::WriteDumpText(exact, input.layout % dumps::kLayouts, input.extents, sink);
    // The widest text of a word is a header's; an address stands before one word at least.
    Require(sink.text.size() <= 64 * size + 1024);
    if (end == dumps::DumpEnd::NoRecord) {
        Require(sink.text.empty());
        return {};
    }
    Require(sink.text.ends_with(kEnd));
    sink.text.resize(sink.text.size() - kEnd.size());
    Require(sink.text.empty() || sink.text.back() == '\n');
    return sink.text;
}

}  // namespace

// The input: layout, the four counts of the piece header, then the dump.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr size_t kInputBytes = 1 + sizeof(dumps::Extents);
    if (size < kInputBytes) {
        return 0;
    }
    Input input{data[0], {}};
    std::memcpy(&input.extents, data + 1, sizeof input.extents);
    data += kInputBytes;
    size -= kInputBytes;
    dumps::DumpEnd end;
    const std::string whole = BodyOf(input, data, size, end);
    dumps::DumpEnd cutEnd;
    std::string cut = BodyOf(input, data, size - size / 3, cutEnd);
    if (!cut.empty()) {
        cut.pop_back();  // the newline of a line that was cut
        Require(whole.starts_with(cut));
    }
    return 0;
}
