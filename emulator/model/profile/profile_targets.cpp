// The targets and LUNs of a profile.
#include <cstring>

#include "hxmgtapi.h"
#include "model/bytes/bytes.h"
#include "model/profile/profile.h"
#include "model/profile/profile_fields.h"

namespace vxemu {
namespace {

template <size_t size>
bool Same(const uint8_t (&left)[size], const uint8_t (&right)[size]) {
    return std::memcmp(left, right, size) == 0;
}

bool SameAddress(const TargetProfile& left, const TargetProfile& right) {
    return (left.bus == right.bus && left.target == right.target) ||
           left.loopId / 2 == right.loopId / 2 || Same(left.portId, right.portId);
}

ProfileFault CheckTarget(const Profile& profile, uint32_t index) {
    const TargetProfile& target = profile.targets[index];
    auto fault = [index](ProfileError error, const char* field) {
        return ProfileFault{error, FaultScope::Target, index, field};
    };
    if (const Field* bad = FindBadField(FieldScope::Target, &target); bad != nullptr) {
        return fault(ProfileError::Field, bad->name);
    }
    constexpr uint8_t kNoName[sizeof target.portName] = {};
    if (Same(target.portName, kNoName)) {
        return fault(ProfileError::NoPortName, "port_name");
    }
    for (uint32_t at = 0; at < profile.portCount; ++at) {
        if (Same(profile.ports[at].portName, target.portName)) {
            return fault(ProfileError::DuplicatePortName, "port_name");
        }
    }
    for (uint32_t at = 0; at < index; ++at) {
        if (Same(profile.targets[at].portName, target.portName)) {
            return fault(ProfileError::DuplicatePortName, "port_name");
        }
        if (SameAddress(profile.targets[at], target)) {
            return fault(ProfileError::DuplicateTargetAddress, nullptr);
        }
    }
    return {};
}

ProfileFault CheckLun(const Profile& profile, uint32_t index) {
    const LunProfile& lun = profile.luns[index];
    auto fault = [index](ProfileError error, const char* field) {
        return ProfileFault{error, FaultScope::Lun, index, field};
    };
    if (const Field* bad = FindBadField(FieldScope::Lun, &lun); bad != nullptr) {
        return fault(ProfileError::Field, bad->name);
    }
    if (lun.target >= profile.targetCount ||
        profile.targets[lun.target].role == DeviceRole::Initiator) {
        return fault(ProfileError::TargetIndex, nullptr);
    }
    for (uint32_t at = 0; at < index; ++at) {
        if (profile.luns[at].target == lun.target && profile.luns[at].number == lun.number) {
            return fault(ProfileError::DuplicateLun, "number");
        }
    }
    return {};
}

}  // namespace

ProfileFault ValidateTargets(const Profile& profile) {
    if (profile.targetCount > kMaxTargets) {
        return {ProfileError::TargetCount};
    }
    if (profile.lunCount > kMaxLuns) {
        return {ProfileError::LunCount};
    }
    for (uint32_t index = 0; index < profile.targetCount; ++index) {
        const ProfileFault fault = CheckTarget(profile, index);
        if (fault.error != ProfileError::None) {
            return fault;
        }
    }
    for (uint32_t index = 0; index < profile.lunCount; ++index) {
        const ProfileFault fault = CheckLun(profile, index);
        if (fault.error != ProfileError::None) {
            return fault;
        }
    }
    return {};
}

TargetProfile DefaultTarget(const Profile& profile) {
    TargetProfile target = {};
    target.role = DeviceRole::Target;
    target.seenBy = kSeenByAllPorts;
    target.present = 1;
    target.roleAndState = static_cast<uint32_t>(target.role);
    CopyText(target.symbolicName, "Emulated target");
    target.highestSpeed = HX_SPEED_32GBIT;
    // At most kMaxTargets numbers are taken, so one of the first kMaxTargets + 1 is free.
    for (uint32_t number = 0; number <= kMaxTargets; ++number) {
        target.target = static_cast<uint16_t>(number);
        target.loopId = static_cast<uint16_t>(2 * number + 1);
        target.portId[0] = 0x02;
        target.portId[1] = static_cast<uint8_t>(number);
        bool taken = false;
        for (uint32_t at = 0; at < profile.targetCount; ++at) {
            taken = taken || SameAddress(profile.targets[at], target);
        }
        if (!taken) {
            break;
        }
    }
    return target;
}

LunProfile DefaultLun(uint8_t target, uint16_t number) {
    LunProfile lun = {};
    lun.target = target;
    lun.number = number;
    lun.blockSize = 512;
    lun.blocks = 2'097'152;  // 1 GiB
    CopyText(lun.vendor, "EMULATED");
    CopyText(lun.product, "Emulated disk");
    CopyText(lun.revision, "1.00");
    CopyText(lun.serial, "EMU00L0000");
    for (uint32_t digit = 0; digit < 2; ++digit) {
        lun.serial[3 + digit] = "0123456789ABCDEF"[(target >> (4 - 4 * digit)) & 0xF];
    }
    for (uint32_t digit = 0; digit < 4; ++digit) {
        lun.serial[6 + digit] = "0123456789ABCDEF"[(number >> (12 - 4 * digit)) & 0xF];
    }
    return lun;
}

}  // namespace vxemu
