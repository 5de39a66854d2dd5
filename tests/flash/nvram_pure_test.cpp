// NVRAM variables and the text file's lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "flash/nvram_text.h"
#include "flash/nvram_variables.h"

namespace {

using namespace flash;
using Block = std::array<uint8_t, kClassicBlock>;
using ExtendedBlock = std::array<uint8_t, kExtendedBlock>;

constexpr uint32_t kPortName0 = 24;
constexpr uint32_t kFramePayload = 19;

Block EmptyBlock() {
    Block block = {};
    std::memcpy(block.data(), kNvramSignature, sizeof kNvramSignature);
    return block;
}

TEST(NvramPure, NamesKeepTheirIndexes) {
    const std::pair<uint32_t, const char*> rows[] = {
        {0, "id"},
        {1, "version"},
        {2, "version"},
        {24, "port name 0"},
        {31, "port name 7"},
        {43, "Timer Operation Mode"},
        {56, "receive out of order dataData Rate"},
        {57, "disable BIOS"},
        {78, "boot node name 7"},
        {92, "enable alt boot deviceenable boot order list"},
        {128, "alt3 boot port name 7"},
        {129, "alt3 boot LUN number"},
        {130, "subsystem vendor ID"},
        {132, "subsystem vendor ID"},
        {134, "checksum"},
    };
    for (const auto& [index, name] : rows) {
        EXPECT_STREQ(name, kVariableTable[index].name);
    }
    for (uint32_t index = 0; index < kVariables; ++index) {
        EXPECT_EQ(index < 135, kVariableTable[index].name != nullptr) << index;
        EXPECT_NE(nullptr, kVariableTable[index].description) << index;
    }
    const char* const descriptions[] = {"Adapter ID", "Adapter Version", "Firmare Version",
                                        "Enable Hard Loop ID", "Enable Fairness"};
    for (uint32_t index = 0; index < std::size(descriptions); ++index) {
        EXPECT_STREQ(descriptions[index], kVariableTable[index].description);
    }
}

// Every variable by itself: it holds what was stored, cut to its width, and touches no other.
template <size_t Size>
void CheckEveryVariable(BlockKind kind, std::array<uint8_t, Size> background) {
    for (uint32_t index = 0; index < kVariables; ++index) {
        const Variable& variable = kVariableTable[index];
        const bool there =
            kind == BlockKind::Classic ? variable.width != 0 : variable.extendedOffset != kNotThere;
        std::array<uint8_t, Size> block = background;
        const uint32_t before = GetVariable(block, kind, index);
        const uint32_t value = ~before;
        EXPECT_EQ(there, SetVariable(block, kind, index, value)) << index;
        const uint32_t mask =
            MaskOf(kind == BlockKind::Classic ? variable.width : variable.extendedWidth);
        EXPECT_EQ(there ? value & mask : 0, GetVariable(block, kind, index)) << index;
        for (uint32_t other = 0; other < kVariables; ++other) {
            if (other != index) {
                ASSERT_EQ(GetVariable(background, kind, other), GetVariable(block, kind, other))
                    << index << " " << other;
            }
        }
    }
}

TEST(NvramPure, EveryVariableHasAPlaceOfItsOwn) {
    Block classic;
    classic.fill(0xA5);
    CheckEveryVariable(BlockKind::Classic, classic);
    ExtendedBlock extended;
    extended.fill(0x5A);
    CheckEveryVariable(BlockKind::Extended, extended);
    for (const uint32_t index : {188u, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(0u, GetVariable(classic, BlockKind::Classic, index));
        EXPECT_FALSE(SetVariable(classic, BlockKind::Classic, index, 1));
        EXPECT_FALSE(IsReadOnly(classic, index));
    }
}

TEST(NvramPure, ValuesAreComparedAsGiven) {
    Block block = EmptyBlock();
    EXPECT_TRUE(SetVariable(block, BlockKind::Classic, kPortName0, 0x12C));
    EXPECT_EQ(0x2Cu, GetVariable(block, BlockKind::Classic, kPortName0));
    const Block before = block;
    EXPECT_FALSE(SetVariable(block, BlockKind::Classic, kPortName0, 0x2C));
    EXPECT_TRUE(SetVariable(block, BlockKind::Classic, kPortName0, 0x12C))
        << "0x12C is not 0x2C, although it is stored so";
    EXPECT_EQ(before, block);
    EXPECT_EQ(0x2055504Bu, GetVariable(block, BlockKind::Classic, 0)) << "\"KPU \"";
    EXPECT_TRUE(SetVariable(block, BlockKind::Classic, 0, 0x64636261));
    EXPECT_EQ(0, std::memcmp(block.data(), "abcd", 4));
}

TEST(NvramPure, ReadOnlyByFamily) {
    Block block = EmptyBlock();
    const auto readOnly = [&](uint32_t family) {
        SetVariable(block, BlockKind::Classic, kFamilyVariable, family);
        std::array<bool, 3> found = {IsReadOnly(block, 0), IsReadOnly(block, kPortName0),
                                     IsReadOnly(block, kFramePayload)};
        return found;
    };
    const std::array<bool, 3> none = {}, identity = {true, true, false}, id = {true, false, false};
    EXPECT_EQ(none, readOnly(0));
    EXPECT_EQ(identity, readOnly(1));
    EXPECT_EQ(id, readOnly(2));
    for (uint32_t family = 3; family < 9; ++family) {
        EXPECT_EQ(none, readOnly(family));
    }
    for (const uint32_t family : {9u, 10u, 11u, 255u}) {
        EXPECT_EQ(identity, readOnly(family)) << family;
    }
}

std::string LineOf(const Block& block, uint32_t index) {
    VariableLine line;
    return {line, FormatVariableLine(block, index, line)};
}

TEST(NvramPure, Lines) {
    Block block = EmptyBlock();
    SetVariable(block, BlockKind::Classic, kFramePayload, 2048);
    SetVariable(block, BlockKind::Classic, kPortName0, 0x21);
    EXPECT_EQ("id                                      [\"4 characters\"] = \"KPU \"\n",
              LineOf(block, 0));
    EXPECT_EQ("frame payload size                      [0-65535] = 2048\n",
              LineOf(block, kFramePayload));
    EXPECT_EQ("port name 0                             [0-255] = 33\n", LineOf(block, kPortName0));
    EXPECT_EQ("enable alt boot deviceenable boot order list[0-1] = 0\n", LineOf(block, 92));
    EXPECT_EQ("                                        [0-0] = 0\n", LineOf(block, 187));
    block[0] = 0;
    EXPECT_EQ("id                                      [\"4 characters\"] = \"KPU \"\n",
              LineOf(block, 0));
}

// Reads lines into a block.
Block Read(const Block& start, const std::vector<std::string>& lines, bool clear = false,
           bool keep = true) {
    Block block = start;
    VariableReader reader(block, clear, keep);
    for (const std::string& line : lines) {
        reader.TakeLine(line);
    }
    return block;
}

TEST(NvramPure, LinesComeBackAsTheyWere) {
    std::minstd_rand random(11);
    for (int round = 0; round < 20; ++round) {
        Block block;
        std::generate(block.begin(), block.end(), random);
        if (block[0] == 0) {
            block[0] = 'K';  // a signature that begins with 0 is written as "KPU "
        }
        std::vector<std::string> lines;
        for (uint32_t index = 0; index < kVariables; ++index) {
            std::string line = LineOf(block, index);
            line.pop_back();
            lines.push_back(line);
        }
        const Block read = Read(Block{}, lines);
        for (uint32_t index = 0; index < 135; ++index) {
            EXPECT_EQ(GetVariable(block, BlockKind::Classic, index),
                      GetVariable(read, BlockKind::Classic, index))
                << index << " " << lines[index];
        }
        for (uint32_t index = 135; index < kVariables; ++index) {
            EXPECT_EQ(0u, GetVariable(read, BlockKind::Classic, index)) << "nameless " << index;
        }
    }
}

TEST(NvramPure, LinesThatSayLittle) {
    const Block empty = EmptyBlock();
    struct Row {
        std::string line;
        uint32_t index, value;
    };
    const Row rows[] = {
        {"port name 0 [0-255] = 300", kPortName0, 44},
        {"port name 0=7", kPortName0, 7},
        {"port name 0 = 5 = 9", kPortName0, 9},
        {"port name 0 and so on =  12 bytes", kPortName0, 12},
        {"port name 0 = -1", kPortName0, 255},
        {"port name 0 = 4294967297", kPortName0, 1},
        {"port name 0 = 99999999999999999999999", kPortName0, 0},
        {"port name 0", kPortName0, 0},
        {"port name 0 =", kPortName0, 0},
        {"port name 0 = abc", kPortName0, 0},
        {"; port name 0 = 1", kPortName0, 0},
        {" port name 0 = 1", kPortName0, 0},
        {"Port name 0 = 1", kPortName0, 0},
        {"port name = 1", kPortName0, 0},
        {"", kPortName0, 0},
        {"=", kPortName0, 0},
        {"id = \"ABCD\"", 0, 0x44434241},
        {"id = KPU", 0, 0x5550},
        {"id = \"A\"", 0, 0x2241},
        {"id =abc", 0, 0x2055504B},
        {"id =", 0, 0x2055504B},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.value, GetVariable(Read(empty, {row.line}), BlockKind::Classic, row.index))
            << row.line;
    }
    // A variable is taken once; the second of two of one name gets the second line.
    const Block twice = Read(
        empty, {"version = 1", "version = 2", "version = 3", "port name 0 = 4", "port name 0 = 5"});
    EXPECT_EQ(1u, GetVariable(twice, BlockKind::Classic, 1));
    EXPECT_EQ(2u, GetVariable(twice, BlockKind::Classic, 2));
    EXPECT_EQ(4u, GetVariable(twice, BlockKind::Classic, kPortName0));
    // A line that gave nothing leaves its variable to the next one.
    EXPECT_EQ(6u, GetVariable(Read(empty, {"port name 0 = x", "port name 0 = 6"}),
                              BlockKind::Classic, kPortName0));
}

TEST(NvramPure, ReadOnlyVariablesKeepTheirValues) {
    Block block = EmptyBlock();
    SetVariable(block, BlockKind::Classic, kFamilyVariable, 1);
    SetVariable(block, BlockKind::Classic, kPortName0, 0x21);
    SetVariable(block, BlockKind::Classic, kFramePayload, 2048);
    const std::vector<std::string> lines = {"id = \"ABCD\"", "port name 0 = 5",
                                            "frame payload size = 512"};
    const auto values = [](const Block& read) {
        return std::array{GetVariable(read, BlockKind::Classic, kPortName0),
                          GetVariable(read, BlockKind::Classic, kFramePayload),
                          GetVariable(read, BlockKind::Classic, kFamilyVariable)};
    };
    using Values = std::array<uint32_t, 3>;
    EXPECT_EQ((Values{0x21, 512, 1}), values(Read(block, lines, false, false)));
    EXPECT_EQ((Values{5, 512, 1}), values(Read(block, lines, false, true)));
    // Cleared first, the read-only ones are restored; with the keep flag nothing is.
    EXPECT_EQ((Values{0x21, 0, 1}), values(Read(block, {}, true, false)));
    EXPECT_EQ((Values{0, 0, 0}), values(Read(block, {}, true, true)));
    EXPECT_EQ(0, std::memcmp(Read(block, lines, true, false).data(), "KPU ", 4));
}

}  // namespace
