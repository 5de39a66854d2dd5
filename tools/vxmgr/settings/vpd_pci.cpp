#include "vxmgr/settings/vpd_pci.h"

#include <algorithm>
#include <numeric>

#include "common/text.h"

namespace vxmgr {
namespace {

// A large tag has its length in the two bytes behind it, a small one in its low three bits.
constexpr uint8_t kLarge = 0x80;
constexpr uint8_t kIdentifierTag = 0x82;
constexpr uint8_t kReadOnlyTag = 0x90;
constexpr uint8_t kWritableTag = 0x91;
constexpr uint8_t kEndTag = 0x78;
constexpr uint8_t kSmallLength = 0x07;
constexpr std::string_view kChecksum = "RV";
constexpr std::string_view kRest = "RW";  // what is left of the writable section

#pragma pack(push, 1)
struct LargeTag {
    uint8_t tag;
    uint8_t lengthLow;
    uint8_t lengthHigh;

    size_t Length() const { return lengthLow | size_t{lengthHigh} << 8; }
};
struct KeywordHead {
    char name[2];
    uint8_t length;
};
#pragma pack(pop)
static_assert(sizeof(LargeTag) == 3 && sizeof(KeywordHead) == 3);

struct KeywordRow {
    std::string_view keyword;
    const char* text;
};
constexpr KeywordRow kKeywords[] = {
    {"PN", "part number"},
    {"EC", "engineering change level"},
    {"FG", "fabric geography"},
    {"LC", "location"},
    {"MN", "manufacturer"},
    {"PG", "PCI geography"},
    {"SN", "serial number"},
    {"CP", "extended capability"},
    {"RV", "checksum and reserve"},
    {"RW", "writable rest"},
    {"YA", "asset tag"},
};

std::string At(size_t offset) {
    return " at " + tools::Hex(offset, 4);
}

uint8_t SumOf(Bytes bytes) {
    return static_cast<uint8_t>(std::accumulate(bytes.begin(), bytes.end(), 0u));
}

bool IsKeyword(const char (&name)[2]) {
    return std::all_of(std::begin(name), std::end(name), [](char letter) {
        return (letter >= 'A' && letter <= 'Z') || (letter >= '0' && letter <= '9');
    });
}

class Decoder {
  public:
    explicit Decoder(Bytes bytes) : bytes_(bytes) {}

    PciVpd Run() {
        if (!bytes_.empty() && bytes_[0] != kIdentifierTag) {
            Fault("it does not begin with an identifier tag");
        }
        size_t at = 0;
        while (at < bytes_.size() && !ended_) {
            const size_t next = Tag(at);
            if (next == 0) {
                return std::move(vpd_);
            }
            at = next;
        }
        if (!ended_) {
            Fault("there is no end tag");
        }
        if (!vpd_.checksumHolds) {
            Fault("there is no checksum");
        } else if (!*vpd_.checksumHolds) {
            Fault("the checksum is wrong");
        }
        vpd_.used = at;
        return std::move(vpd_);
    }

  private:
    void Fault(std::string text) { vpd_.faults.push_back(std::move(text)); }

    // The offset behind the tag; 0 when it leads out of the bytes, which ends the decoding.
    size_t Tag(size_t at) {
        const uint8_t tag = bytes_[at];
        const bool large = (tag & kLarge) != 0;
        const size_t head = large ? sizeof(LargeTag) : 1;
        const auto read = Padded<LargeTag>(Part(bytes_, at, head));
        const size_t length = large ? read.Length() : tag & kSmallLength;
        if (head > bytes_.size() - at || length > bytes_.size() - at - head) {
            Fault("the tag " + tools::Hex(tag, 2) + At(at) + " is longer than the data");
            return 0;
        }
        const size_t data = at + head;
        if (tag == kIdentifierTag) {
            vpd_.items.push_back({VpdSection::Identifier, "", data, Part(bytes_, data, length)});
        } else if (tag == kReadOnlyTag || tag == kWritableTag) {
            Keywords(tag == kReadOnlyTag ? VpdSection::ReadOnly : VpdSection::Writable, data,
                     data + length);
        } else if (!large && (tag & ~kSmallLength) == kEndTag) {
            ended_ = true;
        } else {
            Fault("the tag " + tools::Hex(tag, 2) + At(at) + " is unknown");
        }
        return data + length;
    }

    void Keywords(VpdSection section, size_t begin, size_t end) {
        for (size_t at = begin; at < end;) {
            const auto head = Padded<KeywordHead>(Part(bytes_, at, end - at));
            if (end - at < sizeof head || !IsKeyword(head.name) ||
                head.length > end - at - sizeof head) {
                Fault("there is no whole keyword" + At(at));
                return;
            }
            const size_t data = at + sizeof head;
            const std::string keyword(head.name, sizeof head.name);
            vpd_.items.push_back({section, keyword, data, Part(bytes_, data, head.length)});
            if (keyword == kChecksum && section == VpdSection::ReadOnly && !vpd_.checksumHolds) {
                // All bytes up to the first one of its data add up to 0.
                vpd_.checksumHolds = head.length != 0 && SumOf(bytes_.first(data + 1)) == 0;
            }
            at = data + head.length;
        }
    }

    const Bytes bytes_;
    PciVpd vpd_;
    bool ended_ = false;
};

}  // namespace

const char* NameOf(VpdSection section) {
    constexpr const char* kNames[] = {"identifier", "read_only", "writable"};
    return kNames[static_cast<int>(section)];
}

bool VpdItem::IsText() const {
    return keyword != kChecksum && keyword != kRest &&
           std::all_of(data.begin(), data.end(),
                       [](uint8_t byte) { return byte >= ' ' && byte <= '~'; });
}

std::string VpdItem::Shown() const {
    return IsText() ? tools::FieldText(reinterpret_cast<const char*>(data.data()), data.size())
                    : HexDigits(data);
}

std::string VpdKeywordText(std::string_view keyword) {
    for (const KeywordRow& row : kKeywords) {
        if (row.keyword == keyword) {
            return row.text;
        }
    }
    return keyword.starts_with('V')   ? "vendor specific"
           : keyword.starts_with('Y') ? "system specific"
                                      : "other";
}

std::string PciVpd::Text(std::string_view keyword) const {
    for (const VpdItem& item : items) {
        if (item.section == VpdSection::ReadOnly && item.keyword == keyword) {
            return item.Shown();
        }
    }
    return {};
}

std::string PciVpd::Identifier() const {
    for (const VpdItem& item : items) {
        if (item.section == VpdSection::Identifier) {
            return item.Shown();
        }
    }
    return {};
}

PciVpd DecodeVpd(Bytes bytes) {
    return Decoder(bytes).Run();
}

}  // namespace vxmgr
