#include "model/handlers.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;

constexpr ExtendedRow kExtendedRows[] = {
    // command, legacy driver too, bare, handler
    {command::NodeProperties, true, false, NodeProperties},
    {command::PortProperties, false, false, PortProperties},
    {command::DriverProperties, true, true, DriverProperties},
    {command::FirmwareProperties, false, false, FirmwareProperties},
    {command::ChipProperties, true, false, ChipProperties},
    {command::PortPropertiesV2, false, false, PortPropertiesV2},
    {command::EventDelivery, false, false, EventDelivery},
    {command::FetchEvents, false, false, FetchEvents},
    {command::ForceEvent, false, false, ForceEvent},
    {command::PortDisableInfo, false, false, PortDisableInfo},
};

constexpr PlainRow kPlainRows[] = {
    {command::LegacyQuery, DriverGeneration::Legacy, LegacyQuery},
    {command::LegacyPortAndNode, DriverGeneration::Legacy, LegacyPortAndNode},
};

}  // namespace

ExtendedLookup FindExtended(DriverGeneration generation, uint32_t code, uint16_t subCode) {
    bool codeKnown = false;
    for (const ExtendedRow& row : kExtendedRows) {
        if (row.command.code != code ||
            (generation == DriverGeneration::Legacy && !row.legacyToo)) {
            continue;
        }
        if (row.command.subCode == subCode) {
            return {&row, DriverStatus::Success};
        }
        codeKnown = true;
    }
    // A legacy driver has no notion of sub-codes beyond the probes.
    const bool legacy = generation == DriverGeneration::Legacy;
    return {nullptr,
            codeKnown && !legacy ? DriverStatus::UnsupportedSubCode : DriverStatus::InvalidRequest};
}

const PlainRow* FindPlain(DriverGeneration generation, uint32_t code) {
    for (const PlainRow& row : kPlainRows) {
        if (row.code == code && row.generation == generation) {
            return &row;
        }
    }
    return nullptr;
}

bool IsPlainCode(uint32_t code) {
    for (const transport::PlainCommandRow& row : transport::kPlainCommands) {
        if (row.code == code) {
            return true;
        }
    }
    return false;
}

}  // namespace vxemu
