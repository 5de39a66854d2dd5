#include "model/storage/vpd_content.h"

#include <cstring>

namespace vxemu {
namespace {

constexpr uint8_t kIdentifierTag = 0x82;
constexpr uint8_t kReadOnlyTag = 0x90;
constexpr uint8_t kEndTag = 0x78;
constexpr uint8_t kLargeTag = 0x80;

#pragma pack(push, 1)
struct LargeTag {
    uint8_t tag;
    uint16_t length;
};
struct Keyword {
    char name[2];
    uint8_t length;
};
#pragma pack(pop)

constexpr char kChecksumKeyword[2] = {'R', 'V'};

class VpdWriter {
  public:
    explicit VpdWriter(uint8_t* bytes) : bytes_(bytes) {}

    void Put(const void* from, size_t length) {
        std::memcpy(bytes_ + length_, from, length);
        length_ += static_cast<uint32_t>(length);
    }
    void Text(const char* text) { Put(text, std::strlen(text)); }
    void Field(const char (&name)[3], const char* text) {
        Put(Keyword{{name[0], name[1]}, static_cast<uint8_t>(std::strlen(text))});
        Text(text);
    }
    template <typename Record>
    void Put(const Record& record) {
        Put(&record, sizeof record);
    }
    // A large tag whose length is set once its contents are written, but for a last few bytes.
    uint32_t Begin(uint8_t tag) {
        Put(LargeTag{tag, 0});
        return length_;
    }
    void End(uint32_t begin, uint32_t toCome = 0) {
        const auto length = static_cast<uint16_t>(length_ - begin + toCome);
        std::memcpy(bytes_ + begin - sizeof length, &length, sizeof length);
    }
    uint8_t NegativeSum() const {
        uint32_t sum = 0;
        for (uint32_t at = 0; at < length_; ++at) {
            sum += bytes_[at];
        }
        return static_cast<uint8_t>(0 - sum);
    }

  private:
    uint8_t* bytes_;
    uint32_t length_ = 0;
};

// What the keywords can take at most fits the smallest room.
static_assert(4 * sizeof(LargeTag) + 5 * sizeof(Keyword) + sizeof(AdapterProfile::description) +
                  sizeof(AdapterProfile::model) + sizeof(AdapterProfile::serial) +
                  sizeof(AdapterProfile::manufacturer) + 8 <
              256);

uint8_t SumOf(std::span<const uint8_t> bytes) {
    uint32_t sum = 0;
    for (const uint8_t byte : bytes) {
        sum += byte;
    }
    return static_cast<uint8_t>(sum);
}

// Looks for the checksum among the keywords from begin to end; true when it holds.
bool ChecksumHolds(std::span<const uint8_t> bytes, size_t begin, size_t end) {
    Keyword keyword;
    for (size_t at = begin; end - at >= sizeof keyword; at += sizeof keyword + keyword.length) {
        std::memcpy(&keyword, bytes.data() + at, sizeof keyword);
        if (keyword.length > end - at - sizeof keyword) {
            return false;
        }
        if (std::memcmp(keyword.name, kChecksumKeyword, sizeof kChecksumKeyword) == 0) {
            return keyword.length != 0 && SumOf(bytes.first(at + sizeof keyword + 1)) == 0;
        }
    }
    return false;
}

}  // namespace

void FillVpd(const AdapterProfile& adapter, uint8_t* bytes, uint32_t length) {
    std::memset(bytes, 0, length);
    VpdWriter writer(bytes);
    const uint32_t identifier = writer.Begin(kIdentifierTag);
    writer.Text(adapter.description);
    writer.End(identifier);

    const uint32_t readOnly = writer.Begin(kReadOnlyTag);
    writer.Field("PN", adapter.model);
    writer.Field("EC", "E1");
    writer.Field("SN", adapter.serial);
    writer.Field("MN", adapter.manufacturer);
    writer.Put(Keyword{{kChecksumKeyword[0], kChecksumKeyword[1]}, 1});
    // The sum covers the tag's length, which covers the checksum.
    writer.End(readOnly, sizeof(uint8_t));
    writer.Put(writer.NegativeSum());
    writer.Put(kEndTag);
}

bool VpdHolds(std::span<const uint8_t> bytes) {
    bool checked = false;
    for (size_t at = 0; at < bytes.size();) {
        if (bytes[at] == kEndTag) {
            return checked;
        }
        LargeTag tag;
        if ((bytes[at] & kLargeTag) == 0 || bytes.size() - at < sizeof tag) {
            return false;
        }
        std::memcpy(&tag, bytes.data() + at, sizeof tag);
        at += sizeof tag;
        if (tag.length > bytes.size() - at) {
            return false;
        }
        if (tag.tag == kReadOnlyTag) {
            checked = ChecksumHolds(bytes, at, at + tag.length);
            if (!checked) {
                return false;
            }
        }
        at += tag.length;
    }
    return false;
}

}  // namespace vxemu
