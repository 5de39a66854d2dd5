#include "redaction.h"

#include <algorithm>

#include "text.h"

namespace tools {
namespace {

constexpr size_t kShortestSecret = 4;  // anything shorter would tear words apart
constexpr std::string_view kSerialPrefix = "serial:";
constexpr std::string_view kNqnPrefix = "nqn.";
// What ends such a name in running text.
constexpr std::string_view kEnds = " \t\r\n\"',;()<>";

const char* NameOf(Secret secret) {
    switch (secret) {
        case Secret::Wwn:
            return "wwn-";
        case Secret::Nqn:
            return "nqn-";
        case Secret::Host:
            return "host-";
        default:
            return "serial-";
    }
}

}  // namespace

std::string Redactor::Mask(Secret secret, const std::string& text) {
    if (!enabled_ || secret == Secret::None || text.empty()) {
        return text;
    }
    const std::lock_guard guard(lock_);
    return Pseudonym(secret, text);
}

std::string Redactor::Pseudonym(Secret secret, const std::string& text) {
    const auto wwn = Wwn::Parse(text);
    const Secret kind = wwn ? Secret::Wwn : secret;
    const std::string key = wwn ? wwn->Digits() : Lowercase(text);
    std::string& name = pseudonyms_[key];
    if (name.empty()) {
        name = NameOf(kind) + std::to_string(++numbers_[kind]);
    }
    return name;
}

std::string Redactor::Clean(std::string text) {
    if (!enabled_) {
        return text;
    }
    const std::lock_guard guard(lock_);
    std::string result;
    size_t position = 0;
    while (position < text.size()) {
        if (!IsWordStart(text, position)) {
            result += text[position++];
            continue;
        }
        if (const size_t length = Wwn::LengthAt(text, position); length != 0) {
            result += Pseudonym(Secret::Wwn, text.substr(position, length));
            position += length;
            continue;
        }
        if (EqualIgnoringCase(std::string_view(text).substr(position, kNqnPrefix.size()),
                              kNqnPrefix)) {
            const size_t end = std::min(text.find_first_of(kEnds, position), text.size());
            result += Pseudonym(Secret::Nqn, text.substr(position, end - position));
            position = end;
            continue;
        }
        if (EqualIgnoringCase(std::string_view(text).substr(position, kSerialPrefix.size()),
                              kSerialPrefix)) {
            position += kSerialPrefix.size();
            size_t end = position;
            while (end < text.size() && text[end] != ' ' && text[end] != '"' && text[end] != ',') {
                ++end;
            }
            result += kSerialPrefix;
            if (end != position) {
                result += Pseudonym(Secret::Serial, text.substr(position, end - position));
            }
            position = end;
            continue;
        }
        size_t longest = 0;
        std::string name;
        for (const auto& [secret, pseudonym] : pseudonyms_) {
            if (secret.size() >= kShortestSecret && secret.size() > longest &&
                IsWordEnd(text, position + secret.size()) &&
                EqualIgnoringCase(std::string_view(text).substr(position, secret.size()), secret)) {
                longest = secret.size();
                name = pseudonym;
            }
        }
        result += longest != 0 ? name : text.substr(position, 1);
        position += longest != 0 ? longest : 1;
    }
    return result;
}

}  // namespace tools
