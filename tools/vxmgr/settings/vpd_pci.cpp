#include "vxmgr/settings/vpd_pci.h"

#include <algorithm>

#include "formats/vpd_tags.h"

namespace vxmgr {
namespace {

using formats::kEndTag;
using formats::kIdentifierTag;
using formats::kReadOnlyTag;
using formats::kWritableTag;

constexpr std::string_view kRest = "RW";  // what is left of the writable section

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
    return " at " + Hex(offset, 4);
}

bool IsKeyword(std::string_view name) {
    return std::all_of(name.begin(), name.end(), [](char letter) {
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
        const auto part = formats::TagAt(bytes_, at);
        if (!part) {
            Fault("the tag " + Hex(tag, 2) + At(at) + " is longer than the data");
            return 0;
        }
        if (tag == kIdentifierTag) {
            Add(VpdSection::Identifier, "", *part);
        } else if (tag == kReadOnlyTag || tag == kWritableTag) {
            Keywords(tag == kReadOnlyTag ? VpdSection::ReadOnly : VpdSection::Writable, *part);
        } else if ((tag & ~formats::kSmallLength) == kEndTag) {
            ended_ = true;
        } else {
            Fault("the tag " + Hex(tag, 2) + At(at) + " is unknown");
        }
        return part->End();
    }

    void Keywords(VpdSection section, const formats::VpdPart& all) {
        for (size_t at = all.data; at < all.End();) {
            const auto part = formats::KeywordAt(bytes_, at, all.End());
            const Bytes name = Part(bytes_, at, sizeof formats::KeywordHead::name);
            const std::string keyword(name.begin(), name.end());
            if (!part || !IsKeyword(keyword)) {
                Fault("there is no whole keyword" + At(at));
                return;
            }
            Add(section, keyword, *part);
            if (keyword == formats::kChecksumKeyword && section == VpdSection::ReadOnly &&
                !vpd_.checksumHolds) {
                vpd_.checksumHolds = formats::ChecksumHolds(bytes_, *part);
            }
            at = part->End();
        }
    }

    void Add(VpdSection section, std::string keyword, const formats::VpdPart& part) {
        vpd_.items.push_back(
            {section, std::move(keyword), part.data, Part(bytes_, part.data, part.length)});
    }

    const Bytes bytes_;
    PciVpd vpd_;
    bool ended_ = false;
};

}  // namespace

bool VpdItem::IsText() const {
    return keyword != formats::kChecksumKeyword && keyword != kRest &&
           std::all_of(data.begin(), data.end(),
                       [](uint8_t byte) { return byte >= ' ' && byte <= '~'; });
}

std::string VpdItem::Shown() const {
    return IsText() ? FieldText(reinterpret_cast<const char*>(data.data()), data.size())
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
