#include "field_text.h"

#include <cstring>

#include "model/bytes/bytes.h"
#include "vocabulary.h"

namespace vxemu {
namespace {

std::string FormatBytes(const uint8_t* bytes, size_t size) {
    std::string text;
    for (size_t at = 0; at < size; ++at) {
        text += (at == 0 ? "" : ":") + Hex(bytes[at], 2).substr(2);
    }
    return text;
}

// Two hexadecimal digits per byte, with ':' or '-' between the bytes or nothing.
bool ParseBytes(std::string_view text, uint8_t* bytes, size_t size) {
    const size_t step = text.size() == 2 * size ? 2 : 3;
    if (text.size() != step * size - (step - 2)) {
        return false;
    }
    for (size_t at = 0; at < size; ++at) {
        const std::string_view place = text.substr(at * step);
        if (step == 3 && at + 1 < size && place[2] != ':' && place[2] != '-') {
            return false;
        }
        const auto byte = ParseNumber("0x" + std::string(place.substr(0, 2)));
        if (!byte) {
            return false;
        }
        bytes[at] = static_cast<uint8_t>(*byte);
    }
    return true;
}

void StoreNumber(const Field& field, uint64_t number, uint8_t* bytes) {
    for (uint32_t at = 0; at < field.size; ++at, number >>= 8) {
        bytes[at] = static_cast<uint8_t>(number);
    }
}

bool ParseLimited(const Field& field, std::string_view text, uint8_t* bytes, std::string* wanted) {
    const auto number = ParseNumber(text);
    if (!number || *number > field.maximum) {
        *wanted = "a number from 0 to " + std::to_string(field.maximum);
        return false;
    }
    StoreNumber(field, *number, bytes);
    return true;
}

bool ParseChoice(const Field& field, std::string_view text, uint8_t* bytes, std::string* wanted) {
    *wanted = "one of";
    for (const FieldChoice* choice = field.choices; choice->name != nullptr; ++choice) {
        if (text == choice->name) {
            StoreNumber(field, choice->value, bytes);
            return true;
        }
        *wanted += (choice == field.choices ? " " : ", ") + std::string(choice->name);
    }
    return false;
}

std::optional<bool> ParseFlag(std::string_view text) {
    for (const char* word : {"true", "yes", "on", "1"}) {
        if (text == word) {
            return true;
        }
    }
    for (const char* word : {"false", "no", "off", "0"}) {
        if (text == word) {
            return false;
        }
    }
    return std::nullopt;
}

}  // namespace

std::string FormatField(const Field& field, const uint8_t* bytes) {
    const uint64_t number = field.size <= 8 ? FieldNumber(field, bytes) : 0;
    switch (field.kind) {
        case FieldKind::Text:
            return reinterpret_cast<const char*>(bytes);
        case FieldKind::Number:
            return std::to_string(number);
        case FieldKind::Code:
            return Hex(number, 2 * field.size);
        case FieldKind::Flag:
            return number != 0 ? "true" : "false";
        case FieldKind::Bytes:
            return FormatBytes(bytes, field.size);
        case FieldKind::Choice:
            for (const FieldChoice* choice = field.choices; choice->name != nullptr; ++choice) {
                if (choice->value == number) {
                    return choice->name;
                }
            }
    }
    return std::to_string(number);
}

bool ParseField(const Field& field, std::string_view text, uint8_t* bytes, std::string* wanted) {
    switch (field.kind) {
        case FieldKind::Text: {
            const std::string whole(text);
            if (whole.size() >= field.size || whole.size() != std::strlen(whole.c_str()) ||
                !IsText(whole.c_str(), whole.size() + 1)) {
                *wanted = "a text of at most " + std::to_string(field.size - 1) +
                          " printable ASCII characters";
                return false;
            }
            CopyText(reinterpret_cast<char*>(bytes), field.size, whole.c_str());
            return true;
        }
        case FieldKind::Number:
        case FieldKind::Code:
            return ParseLimited(field, text, bytes, wanted);
        case FieldKind::Flag:
            if (const auto flag = ParseFlag(text)) {
                StoreNumber(field, *flag ? 1 : 0, bytes);
                return true;
            }
            *wanted = "yes or no";
            return false;
        case FieldKind::Choice:
            return ParseChoice(field, text, bytes, wanted);
        case FieldKind::Bytes:
            *wanted = std::to_string(field.size) + " bytes in hexadecimal, as in 01:0a:ff";
            return ParseBytes(text, bytes, field.size);
    }
    return false;
}

}  // namespace vxemu
