// Texts of driver replies, which need not end anywhere.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "frame/driver_version.h"
#include "frame/hex_dump.h"
#include "properties/adapter_texts.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // An exact copy, so that one byte too far is seen.
    const std::vector<char> field(data, data + size);
    const std::string_view text = properties::TextOf(field);
    Require(text.size() <= size);

    const auto split = properties::SplitManufacturerAndSerial(text);
    Require(split.manufacturer.find('-') == std::string_view::npos);
    Require(split.manufacturer.size() + split.serial.size() <= text.size());

    static_cast<void>(frame::ParseDriverVersion(field));
    static_cast<void>(properties::ReportsSpeeds(text));

    char narrow[16];
    properties::PutText(text, narrow);
    Require(std::equal(narrow, narrow + std::min(text.size(), sizeof narrow), text.begin()));

    const std::span<const uint8_t> bytes(data, size);
    for (size_t offset = 0; offset < size; offset += frame::kDumpRowBytes) {
        frame::DumpRowText row;
        frame::FormatDumpRow(bytes, offset, row);
        Require(std::strlen(row) == 9 + 48 + 5 + 16 + 1);
    }
    if (size >= 3) {
        properties::NumericSerial serial;
        properties::FormatNumericSerial(std::span<const uint8_t, 3>(data, 3), serial);
        Require(std::strlen(serial) == 6);
    }
    return 0;
}
