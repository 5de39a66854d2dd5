// The emulated driver reads with this in the kernel: nothing here may throw, substr() included.
#include "frame/driver_parameter_text.h"

#include <algorithm>

namespace frame {
namespace {

constexpr std::string_view kSeparators = " ;";

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Lower(x) == Lower(y); });
}

// Takes the next token off the text; empty at the end.
std::string_view NextToken(std::string_view& rest) {
    rest.remove_prefix(std::min(rest.find_first_not_of(kSeparators), rest.size()));
    const std::string_view token(rest.data(),
                                 std::min(rest.find_first_of(kSeparators), rest.size()));
    rest.remove_prefix(token.size());
    return token;
}

bool IsNamed(std::string_view token, std::string_view name) {
    return token.size() > name.size() && token[name.size()] == '=' &&
           EqualIgnoringCase({token.data(), name.size()}, name);
}

// Joins pieces with ';' into a buffer.
class Joiner {
  public:
    explicit Joiner(std::span<char> out) : out_(out) {}

    void BeginToken() {
        if (length_ != 0) {
            Put(";");
        }
    }
    void Put(std::string_view piece) {
        if (piece.size() > out_.size() - length_) {
            fits_ = false;
            return;
        }
        std::copy(piece.begin(), piece.end(), out_.begin() + static_cast<ptrdiff_t>(length_));
        length_ += piece.size();
    }
    void PutParameter(std::string_view name, std::string_view value) {
        BeginToken();
        Put(name);
        Put("=");
        Put(value);
    }
    std::optional<size_t> Length() const {
        return fits_ ? std::optional<size_t>(length_) : std::nullopt;
    }

  private:
    std::span<char> out_;
    size_t length_ = 0;
    bool fits_ = true;
};

}  // namespace

std::optional<std::string_view> FindParameter(std::string_view text, std::string_view name) {
    for (std::string_view token = NextToken(text); !token.empty(); token = NextToken(text)) {
        if (IsNamed(token, name)) {
            std::string_view value = token;
            value.remove_prefix(name.size() + 1);
            return value.empty() ? std::nullopt : std::optional(value);
        }
    }
    return std::nullopt;
}

bool IsParameterName(std::string_view name) {
    return IsParameterValue(name) && name.find('=') == std::string_view::npos;
}

bool IsParameterValue(std::string_view value) {
    return !value.empty() && value.find_first_of(kSeparators) == std::string_view::npos &&
           value.find('\0') == std::string_view::npos;
}

std::optional<size_t> EditParameters(std::string_view text, std::string_view name,
                                     std::optional<std::string_view> value, std::span<char> out) {
    Joiner result(out);
    bool done = false;
    for (std::string_view token = NextToken(text); !token.empty(); token = NextToken(text)) {
        if (done || !IsNamed(token, name)) {
            result.BeginToken();
            result.Put(token);
            continue;
        }
        done = true;
        if (value.has_value()) {
            result.PutParameter(name, *value);
        }
    }
    if (!done && value.has_value()) {
        result.PutParameter(name, *value);
    }
    return result.Length();
}

}  // namespace frame
