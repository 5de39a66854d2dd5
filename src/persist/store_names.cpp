#include "persist/store_names.h"

namespace persist {
namespace {

constexpr size_t kFieldStep = 3;  // two digits and a dash

int DigitOf(char letter) {
    if (letter >= '0' && letter <= '9') {
        return letter - '0';
    }
    const char lower = static_cast<char>(letter | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

}  // namespace

bool HasWwnForm(std::string_view name) {
    for (size_t dash = kFieldStep - 1; dash < kWwnTextLength; dash += kFieldStep) {
        if (dash >= name.size() || name[dash] != '-') {
            return false;
        }
    }
    return true;
}

std::optional<Wwn> ParseWwn(std::string_view name) {
    Wwn wwn{};
    if (!HasWwnForm(name) || name.size() < kWwnTextLength) {
        return std::nullopt;
    }
    for (size_t i = 0; i < wwn.size(); ++i) {
        const int high = DigitOf(name[i * kFieldStep]);
        const int low = DigitOf(name[i * kFieldStep + 1]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        wwn[i] = static_cast<uint8_t>(high * 16 + low);
    }
    return wwn;
}

}  // namespace persist
