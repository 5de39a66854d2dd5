#include "vxmgr/targets/target_known.h"

#include <algorithm>
#include <cstring>

#include "vxmgr/app/answer_memory.h"

namespace vxmgr {
namespace {

constexpr uint32_t kAllDevices = 7;
constexpr size_t kUsualDevices = HX_MAX_TARGETS + 1;
constexpr size_t kMostDevices = UINT16_MAX;

// The low bits of the role and state word.
constexpr uint32_t kRoleMask = 3;
constexpr uint32_t kInitiatorAlone = 2;

// What the driver reaches now. An older driver has no such query, and lists nothing else anyway.
void AddDiscovered(uint32_t handle, std::vector<KnownTarget>* targets) {
    for (uint32_t index = 0; index < targets->size(); ++index) {
        HX_DISCOVERED_TARGET found{};
        if (HXGetDiscTargetProperty(handle, 0, index, 0, &found) != HXMGT_SUCCESS) {
            return;
        }
        for (KnownTarget& target : *targets) {
            if (target.PortName() == Wwn::Of(found.device.portName)) {
                target.present = true;
                target.luns = found.numberOfLuns;
            }
        }
    }
}

struct KnownAnswer {
    HX_STATUS status = HXMGT_SUCCESS;
    std::vector<KnownTarget> targets;
};

KnownAnswer AskKnownTargets(bool currentGeneration, uint32_t handle) {
    KnownAnswer answer;
    std::vector<HX_DEVICE_RECORD> devices;
    answer.status = ReadPortDatabase(handle, &devices);
    for (const HX_DEVICE_RECORD& device : devices) {
        if ((device.roleAndState & kRoleMask) != kInitiatorAlone) {
            answer.targets.push_back({device, !currentGeneration, std::nullopt});
        }
    }
    if (currentGeneration) {
        AddDiscovered(handle, &answer.targets);
    }
    return answer;
}

struct MaskAnswer {
    HX_STATUS status = HXMGT_SUCCESS;
    LunSet masked;
};

MaskAnswer AskLiveMask(uint32_t limit, uint32_t handle, const Wwn& target) {
    const HX_SCSI_ADDRESS address = AddressByPortName(target);
    // A driver may answer with less than the whole mask: what it says nothing of is visible.
    uint8_t mask[HX_LUN_MASK_SIZE];
    std::memset(mask, 0xFF, sizeof mask);
    const HX_STATUS status = HXGetHbaTargetLunMaskFC(handle, 0, &address, 0, mask, sizeof mask);
    return {status, MaskedOf(mask) & FirstLuns(limit)};
}

}  // namespace

HX_STATUS ReadPortDatabase(uint32_t handle, std::vector<HX_DEVICE_RECORD>* devices) {
    std::vector<uint8_t> buffer(HX_PORT_DATABASE_SIZE(kUsualDevices));
    const auto ask = [&] {
        return HXGetPortDatabase(handle, kAllDevices, buffer.data(),
                                 static_cast<uint32_t>(buffer.size()));
    };
    HX_STATUS status = ask();
    if (status == HXMGT_BUFFER_TOO_SMALL) {
        buffer.assign(HX_PORT_DATABASE_SIZE(kMostDevices), 0);
        status = ask();
    }
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    HX_PORT_DATABASE head;
    std::memcpy(&head, buffer.data(), sizeof head);
    const size_t room = (buffer.size() - sizeof head) / sizeof(HX_DEVICE_RECORD);
    devices->resize(std::min<size_t>(head.count, room));
    std::memcpy(devices->data(), buffer.data() + sizeof head,
                devices->size() * sizeof(HX_DEVICE_RECORD));
    return HXMGT_SUCCESS;
}

HX_STATUS ReadKnownTargets(const Port& port, uint32_t handle, std::vector<KnownTarget>* targets) {
    static AnswerMemory<uint32_t, KnownAnswer> memory;
    KnownAnswer answer =
        memory.Get(port.index, [&] { return AskKnownTargets(port.IsCurrentGeneration(), handle); });
    *targets = std::move(answer.targets);
    return answer.status;
}

std::optional<bool> IsBound(const Port& port, const KnownTarget& target) {
    return port.IsCurrentGeneration() ? std::optional(target.record.bindingFlags != 0)
                                      : std::nullopt;
}

const char* RoleText(uint32_t roleAndState) {
    const uint32_t role = roleAndState & kRoleMask;
    return role != 0 ? kTargetRoles[role - 1] : nullptr;
}

uint32_t LunLimit(const Port& port) {
    return port.IsCurrentGeneration() ? HX_MAX_LUNS : kLegacyLuns;
}

HX_SCSI_ADDRESS AddressByPortName(const Wwn& target) {
    HX_SCSI_ADDRESS address{};
    address.type = HX_ADDRESS_PORT_NAME;
    std::memcpy(address.address, target.bytes.data(), sizeof address.address);
    return address;
}

HX_STATUS ReadLiveMask(const Port& port, uint32_t handle, const Wwn& target, LunSet* masked) {
    static AnswerMemory<std::pair<uint32_t, std::string>, MaskAnswer> memory;
    const MaskAnswer answer = memory.Get(
        {port.index, target.Digits()}, [&] { return AskLiveMask(LunLimit(port), handle, target); });
    *masked = answer.masked;
    return answer.status;
}

HX_STATUS WriteLiveMask(uint32_t handle, const Wwn& target, const LunSet& masked) {
    const HX_SCSI_ADDRESS address = AddressByPortName(target);
    uint8_t mask[HX_LUN_MASK_SIZE];
    SetMasked(masked, mask);
    return HXUpdateHbaTargetLunMaskFC(handle, 0, &address, 0, mask, sizeof mask);
}

}  // namespace vxmgr
