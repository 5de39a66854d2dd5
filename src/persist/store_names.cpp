#include "persist/store_names.h"

#include <cstdio>

namespace persist {
namespace {

constexpr size_t kFieldStep = 3;  // two digits and a dash

}  // namespace

bool HasWwnForm(std::string_view name) {
    for (size_t dash = kFieldStep - 1; dash < kWwnTextLength; dash += kFieldStep) {
        if (dash >= name.size() || name[dash] != '-') {
            return false;
        }
    }
    return true;
}

std::optional<Wwn> ParseWwn(const char* name) {
    // A single digit will do, and a blank before it: intended.
    unsigned short f[8] = {};
    if (!HasWwnForm(name) || std::sscanf(name, "%2hx-%2hx-%2hx-%2hx-%2hx-%2hx-%2hx-%2hx", &f[0],
                                         &f[1], &f[2], &f[3], &f[4], &f[5], &f[6], &f[7]) != 8) {
        return std::nullopt;
    }
    Wwn wwn;
    for (size_t i = 0; i < wwn.size(); ++i) {
        wwn[i] = static_cast<uint8_t>(f[i]);
    }
    return wwn;
}

}  // namespace persist
