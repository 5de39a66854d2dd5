#include "vxmgr/targets/target_records.h"

#include "vxmgr/app/answer_memory.h"
#include "vxmgr/fabric/scsi_units.h"

namespace vxmgr {

Value LunsValue(const LunSet& luns) {
    return Value::Text(LunsText(luns)).Shown(luns.none() ? "none" : LunsText(luns));
}

std::optional<LunSet> LiveMaskOf(const PortTargets& targets, const KnownTarget& target) {
    LunSet masked;
    const HX_STATUS status =
        ReadLiveMask(targets.OwnPort(), targets.Handle(), target.PortName(), &masked);
    return status == HXMGT_SUCCESS ? std::optional(masked) : std::nullopt;
}

std::optional<LunSet> StoredMaskOf(const PortTargets& targets, const Wwn& target) {
    const HX_LUN_RECORD* record = FindRow(*targets.masks.block, target);
    return record == nullptr
               ? std::nullopt
               : std::optional(MaskedOf(*record) & FirstLuns(LunLimit(targets.OwnPort())));
}

namespace {

struct LunsAnswer {
    HX_STATUS status = HXMGT_SUCCESS;
    LunSet luns;
};

LunsAnswer AskReportedLuns(const Port& port, uint32_t handle, const Wwn& target) {
    constexpr size_t kRoom = 4096;  // more an older driver does not move
    constexpr size_t kLargeRoom = 8 * (HX_MAX_LUNS + 1);
    const HX_SCSI_ADDRESS address = AddressByPortName(target);
    std::vector<uint8_t> list(port.IsCurrentGeneration() ? kLargeRoom : kRoom);
    uint8_t sense[256] = {};
    LunsAnswer answer;
    answer.status = HXSendScsiReportLunsCmdFC(
        handle, &address, list.data(), static_cast<uint32_t>(list.size()), sense, sizeof sense);
    if (answer.status == HXMGT_SUCCESS || answer.status == HXMGT_BUILT_BY_API) {
        for (const LunEntry& entry : DecodeLuns(list)) {
            if (entry.lun && *entry.lun < answer.luns.size()) {
                answer.luns.set(static_cast<size_t>(*entry.lun));
            }
        }
    }
    return answer;
}

}  // namespace

HX_STATUS ReadReportedLuns(const TellMessage& tell, const Port& port, uint32_t handle,
                           const Wwn& target, LunSet* luns) {
    static AnswerMemory<std::pair<uint32_t, std::string>, LunsAnswer> memory;
    const LunsAnswer answer = memory.Get({port.index, target.Digits()},
                                         [&] { return AskReportedLuns(port, handle, target); });
    const std::string object = port.Object() + " " + target.Colons();
    *luns = answer.luns;
    if (answer.status == HXMGT_BUILT_BY_API) {
        tell({Severity::Info,
              object + ": the target refuses REPORT LUNS: LUNs 0 to 7 were asked",
              "LUNs above 7 may be there and are not seen",
              {},
              {}});
        return HXMGT_SUCCESS;
    }
    if (answer.status != HXMGT_SUCCESS) {
        tell({Severity::Warning,
              object + ": the target does not report its LUNs: " + StatusMessage(answer.status),
              {},
              {},
              {}});
    }
    return answer.status;
}

}  // namespace vxmgr
