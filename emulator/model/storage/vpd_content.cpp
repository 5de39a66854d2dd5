#include "model/storage/vpd_content.h"

#include <cstring>

#include "formats/sums.h"
#include "formats/vpd_tags.h"

namespace vxemu {
namespace {

using formats::KeywordHead;
using formats::LargeTag;

class VpdWriter {
  public:
    explicit VpdWriter(uint8_t* bytes) : bytes_(bytes) {}

    void Put(const void* from, size_t length) {
        std::memcpy(bytes_ + length_, from, length);
        length_ += static_cast<uint32_t>(length);
    }
    void Text(const char* text) { Put(text, std::strlen(text)); }
    void Field(const char (&name)[3], const char* text) {
        Put(KeywordHead{{name[0], name[1]}, static_cast<uint8_t>(std::strlen(text))});
        Text(text);
    }
    template <typename Record>
    void Put(const Record& record) {
        Put(&record, sizeof record);
    }
    // A large tag whose length is set once its contents are written, but for a last few bytes.
    uint32_t Begin(uint8_t tag) {
        Put(LargeTag{tag, {}});
        return length_;
    }
    void End(uint32_t begin, uint32_t toCome = 0) {
        const uint32_t length = length_ - begin + toCome;
        uint8_t* const place = bytes_ + begin - sizeof LargeTag::length;
        place[0] = static_cast<uint8_t>(length);
        place[1] = static_cast<uint8_t>(length >> 8);
    }
    uint8_t NegativeSum() const {
        return static_cast<uint8_t>(0 - formats::ByteSum({bytes_, length_}));
    }

  private:
    uint8_t* bytes_;
    uint32_t length_ = 0;
};

// What the keywords can take at most fits the smallest room.
static_assert(4 * sizeof(LargeTag) + 5 * sizeof(KeywordHead) + sizeof(AdapterProfile::description) +
                  sizeof(AdapterProfile::model) + sizeof(AdapterProfile::serial) +
                  sizeof(AdapterProfile::manufacturer) + 8 <
              256);

// Looks for the checksum among the keywords of a section; true when it holds.
bool SectionHolds(std::span<const uint8_t> bytes, const formats::VpdPart& section) {
    for (size_t at = section.data; at < section.End();) {
        const auto keyword = formats::KeywordAt(bytes, at, section.End());
        if (!keyword) {
            return false;
        }
        if (std::memcmp(&bytes[at], formats::kChecksumKeyword, sizeof KeywordHead::name) == 0) {
            return formats::ChecksumHolds(bytes, *keyword);
        }
        at = keyword->End();
    }
    return false;
}

}  // namespace

void FillVpd(const AdapterProfile& adapter, uint8_t* bytes, uint32_t length) {
    std::memset(bytes, 0, length);
    VpdWriter writer(bytes);
    const uint32_t identifier = writer.Begin(formats::kIdentifierTag);
    writer.Text(adapter.description);
    writer.End(identifier);

    const uint32_t readOnly = writer.Begin(formats::kReadOnlyTag);
    writer.Field("PN", adapter.model);
    writer.Field("EC", "E1");
    writer.Field("SN", adapter.serial);
    writer.Field("MN", adapter.manufacturer);
    writer.Put(KeywordHead{{'R', 'V'}, 1});
    // The sum covers the tag's length, which covers the checksum.
    writer.End(readOnly, sizeof(uint8_t));
    writer.Put(writer.NegativeSum());
    writer.Put(formats::kEndTag);
}

bool VpdHolds(std::span<const uint8_t> bytes) {
    bool checked = false;
    for (size_t at = 0; at < bytes.size();) {
        if (bytes[at] == formats::kEndTag) {
            return checked;
        }
        const auto tag = formats::TagAt(bytes, at);
        if (!tag || (bytes[at] & formats::kLargeTag) == 0) {
            return false;
        }
        if (bytes[at] == formats::kReadOnlyTag) {
            checked = SectionHolds(bytes, *tag);
            if (!checked) {
                return false;
            }
        }
        at = tag->End();
    }
    return false;
}

}  // namespace vxemu
