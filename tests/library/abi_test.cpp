#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "hxmgtapi.h"
#include "machine/import_redirection.h"

extern "C" uint32_t VersionSeenFromC();
extern "C" const char* InvalidHandleTextSeenFromC();

namespace {

using Names = std::set<std::string>;

std::string FileText(const std::string& name) {
    std::ifstream file(VXMGMT_SOURCE_FOLDER "/" + name);
    EXPECT_TRUE(file.good()) << name;
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

Names ExportsOfLibrary() {
    const auto* const base = reinterpret_cast<const uint8_t*>(support::LibraryModule());
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto* const exports = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(
        base + headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress);
    EXPECT_STREQ("VXMGMT.DLL", reinterpret_cast<const char*>(base + exports->Name));
    // lld leaves ordinal 0 as an empty place.
    const auto* const functions =
        reinterpret_cast<const uint32_t*>(base + exports->AddressOfFunctions);
    EXPECT_EQ(exports->NumberOfNames,
              exports->NumberOfFunctions -
                  std::count(functions, functions + exports->NumberOfFunctions, 0u))
        << "exports without a name";
    const auto* const names = reinterpret_cast<const uint32_t*>(base + exports->AddressOfNames);
    Names found;
    for (uint32_t i = 0; i < exports->NumberOfNames; ++i) {
        found.insert(reinterpret_cast<const char*>(base + names[i]));
    }
    return found;
}

Names NamesInDefinition(const std::string& text) {
    Names found;
    bool inExports = false;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line.substr(0, line.find(';')));
        std::string word;
        if (!(words >> word)) {
            continue;
        }
        if (word == "EXPORTS" || word == "LIBRARY") {
            inExports = word == "EXPORTS";
        } else if (inExports) {
            EXPECT_TRUE(found.insert(word).second) << word << " stands there twice";
        }
    }
    return found;
}

Names PrototypesOf(std::string header) {
    header = std::regex_replace(header, std::regex(R"(/\*[^*]*\*+(?:[^/*][^*]*\*+)*/)"), "");
    header = std::regex_replace(header, std::regex("#[^\n]*"), "");
    const std::regex prototype(R"((\w+)\s*\([^();{}]*\)\s*;)");
    Names found;
    for (std::sregex_iterator match(header.begin(), header.end(), prototype), end; match != end;
         ++match) {
        found.insert((*match)[1]);
    }
    return found;
}

// The standard API's header, hxmgtapi.h and whatever it brings along.
std::string PublicHeaders() {
    const std::string chief = FileText("include/hxmgtapi.h");
    std::string all = FileText("include/hbaapi.h") + chief;
    const std::regex include(R"re(#include "(\w+\.h)")re");
    for (std::sregex_iterator match(chief.begin(), chief.end(), include), end; match != end;
         ++match) {
        all += FileText("include/" + (*match)[1].str());
    }
    return all;
}

TEST(Abi, ExportsAreTheDefinitionAndTheHeaders) {
    const Names exports = ExportsOfLibrary();
    EXPECT_GE(exports.size(), 30u);
    EXPECT_EQ(NamesInDefinition(FileText("src/vxmgmt.def")), exports);
    EXPECT_EQ(PrototypesOf(PublicHeaders()), exports);
}

TEST(Abi, ImportsAreThePlatformAlone) {
    const Names allowed = {"kernel32.dll", "advapi32.dll", "user32.dll", "msvcrt.dll",
                           "ucrtbase.dll"};
    const auto imports = support::ImportsOf(support::LibraryModule());
    EXPECT_GE(imports.size(), 20u);
    for (const support::Import& import : imports) {
        std::string library = import.library;
        for (char& letter : library) {
            letter = static_cast<char>(tolower(static_cast<unsigned char>(letter)));
        }
        EXPECT_TRUE(allowed.contains(library) || library.starts_with("api-ms-win-crt-"))
            << import.library << " " << import.function;
    }
}

TEST(Abi, HeaderServesC) {
    EXPECT_EQ(HX_VERSION_PACKED, VersionSeenFromC());
    EXPECT_STREQ("Handle to HBA device is invalid", InvalidHandleTextSeenFromC());
}

}  // namespace
