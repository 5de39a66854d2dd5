#include "model/fabric/stored_config.h"

#include <cstring>

#include "frame/driver_parameter_text.h"
#include "persist/blocks.h"

namespace vxemu {
namespace {

using persist::IsFree;
using persist::LunRecordV1;
using persist::RecordsIn;

constexpr uint32_t kTargetDataVersion = 1;

bool IsSound(const StoredConfig& stored) {
    if (stored.length != stored.targets.size() || stored.targets.size() != sizeof(HX_TARGET_DATA)) {
        return false;
    }
    const auto& block = *reinterpret_cast<const HX_TARGET_DATA*>(stored.targets.data());
    return !stored.hasChecks || (stored.version == kTargetDataVersion &&
                                 stored.checksum == persist::TargetDataChecksum(block));
}

bool SameBytes(const uint8_t (&left)[8], const uint8_t (&right)[8]) {
    return std::memcmp(left, right, sizeof left) == 0;
}

// A record names its target twice; one whose second name is zero names all targets of the node.
template <typename Record>
bool IsOf(const Record& record, const TargetProfile& device) {
    constexpr uint8_t kNone[8] = {};
    return !IsFree(record) && SameBytes(record.nodeName, device.nodeName) &&
           (SameBytes(record.portName, device.portName) || SameBytes(record.portName, kNone));
}

template <typename Record>
const Record* RecordOf(std::span<const uint8_t> block, const TargetProfile& device) {
    for (const Record& record : RecordsIn<Record>(block)) {
        if (IsOf(record, device)) {
            return &record;
        }
    }
    return nullptr;
}

// The digits that a driver parameter's value begins with.
uint32_t ParameterOf(const StoredConfig& stored, std::string_view name, uint32_t otherwise) {
    const auto value = frame::FindParameter(stored.parameters, name);
    if (!value.has_value()) {
        return otherwise;
    }
    uint32_t number = 0;
    for (const char digit : *value) {
        if (digit < '0' || digit > '9') {
            break;
        }
        number = 10 * number + static_cast<uint32_t>(digit - '0');
    }
    return number;
}

bool SharesAddress(const Attachment& left, const Attachment& right) {
    return (left.bus == right.bus && left.target == right.target) ||
           left.loopId / 2 == right.loopId / 2;
}

// The bindings of a port, and which of the fabric's devices they are for.
class Bindings {
  public:
    Bindings(const Port& port, std::span<const uint8_t> block) : port_(port), block_(block) {}

    void Apply() {
        const Profile& profile = *port_.fabric->profile;
        for (uint32_t index = 0; index < profile.targetCount; ++index) {
            if (const auto* entry = RecordOf<HX_TARGET_ENTRY>(block_, profile.targets[index])) {
                Bind(index, *entry);
            }
        }
        for (uint32_t index = 0; index < profile.targetCount; ++index) {
            if (!bound_[index] && SharesWithBound(port_.attachments[index])) {
                MoveAway(index);
            }
        }
    }

  private:
    void Bind(uint32_t index, const HX_TARGET_ENTRY& entry) {
        Attachment at = {};
        at.bus = entry.bus;
        at.target = entry.target;
        at.loopId = entry.targetNumber;
        at.bindingFlags = entry.bindingFlags;
        if (SharesWithBound(at)) {
            return;  // the first entry of an address has it
        }
        at.mask = port_.attachments[index].mask;
        port_.attachments[index] = at;
        bound_[index] = true;
    }

    bool SharesWithBound(const Attachment& at) const {
        for (uint32_t index = 0; index < kMaxTargets; ++index) {
            if (bound_[index] && SharesAddress(port_.attachments[index], at)) {
                return true;
            }
        }
        return false;
    }

    // There are fewer targets than numbers, so that one is free.
    void MoveAway(uint32_t index) {
        const uint32_t count = port_.fabric->profile->targetCount;
        Attachment& at = port_.attachments[index];
        for (uint16_t number = 0; number <= kMaxTargets; ++number) {
            at.target = number;
            at.loopId = static_cast<uint16_t>(2 * number + 1);
            bool taken = false;
            for (uint32_t other = 0; other < count && !taken; ++other) {
                taken = other != index && SharesAddress(port_.attachments[other], at);
            }
            if (!taken) {
                return;
            }
        }
    }

    const Port& port_;
    std::span<const uint8_t> block_;
    bool bound_[kMaxTargets] = {};
};

bool IsMasked(const HX_LUN_RECORD& record, uint32_t lun) {
    return lun < HX_MAX_LUNS && (record.luns[lun] & HX_LUN_MASKED) != 0;
}
bool IsMasked(const LunRecordV1& record, uint32_t lun) {
    return lun < persist::kVersion1Luns && (record.visible[lun / 8] >> (lun % 8) & 1) == 0;
}

template <typename Record>
void ApplyMasks(const Port& port, const StoredConfig& stored, bool hasTargets) {
    const Profile& profile = *port.fabric->profile;
    for (uint32_t index = 0; index < profile.targetCount; ++index) {
        const TargetProfile& device = profile.targets[index];
        const Record* record = RecordOf<Record>(stored.luns, device);
        if (record == nullptr) {
            continue;
        }
        const auto* entry =
            hasTargets ? RecordOf<HX_TARGET_ENTRY>(stored.targets, device) : nullptr;
        const uint32_t base = entry != nullptr ? entry->lunBase : 0;
        LunMask& mask = port.attachments[index].mask;
        std::memset(mask.bytes, 0xFF, sizeof mask.bytes);
        for (uint32_t lun = 0; lun <= kMaxLunNumber; ++lun) {
            if (IsMasked(*record, base + lun)) {
                mask.bytes[lun / 8] &= static_cast<uint8_t>(~(1u << (lun % 8)));
            }
        }
    }
}

}  // namespace

void ApplyStore(Port& port, const StoredConfig& stored) {
    const bool hasTargets = IsSound(stored);
    if (hasTargets && ParameterOf(stored, "bind", 1) != 0) {
        Bindings(port, stored.targets).Apply();
    }
    port.configRequired = ParameterOf(stored, "configrequired", 0) == 1;
    for (const TargetProfile& device : port.fabric->profile->targets) {
        const bool has = hasTargets && RecordOf<HX_TARGET_ENTRY>(stored.targets, device) != nullptr;
        AttachmentOf(port, device).withheld = port.configRequired && IsTarget(device) && !has;
    }
    if (stored.lunLength == 0 || stored.lunLength != stored.luns.size()) {
        return;
    }
    if (stored.hasChecks && persist::VersionOf(stored.luns) == persist::kLunVersion1) {
        ApplyMasks<LunRecordV1>(port, stored, hasTargets);
    } else {
        ApplyMasks<HX_LUN_RECORD>(port, stored, hasTargets);
    }
}

}  // namespace vxemu
