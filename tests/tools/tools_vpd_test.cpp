// Vital product data: what is read from it, and that no length in it leads astray.
#include <gtest/gtest.h>

#include <random>

#include "support/has.h"
#include "vxmgr/settings/vpd_pci.h"

namespace {

using namespace vxmgr;
using Data = std::vector<uint8_t>;

void Put(Data& data, std::string_view text) {
    data.insert(data.end(), text.begin(), text.end());
}

void PutTag(Data& data, uint8_t tag, const Data& content) {
    data.insert(data.end(), {tag, static_cast<uint8_t>(content.size()),
                             static_cast<uint8_t>(content.size() >> 8)});
    data.insert(data.end(), content.begin(), content.end());
}

void PutKeyword(Data& data, std::string_view name, std::string_view text) {
    Put(data, name);
    data.push_back(static_cast<uint8_t>(text.size()));
    Put(data, text);
}

// Identifier, read-only section with a good checksum, writable section, end tag, and room behind.
Data Sample(size_t size = 256) {
    Data identifier;
    Put(identifier, "Adapter");
    Data readOnly;
    PutKeyword(readOnly, "PN", "P-1 ");
    PutKeyword(readOnly, "SN", "S00017");
    PutKeyword(readOnly, "V0", "own");
    PutKeyword(readOnly, "RV", std::string(3, '\0'));
    Data data;
    PutTag(data, 0x82, identifier);
    PutTag(data, 0x90, readOnly);
    uint8_t& checksum = data[data.size() - 3];
    for (size_t i = 0; i + 3 < data.size(); ++i) {
        checksum = static_cast<uint8_t>(checksum - data[i]);
    }
    Data writable;
    PutKeyword(writable, "YA", "asset");
    PutKeyword(writable, "RW", std::string(2, '\0'));
    PutTag(data, 0x91, writable);
    data.push_back(0x78);
    data.resize(std::max(size, data.size()));
    return data;
}

std::string Faults(const Data& data) {
    std::string text;
    for (const std::string& fault : DecodeVpd(data).faults) {
        text += (text.empty() ? "" : "; ") + fault;
    }
    return text;
}

TEST(ToolsVpd, TagsAndKeywords) {
    const Data data = Sample();
    const PciVpd vpd = DecodeVpd(data);
    EXPECT_EQ(Faults(data), "");
    EXPECT_EQ(vpd.checksumHolds, true);
    ASSERT_EQ(vpd.items.size(), 7u);
    EXPECT_EQ(vpd.Identifier(), "Adapter");
    EXPECT_EQ(vpd.Text("PN"), "P-1");
    EXPECT_EQ(vpd.Text("SN"), "S00017");
    EXPECT_EQ(vpd.Text("YA"), "");  // not in the read-only section
    EXPECT_EQ(vpd.items[5].section, VpdSection::Writable);
    EXPECT_EQ(vpd.items[5].Shown(), "asset");
    EXPECT_EQ(vpd.items[6].Shown(), "0000");
    EXPECT_EQ(data[vpd.used - 1], 0x78);
    EXPECT_EQ(VpdKeywordText("V0"), "vendor specific");
    // What stands behind the end tag does not count.
    Data longer = data;
    longer[vpd.used] = 0x90;
    EXPECT_EQ(Faults(longer), "");
}

TEST(ToolsVpd, EveryByteBeforeTheChecksumCounts) {
    const Data data = Sample();
    const PciVpd vpd = DecodeVpd(data);
    const size_t checksum = vpd.items[4].offset;
    for (size_t i = 0; i <= checksum; ++i) {
        Data broken = data;
        broken[i] ^= 0x20;
        EXPECT_NE(Faults(broken), "") << i;
    }
    Data behind = data;
    behind[checksum + 1] = 9;  // the reserve
    EXPECT_EQ(Faults(behind), "");
}

TEST(ToolsVpd, WhatIsMissingIsSaid) {
    EXPECT_EQ(Faults({}), "there is no end tag; there is no checksum");
    EXPECT_EQ(Faults({0x78}), "it does not begin with an identifier tag; there is no checksum");
    EXPECT_EQ(Faults(Data(64, 0xFF)),
              "it does not begin with an identifier tag; "
              "the tag 0xff at 0x0000 is longer than the data");
    Data noEnd = Sample(0);
    noEnd.pop_back();
    EXPECT_EQ(Faults(noEnd), "there is no end tag");
    EXPECT_TRUE(support::Has(Faults(Data(512)), "is unknown"));
}

TEST(ToolsVpd, LengthsStayWithinTheirSection) {
    // A keyword that ends beyond its section, but within the data.
    Data data = {0x82, 1, 0, 'A', 0x90, 5, 0, 'P', 'N', 3, 'x', 'y', 'z', 0x78};
    EXPECT_TRUE(support::Has(Faults(data), "there is no whole keyword at 0x0007"));
    EXPECT_TRUE(DecodeVpd(data).Text("PN").empty());
    // The same with two bytes of a keyword's head, and with none of the length bytes of a tag.
    EXPECT_TRUE(
        support::Has(Faults({0x82, 1, 0, 'A', 0x90, 2, 0, 'P', 'N', 0x78}), "no whole keyword"));
    EXPECT_TRUE(support::Has(Faults({0x82}), "longer than the data"));
    EXPECT_TRUE(support::Has(Faults({0x82, 0}), "longer than the data"));
    // A checksum without a byte.
    EXPECT_TRUE(support::Has(Faults({0x82, 1, 0, 'A', 0x90, 3, 0, 'R', 'V', 0, 0x78}),
                             "checksum is wrong"));
    // Every cut of a good one, and random bytes: items always lie within the data.
    const Data good = Sample(0);
    std::mt19937 random(7);
    for (size_t round = 0; round < 2000; ++round) {
        Data bytes(good.begin(), good.begin() + static_cast<ptrdiff_t>(round % good.size()));
        for (size_t i = 0; i < bytes.size() && round >= good.size(); i += 1 + random() % 9) {
            bytes[i] = static_cast<uint8_t>(random());
        }
        for (const VpdItem& item : DecodeVpd(bytes).items) {
            ASSERT_LE(item.offset + item.data.size(), bytes.size());
        }
    }
}

}  // namespace
