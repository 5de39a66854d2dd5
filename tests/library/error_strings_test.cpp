#include <gtest/gtest.h>
#include <windows.h>

#include <set>
#include <string>
#include <thread>

#include "hxmgtapi.h"

namespace {

std::string TextOf(HX_STATUS status) {
    return HXGetErrorString(status);
}

std::string UnknownText(HX_STATUS status) {
    char text[32];
    snprintf(text, sizeof text, "...Unknown 0x%x...", status);
    return text;
}

TEST(ErrorStringsTest, FixedTexts) {
    EXPECT_EQ("None", TextOf(0));
    EXPECT_EQ("Invalid command code", TextOf(0x20000002));
    EXPECT_EQ("Handle to HBA device is invalid", TextOf(0x20000065));
    EXPECT_EQ("Error in transfering SFP data", TextOf(0x200000A2));
    EXPECT_EQ("FirmWare State is not valid", TextOf(0x2000007E));
    EXPECT_EQ("NVRam CheckSum is not valid", TextOf(0x2000007D));
    EXPECT_EQ("(09h) No Additional Explanation", TextOf(0x20000008));
    EXPECT_EQ("Zone Member Identifier Type not supported", TextOf(0x20000060));
    EXPECT_EQ("Failed to enable port", TextOf(0x2000011A));
    EXPECT_EQ("Command not supported", TextOf(0x2000001C));
    EXPECT_EQ("Command not supported", TextOf(0x20000066));
}

TEST(ErrorStringsTest, OneHundredAndTwentyNineCodesHaveTexts) {
    int known = 1;  // 0
    std::multiset<std::string> texts = {TextOf(0)};
    for (HX_STATUS status = 0x20000000; status < 0x20001000; ++status) {
        const std::string text = TextOf(status);
        if (text != UnknownText(status)) {
            ++known;
            texts.insert(text);
        }
    }
    EXPECT_EQ(129, known);
    // No text stands for two codes, but for the one pair.
    const std::set<std::string> distinct(texts.begin(), texts.end());
    EXPECT_EQ(128u, distinct.size());
    EXPECT_EQ(2u, texts.count("Command not supported"));
}

TEST(ErrorStringsTest, UnknownCodes) {
    EXPECT_EQ("...Unknown 0x200000a3...", TextOf(0x200000A3));
    EXPECT_EQ("...Unknown 0x20000000...", TextOf(0x20000000));
    EXPECT_EQ("...Unknown 0x20000001...", TextOf(0x20000001));
    EXPECT_EQ("...Unknown 0x20000115...", TextOf(0x20000115));
    EXPECT_EQ("...Unknown 0x2000011b...", TextOf(0x2000011B));
    EXPECT_EQ("...Unknown 0x60000000...", TextOf(0x60000000));
    EXPECT_EQ("...Unknown 0xffffffff...", TextOf(0xFFFFFFFF));
    EXPECT_EQ("...Unknown 0x60000065...", TextOf(0x60000065));
}

TEST(ErrorStringsTest, SystemCodes) {
    for (const DWORD error : {2ul, 5ul, 170ul}) {
        char expected[256] = "";
        ASSERT_NE(0u, FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, error, 0, expected,
                                     sizeof expected, nullptr));
        EXPECT_EQ(expected, TextOf(error));
    }
    // A number the system has no text for leaves the buffer as it was.
    const std::string before = TextOf(0x200000A3);
    EXPECT_EQ(before, TextOf(0x40000000));
    EXPECT_EQ(before, TextOf(0xDFFFFFFE));
}

TEST(ErrorStringsTest, EachThreadHasItsBuffer) {
    const char* const mine = HXGetErrorString(0x200000A3);
    std::string others;
    std::thread([&] { others = HXGetErrorString(0x200000A4); }).join();
    EXPECT_EQ("...Unknown 0x200000a4...", others);
    EXPECT_STREQ("...Unknown 0x200000a3...", mine);
}

}  // namespace
