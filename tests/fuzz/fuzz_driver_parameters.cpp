// Driver parameter strings: what is set is found again, what is removed is gone, and every other
// parameter keeps its value.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "frame/driver_parameter_text.h"
#include "require.h"

namespace {

// Takes the bytes up to the next newline off the input.
std::string_view TakeLine(std::string_view& rest) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(line.size() < rest.size() ? line.size() + 1 : line.size());
    return line;
}

std::string Edit(std::string_view text, std::string_view name,
                 std::optional<std::string_view> value) {
    std::vector<char> out(text.size() + name.size() + (value ? value->size() : 0) + 2);
    const std::optional<size_t> length = frame::EditParameters(text, name, value, out);
    Require(length.has_value() && *length <= out.size());
    return std::string(out.data(), *length);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Taking a name away for every time that it stands there takes the square of the length.
    std::string_view rest(reinterpret_cast<const char*>(data), std::min<size_t>(size, 512));
    const std::string_view name = TakeLine(rest);
    const std::string_view value = TakeLine(rest);
    const std::string_view other = TakeLine(rest);
    if (!frame::IsParameterName(name) || !frame::IsParameterValue(value)) {
        return 0;
    }
    const std::string set = Edit(rest, name, value);
    const auto found = frame::FindParameter(set, name);
    Require(found.has_value() && *found == value);
    Require(Edit(set, name, value) == set);
    if (frame::IsParameterName(other) && !frame::FindParameter(name, other) &&
        frame::FindParameter(std::string(other) + "=x", name) == std::nullopt) {
        Require(frame::FindParameter(set, other) == frame::FindParameter(rest, other));
    }
    // Once for every time that the text holds the name: then none is left.
    std::string removed = set;
    for (size_t i = 0; i <= set.size() && frame::FindParameter(removed, name); ++i) {
        removed = Edit(removed, name, std::nullopt);
    }
    Require(!frame::FindParameter(removed, name));
    std::vector<char> tooSmall(set.size() - 1);
    Require(!frame::EditParameters(rest, name, value, tooSmall));
    return 0;
}
