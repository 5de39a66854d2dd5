#include "model/bytes/bytes.h"

namespace vxemu {

void CopyText(char* field, size_t size, const char* text) {
    size_t length = std::strlen(text);
    if (length >= size) {
        length = size - 1;
    }
    std::memset(field, 0, size);
    std::memcpy(field, text, length);
}

bool IsText(const char* field, size_t size) {
    for (size_t at = 0; at < size; ++at) {
        if (field[at] == 0) {
            return true;
        }
        if (field[at] < ' ' || field[at] > '~') {
            return false;
        }
    }
    return false;
}

bool SameText(const char* left, const char* right) {
    return std::strlen(left) == std::strlen(right) &&
           std::memcmp(left, right, std::strlen(left)) == 0;
}

bool StartsWith(const char* text, const char* prefix) {
    const size_t length = std::strlen(prefix);
    return std::strlen(text) >= length && std::memcmp(text, prefix, length) == 0;
}

bool Contains(const char* text, const char* part) {
    for (; *text != 0; ++text) {
        if (StartsWith(text, part)) {
            return true;
        }
    }
    return false;
}

}  // namespace vxemu
