#include "vxmgr/settings/nvram_text.h"

#include <charconv>
#include <map>

#include "vxmgr/app/document.h"

namespace vxmgr {
namespace {

constexpr size_t kLongestLine = 254;  // the library takes a longer one for several
constexpr std::string_view kSignature = "\"KPU \"";

std::string_view Trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

// A line in its parts: "frame payload size   [0-65535] = 2048".
struct Line {
    std::string_view name;
    std::string_view range;  // within the brackets
    std::optional<std::string_view> value;
};

Line PartsOf(std::string_view text) {
    Line line;
    const size_t equals = text.rfind('=');
    if (equals != std::string_view::npos) {
        line.value = Trimmed(text.substr(equals + 1));
    }
    const std::string_view head = text.substr(0, equals);
    const size_t bracket = head.find('[');
    line.name = Trimmed(head.substr(0, bracket));
    if (bracket != std::string_view::npos) {
        const size_t end = head.rfind(']');
        line.range = head.substr(bracket + 1, end > bracket ? end - bracket - 1 : 0);
    }
    return line;
}

std::vector<std::string_view> LinesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

std::optional<uint64_t> Decimal(std::string_view text) {
    uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} && end == text.data() + text.size() ? std::optional(number)
                                                                    : std::nullopt;
}

// Highest values of the variables of one name, in their order; none for the signature's text.
using Known = std::map<std::string, std::vector<std::optional<uint64_t>>, std::less<>>;

Known KnownVariables(std::string_view model) {
    Known known;
    for (const std::string_view text : LinesOf(model)) {
        const Line line = PartsOf(text);
        if (!line.name.empty()) {
            const size_t dash = line.range.find('-');
            known[std::string(line.name)].push_back(dash == std::string_view::npos
                                                        ? std::nullopt
                                                        : Decimal(line.range.substr(dash + 1)));
        }
    }
    return known;
}

[[noreturn]] void Fail(size_t number, const std::string& text) {
    throw DocumentError{"line " + std::to_string(number) + ": " + text};
}

}  // namespace

void CheckNvramText(std::string_view text, std::string_view model) {
    const Known known = KnownVariables(model);
    std::map<std::string_view, size_t> met;
    size_t number = 0;
    size_t variables = 0;
    for (const std::string_view raw : LinesOf(text)) {
        ++number;
        const Line line = PartsOf(raw);
        const bool nameless = line.name.empty() && (!line.range.empty() || !line.value);
        if (raw.starts_with(';') || nameless) {
            continue;
        }
        if (raw.size() > kLongestLine) {
            Fail(number, "longer than " + std::to_string(kLongestLine) + " characters");
        }
        const auto found = known.find(line.name);
        if (found == known.end() || raw.front() == ' ' || raw.front() == '\t') {
            Fail(number, "begins with no variable's name");
        }
        const std::string name = "\"" + found->first + "\"";
        const size_t before = met[found->first]++;
        if (before >= found->second.size()) {
            Fail(number, name + " stands too often");
        }
        if (!line.value) {
            Fail(number, name + " has no value");
        }
        const std::optional<uint64_t> most = found->second[before];
        if (!most && *line.value != kSignature) {
            Fail(number, name + " is not " + std::string(kSignature));
        }
        if (most && (!Decimal(*line.value) || *Decimal(*line.value) > *most)) {
            Fail(number, name + " is no number from 0 to " + std::to_string(*most));
        }
        ++variables;
    }
    if (variables == 0) {
        throw DocumentError{"no NVRAM text: it names no variable"};
    }
}

}  // namespace vxmgr
