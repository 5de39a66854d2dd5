// Single registers of SerDes lanes and of devices on the cage's I2C bus.
#include "statistics/health.h"
#include "statistics/mailbox_command.h"
#include "statistics/query.h"

namespace statistics {
namespace {

constexpr uint16_t kHighestI2cDevice = 0x7F;
constexpr uint16_t kHighestI2cValue = 0xFF;

constexpr uint16_t Low(uint32_t value) {
    return static_cast<uint16_t>(value);
}
constexpr uint16_t High(uint32_t value) {
    return static_cast<uint16_t>(value >> 16);
}

}  // namespace

HX_STATUS GetSerdesRegister(uint32_t handle, uint16_t address, uint16_t* value) {
    const HX_STATUS status = Check(handle, needs::kSerdes, value != nullptr);
    return status == HXMGT_SUCCESS ? SendMailboxCommand(handle, MailboxCommand::ReadSerdesRegister,
                                                        std::span(&address, 1), std::span(value, 1))
                                   : status;
}

HX_STATUS SetSerdesRegister(uint32_t handle, uint16_t address, uint16_t value) {
    const HX_STATUS status = Check(handle, needs::kSerdes, true);
    const uint16_t registers[] = {address, value};
    return status == HXMGT_SUCCESS
               ? SendMailboxCommand(handle, MailboxCommand::WriteSerdesRegister, registers, {})
               : status;
}

HX_STATUS GetLaneRegister(uint32_t handle, uint16_t lane, uint32_t address, uint32_t* value) {
    if (const HX_STATUS status = Check(handle, needs::kSerdes, value != nullptr);
        status != HXMGT_SUCCESS) {
        return status;
    }
    const uint16_t registers[] = {lane, Low(address), High(address)};
    uint16_t answer[2];
    const HX_STATUS status =
        SendMailboxCommand(handle, MailboxCommand::ReadLaneRegister, registers, answer);
    if (status == HXMGT_SUCCESS) {
        *value = answer[0] | uint32_t{answer[1]} << 16;
    }
    return status;
}

HX_STATUS SetLaneRegister(uint32_t handle, uint16_t lane, uint32_t address, uint32_t value) {
    const HX_STATUS status = Check(handle, needs::kSerdes, true);
    const uint16_t registers[] = {lane, Low(address), High(address), Low(value), High(value)};
    return status == HXMGT_SUCCESS
               ? SendMailboxCommand(handle, MailboxCommand::WriteLaneRegister, registers, {})
               : status;
}

HX_STATUS GetI2cRegister(uint32_t handle, uint16_t device, uint16_t address, uint16_t* value) {
    if (const HX_STATUS status = Check(handle, needs::kRetimer, value != nullptr);
        status != HXMGT_SUCCESS) {
        return status;
    }
    const uint16_t registers[] = {device, address};
    return device <= kHighestI2cDevice ? SendMailboxCommand(handle, MailboxCommand::ReadI2cRegister,
                                                            registers, std::span(value, 1))
                                       : HXMGT_INVALID_PARAMETER;
}

HX_STATUS SetI2cRegister(uint32_t handle, uint16_t device, uint16_t address, uint16_t value) {
    if (const HX_STATUS status = Check(handle, needs::kRetimer, true); status != HXMGT_SUCCESS) {
        return status;
    }
    const uint16_t registers[] = {device, address, value};
    return device <= kHighestI2cDevice && value <= kHighestI2cValue
               ? SendMailboxCommand(handle, MailboxCommand::WriteI2cRegister, registers, {})
               : HXMGT_INVALID_PARAMETER;
}

}  // namespace statistics
