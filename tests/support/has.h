// Texts in tests.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace support {

// Whether the text has that part; says what it is otherwise.
inline testing::AssertionResult Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos
               ? testing::AssertionSuccess()
               : testing::AssertionFailure() << "no \"" << part << "\" in: " << text;
}

}  // namespace support
