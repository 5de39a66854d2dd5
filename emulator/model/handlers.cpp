#include "model/handlers.h"

namespace vxemu {
namespace {

using transport::DriverStatus;

constexpr RequestRows (*kFiles[])() = {
    NodeRequests,        PortRequests,  EventRequests,        DeviceRequests,
    BindingRequests,     ScsiRequests,  FabricRequests,       StatisticsRequests,
    DestinationRequests, ScmRequests,   PrivateRequests,      CreditRecoveryRequests,
    SerdesRequests,      LoopRequests,  RemotePortRequests,   TargetSettingRequests,
    VirtualPortRequests, NvmeRequests,  ManagementRequests,   DiagnosticRequests,
    DumpRequests,        FlashRequests, FlashControlRequests, SecureFlashRequests,
    NvramRequests,       SfpRequests,   CompanionRequests,    LegacyRequests,
};

bool Matches(const ExtendedRow& row, uint32_t code, uint16_t subCode) {
    return row.command.code == code &&
           (row.command.subCode == subCode || Has(row.flags, RequestFlags::AnySubCode));
}

}  // namespace

ExtendedLookup FindExtended(DriverGeneration generation, uint32_t code, uint16_t subCode) {
    const bool legacy = generation == DriverGeneration::Legacy;
    bool codeKnown = false;
    for (const auto rows : kFiles) {
        for (const ExtendedRow& row : rows().extended) {
            if (row.command.code != code || (legacy && !Has(row.flags, RequestFlags::LegacyToo))) {
                continue;
            }
            if (Matches(row, code, subCode)) {
                return {&row, DriverStatus::Success};
            }
            codeKnown = true;
        }
    }
    // A legacy driver has no notion of sub-codes beyond the probes.
    return {nullptr,
            codeKnown && !legacy ? DriverStatus::UnsupportedSubCode : DriverStatus::InvalidRequest};
}

const PlainRow* FindPlain(DriverGeneration generation, uint32_t code) {
    for (const auto rows : kFiles) {
        for (const PlainRow& row : rows().plain) {
            if (row.code == code && row.generation == generation) {
                return &row;
            }
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

bool StaysWithinPort(uint32_t code, uint16_t subCode) {
    for (const auto rows : kFiles) {
        for (const ExtendedRow& row : rows().extended) {
            if (Matches(row, code, subCode)) {
                return Has(row.flags, RequestFlags::WithinPort);
            }
        }
        for (const PlainRow& row : rows().plain) {
            if (row.code == code) {
                return Has(row.flags, RequestFlags::WithinPort);
            }
        }
    }
    return false;
}

}  // namespace vxemu
