// Which register `diag register` means: "serdes 0x10", "serdes:2 0x10=0x320", "retimer:0x18 0x02".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vxmgr {

enum class RegisterKind : uint8_t { SerDes, SerDesLane, Retimer };

struct RegisterSpace {
    RegisterKind kind = RegisterKind::SerDes;
    uint16_t unit = 0;  // lane, or the I2C address of a device

    std::string Text() const;  // with its unit: "retimer:0x18"
    int ValueDigits() const;
};

// False with a sentence in *error when the text is none.
bool ParseRegisterSpace(std::string_view text, RegisterSpace* space, std::string* error);

struct RegisterChoice {
    uint32_t address = 0;
    std::optional<uint32_t> value = std::nullopt;
};
// "ADDRESS", or with a value "ADDRESS=VALUE", within what the space has.
bool ParseRegister(std::string_view text, const RegisterSpace& space, bool withValue,
                   RegisterChoice* choice, std::string* error);

}  // namespace vxmgr
