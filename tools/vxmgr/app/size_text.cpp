#include "vxmgr/app/size_text.h"

#include <cstdio>
#include <iterator>

namespace vxmgr {
namespace {

std::string Scaled(uint64_t bytes, double step, const char* const (&units)[6]) {
    double value = static_cast<double>(bytes) / step;
    size_t unit = 0;
    while (value >= step && unit + 1 < std::size(units)) {
        value /= step;
        ++unit;
    }
    char text[40];
    std::snprintf(text, sizeof text, "%.2f %s", value, units[unit]);
    return text;
}

}  // namespace

std::string SizeText(uint64_t bytes) {
    constexpr const char* kDecimal[] = {"kB", "MB", "GB", "TB", "PB", "EB"};
    constexpr const char* kBinary[] = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    if (bytes < 1000) {
        return std::to_string(bytes) + " bytes";
    }
    return Scaled(bytes, 1000, kDecimal) + " (" + Scaled(bytes, 1024, kBinary) + ")";
}

}  // namespace vxmgr
