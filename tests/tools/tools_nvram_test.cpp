// NVRAM in vxmgr: where variables stand, names and settings, checksums, documents and texts, whole
// and damaged ones.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>

#include "vxmgr/settings/nvram_document.h"
#include "vxmgr/settings/nvram_fields.h"
#include "vxmgr/settings/nvram_text.h"

namespace {

using namespace vxmgr;
using Block = std::vector<uint8_t>;

NvramVariable Variable(uint32_t number, const char* description, BitField field) {
    NvramVariable variable = *DescribedVariable(number, description);
    variable.field = field;
    return variable;
}

// A chip with few variables: one of each kind.
NvramMap SmallMap(NvramKind kind = NvramKind::Extended) {
    NvramMap map;
    map.kind = kind;
    map.variables = {
        Variable(0, "Adapter ID", {0, 32}),
        Variable(3, "Enable Hard Loop ID", {48, 1}),
        Variable(19, "Frame Payload Size", {64, 16}),
        Variable(24, "Port Name Byte 0", {128, 8}),
        Variable(25, "Port Name Byte 1", {136, 8}),
        Variable(44, "Timer Operation Mode", {291, 3}),
        *DescribedVariable(22, "Retry Count"),
    };
    map.variables.push_back(kind == NvramKind::Extended ? Variable(137, "Checksum", {508 * 8, 32})
                                                        : Variable(137, "Checksum", {255 * 8, 8}));
    return map;
}

Block SoundBlock(NvramKind kind = NvramKind::Extended, size_t size = 0) {
    Block block(size != 0 ? size : BlockBytes(kind));
    std::copy_n("KPU ", 4, block.begin());
    block[8] = 0x00;
    block[9] = 0x08;
    block[200] = 0xEE;  // belongs to no variable
    MakeChecksum(kind, block);
    return block;
}

const NvramVariable& Named(const NvramMap& map, const char* name) {
    std::string error;
    const NvramVariable* variable = FindVariable(map, name, &error);
    EXPECT_NE(variable, nullptr) << error;
    return variable != nullptr ? *variable : map.variables.front();
}

TEST(ToolsNvramFields, ValuesStayWithinTheirBits) {
    const NvramMap map = SmallMap();
    Block block(512, 0xFF);
    const NvramVariable& mode = Named(map, "timer_operation_mode");
    SetValue(block, mode, 0);
    EXPECT_EQ(ValueOf(block, mode), 0u);
    EXPECT_EQ(block[36], 0xC7);  // bits 3 to 5
    SetValue(block, mode, 5);
    EXPECT_EQ(ValueOf(block, mode), 5u);
    EXPECT_EQ(std::count(block.begin(), block.end(), 0xFF), 511);
    // A block that ends before the variable, and one that the chip does not have.
    Block cut(36);
    SetValue(cut, mode, 7);
    EXPECT_EQ(ValueOf(cut, mode), 0u);
    EXPECT_EQ(cut, Block(36));
    EXPECT_EQ(ValueOf(block, *DescribedVariable(22, "Retry Count")), 0u);
}

TEST(ToolsNvramFields, NamesAreFoundExactlyOrByTheirOnlyStart) {
    const NvramMap map = SmallMap();
    std::string error;
    EXPECT_EQ(FindVariable(map, "Frame Payload Size", &error)->number, 19u);
    EXPECT_EQ(FindVariable(map, "frame-pay", &error)->number, 19u);
    EXPECT_EQ(FindVariable(map, "0x13", &error)->number, 19u);
    EXPECT_EQ(FindVariable(map, "port_name", &error), nullptr);
    EXPECT_EQ(error, "\"port_name\" begins 2 names: port_name_byte_0, port_name_byte_1");
    EXPECT_EQ(FindVariable(map, "port name byte 1", &error)->number, 25u);
    for (const char* wrong : {"", " ", "nothing", "999", "payload"}) {
        EXPECT_EQ(FindVariable(map, wrong, &error), nullptr) << wrong;
    }
    EXPECT_FALSE(DescribedVariable(150, "Reserved"));
    EXPECT_FALSE(DescribedVariable(188, nullptr));
}

TEST(ToolsNvramFields, SettingsAreCheckedBeforeTheyCount) {
    NvramMap map = SmallMap();
    NvramSetting setting;
    std::string error;
    EXPECT_EQ(ParseSetting(map, "frame=0x840", &setting, &error), SettingFault::None);
    EXPECT_EQ(setting.value, 2112u);
    EXPECT_EQ(ParseSetting(map, "19=65535", &setting, &error), SettingFault::None);
    EXPECT_EQ(ParseSetting(map, "19=65536", &setting, &error), SettingFault::Usage);
    EXPECT_EQ(error, "frame_payload_size: \"65536\" is no number from 0 to 65535");
    for (const char* wrong : {"19", "=5", "19=", "19=-1", "19=1x", "19=1=1"}) {
        EXPECT_EQ(ParseSetting(map, wrong, &setting, &error), SettingFault::Usage) << wrong;
    }
    EXPECT_EQ(ParseSetting(map, "retry_count=1", &setting, &error), SettingFault::NotSupported);
    EXPECT_EQ(ParseSetting(map, "checksum=1", &setting, &error), SettingFault::Refused);
    EXPECT_EQ(ParseSetting(map, "adapter_id=1", &setting, &error), SettingFault::Refused);
    map.variables[2].readOnly = true;
    EXPECT_EQ(ParseSetting(map, "19=1", &setting, &error), SettingFault::Refused);
}

TEST(ToolsNvramFields, DifferencesAreVariablesAndTheBytesBeside) {
    const NvramMap map = SmallMap();
    const Block before = SoundBlock();
    Block after = before;
    EXPECT_TRUE(DifferenceOf(map, before, after).Equal());
    SetValue(after, Named(map, "frame"), 1024);
    MakeChecksum(map.kind, after);
    NvramDifference difference = DifferenceOf(map, before, after);
    ASSERT_EQ(difference.changes.size(), 1u);  // the checksum is no change of its own
    EXPECT_EQ(difference.changes[0].before, 2048u);
    EXPECT_EQ(difference.changes[0].after, 1024u);
    EXPECT_EQ(difference.otherBytes, 0u);
    after[6] ^= 0x02;  // beside the bit of a variable
    after[200] = 0;
    EXPECT_EQ(DifferenceOf(map, before, after).otherBytes, 2u);
    after.resize(600, 1);
    EXPECT_EQ(DifferenceOf(map, before, after).otherBytes, 90u);
    after[0] = 'X';
    EXPECT_EQ(DifferenceOf(map, before, after).changes.front().variable->number, 0u);
}

TEST(ToolsNvramBlock, ChecksumsOfBothKinds) {
    Block classic = SoundBlock(NvramKind::Classic);
    unsigned sum = 0;
    for (const uint8_t byte : classic) {
        sum += byte;
    }
    EXPECT_EQ(sum % 256, 0u);
    EXPECT_TRUE(IsSound(NvramKind::Classic, classic));
    classic[17] ^= 0x10;
    EXPECT_FALSE(ChecksumHolds(NvramKind::Classic, classic));

    // Behind the block of a longer region nothing counts.
    Block extended = SoundBlock(NvramKind::Extended, 1024);
    EXPECT_TRUE(IsSound(NvramKind::Extended, extended));
    extended[512] = 7;
    EXPECT_TRUE(IsSound(NvramKind::Extended, extended));
    std::swap(extended[0], extended[4]);  // the same sum of words, another signature
    EXPECT_TRUE(ChecksumHolds(NvramKind::Extended, extended));
    EXPECT_FALSE(IsSound(NvramKind::Extended, extended));
    EXPECT_FALSE(ChecksumHolds(NvramKind::Extended, Bytes(extended).first(511)));
    Block tiny(3, 1);
    MakeChecksum(NvramKind::Classic, tiny);
    EXPECT_EQ(tiny, Block(3, 1));
    EXPECT_FALSE(HasSignature(tiny));
    EXPECT_TRUE(IsBlank(Block(512, 0xFF)) && IsBlank(Block(4)) && !IsBlank(SoundBlock()));
}

class ToolsNvramDocument : public testing::Test {
  protected:
    ToolsNvramDocument() {
        origin_.port.serial = "S1";
        origin_.port.portName.bytes = {0x21, 0, 0, 2, 3, 4, 5, 6};
        origin_.chip = 0x7740;
        text_ = NvramDocumentText(origin_, map_, block_);
    }

    // The document after a change of its JSON.
    std::string Changed(const std::function<void(nlohmann::json&)>& change) const {
        nlohmann::json json = nlohmann::json::parse(text_);
        change(json);
        return json.dump();
    }
    static nlohmann::json& Row(nlohmann::json& json, uint32_t number) {
        for (nlohmann::json& row : json["variables"]) {
            if (row["number"] == number) {
                return row;
            }
        }
        throw std::logic_error("no such row");
    }
    std::string ErrorOf(const std::string& text) const {
        try {
            ReadNvramDocument(text, map_);
        } catch (const DocumentError& error) {
            return error.text;
        }
        return "";
    }

    const NvramMap map_ = SmallMap();
    const Block block_ = SoundBlock(NvramKind::Extended, 600);
    NvramOrigin origin_;
    std::string text_;
};

TEST_F(ToolsNvramDocument, UntouchedOnesGiveTheVeryBytesBack) {
    const NvramDocument read = ReadNvramDocument(text_, map_);
    EXPECT_EQ(read.block, block_);
    EXPECT_EQ(read.origin.chip, 0x7740);
    EXPECT_EQ(read.origin.port.portName, origin_.port.portName);
    EXPECT_EQ(read.origin.port.serial, "S1");
}

TEST_F(ToolsNvramDocument, EditedVariablesCount) {
    const NvramDocument read = ReadNvramDocument(
        Changed([](nlohmann::json& json) { Row(json, 19)["value"] = 1024; }), map_);
    EXPECT_TRUE(IsSound(map_.kind, read.block));
    const NvramDifference difference = DifferenceOf(map_, block_, read.block);
    ASSERT_EQ(difference.changes.size(), 1u);
    EXPECT_EQ(difference.changes[0].after, 1024u);
    EXPECT_EQ(difference.otherBytes, 0u);
}

TEST_F(ToolsNvramDocument, WhatDoesNotFitIsRefused) {
    using Change = std::function<void(nlohmann::json&)>;
    const std::pair<const char*, Change> kCases[] = {
        {"wrong checksum",
         [](nlohmann::json& j) {
             std::string hex = j["block"];
             hex[100] = hex[100] == '0' ? '1' : '0';
             j["block"] = hex;
         }},
        {"no document kind", [](nlohmann::json& j) { j["document"] = "vxmgr.bindings"; }},
        {"another kind", [](nlohmann::json& j) { j["kind"] = "classic"; }},
        {"too small", [](nlohmann::json& j) { j["size"] = 511; }},
        {"other size", [](nlohmann::json& j) { j["size"] = 601; }},
        {"huge size", [](nlohmann::json& j) { j["size"] = 1 << 30; }},
        {"negative size", [](nlohmann::json& j) { j["size"] = -1; }},
        {"no block", [](nlohmann::json& j) { j.erase("block"); }},
        {"unknown key", [](nlohmann::json& j) { j["more"] = 1; }},
        {"unknown variable", [](nlohmann::json& j) { Row(j, 19)["number"] = 20; }},
        {"variable that the chip lacks",
         [](nlohmann::json& j) {
             j["variables"].push_back({{"number", 22}, {"name", "retry_count"}, {"value", 0}});
         }},
        {"number beyond all", [](nlohmann::json& j) { Row(j, 19)["number"] = 188; }},
        {"other name", [](nlohmann::json& j) { Row(j, 19)["name"] = "frame"; }},
        {"too large", [](nlohmann::json& j) { Row(j, 19)["value"] = 65536; }},
        {"twice", [](nlohmann::json& j) { j["variables"].push_back(Row(j, 19)); }},
        {"signature", [](nlohmann::json& j) { Row(j, 0)["value"] = 1; }},
        {"checksum edited", [](nlohmann::json& j) { Row(j, 137)["value"] = 1; }},
        {"chip", [](nlohmann::json& j) { j["chip"] = "0x17740"; }},
    };
    for (const auto& [what, change] : kCases) {
        EXPECT_NE(ErrorOf(Changed(change)), "") << what;
    }
    EXPECT_NE(ErrorOf(""), "");
    EXPECT_NE(ErrorOf("[]"), "");
    EXPECT_NE(ErrorOf(text_.substr(0, text_.size() / 2)), "");
}

// As the library writes it, names that stand twice and one without a name among them.
constexpr char kModel[] =
    "id                                      [\"4 characters\"] = \"KPU \"\n"
    "version                                 [0-255] = 1\n"
    "version                                 [0-255] = 2\n"
    "enable alt boot deviceenable boot order list[0-1] = 0\n"
    "frame payload size                      [0-65535] = 2048\n"
    "                                        [0-0] = 0\n";

std::string TextError(const std::string& text) {
    try {
        CheckNvramText(text, kModel);
    } catch (const DocumentError& error) {
        return error.text;
    }
    return "";
}

TEST(ToolsNvramText, AcceptsWhatTheLibraryUnderstands) {
    EXPECT_EQ(TextError(kModel), "");
    EXPECT_EQ(TextError("; a comment\n\nframe payload size [0-65535] = 0\r\n"), "");
    EXPECT_EQ(TextError("frame payload size=65535"), "");
    EXPECT_EQ(TextError("enable alt boot deviceenable boot order list[0-1] = 1"), "");
}

TEST(ToolsNvramText, NamesTheFirstLineThatIsWrong) {
    const std::pair<const char*, const char*> kCases[] = {
        {"version [0-255] = 1\nframe payload = 1", "line 2: begins with no variable's name"},
        {" version [0-255] = 1", "line 1: begins with no variable's name"},
        {"version [0-255]", "line 1: \"version\" has no value"},
        {"version = 256", "line 1: \"version\" is no number from 0 to 255"},
        {"version = -1", "line 1: \"version\" is no number from 0 to 255"},
        {"version = 1 2", "line 1: \"version\" is no number from 0 to 255"},
        {"version = 1\nversion = 1\nversion = 1", "line 3: \"version\" stands too often"},
        {"id = \"XPU \"", "line 1: \"id\" is not \"KPU \""},
        {"", "no NVRAM text: it names no variable"},
        {"; nothing\n", "no NVRAM text: it names no variable"},
    };
    for (const auto& [text, error] : kCases) {
        EXPECT_EQ(TextError(text), error) << text;
    }
    EXPECT_NE(TextError("version = 1" + std::string(300, ' ')), "");
    EXPECT_NE(TextError(std::string("\x7F"
                                    "ELF\0\0\n\xFF\xFE=",
                                    10)),
              "");
}

}  // namespace
