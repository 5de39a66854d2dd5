#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "frame/names.h"
#include "frame/owned.h"
#include "persist/lun_mask_target.h"
#include "persist/persist.h"
#include "persist/port_blocks.h"
#include "persist/stored_masks.h"
#include "properties/adapter_texts.h"
#include "properties/properties.h"

namespace persist {
namespace {

// The stored data that the mask functions work on. Its key is named after the adapter's model and
// node name, not after service and port as the rest of the store: intended.
class MaskStore {
  public:
    HX_STATUS Open(uint32_t handle) {
        HX_NODE_PROPERTY node{};
        if (const HX_STATUS status = properties::GetNodeProperty(handle, &node);
            status != HXMGT_SUCCESS) {
            return status;
        }
        const std::string_view model = properties::TextOf(node.model);
        char service[sizeof node.model + 3] = "vx";
        std::memcpy(service + 2, model.data(), model.size());
        frame::WwnText name;
        frame::WriteWwn(node.nodeName, name);
        values_ = PortValues::InSubkey(service, name);
        return HXMGT_SUCCESS;
    }

    // The checksum is not looked at here: intended.
    HX_STATUS ReadTargets() {
        return targets_.Read(values_, value::kLength, value::kData, sizeof(HX_TARGET_DATA)) &&
                       targets_.Bytes().size() == sizeof(HX_TARGET_DATA)
                   ? HXMGT_SUCCESS
                   : HXMGT_REGISTRY_INVALID;
    }

    // All entries, whatever the count says.
    std::span<const HX_TARGET_ENTRY> Targets() const {
        return reinterpret_cast<const HX_TARGET_DATA*>(targets_.Bytes().data())->entries;
    }

    HX_STATUS ReadLuns() {
        version_ = values_.ReadNumber(value::kLunVersion);
        length_ = values_.ReadNumber(value::kLunLength);
        if (!IsLunLength(version_, length_)) {
            return HXMGT_REGISTRY_INVALID;
        }
        luns_ = frame::ZeroedBytes(Room());
        if (luns_ == nullptr) {
            return HXMGT_OUT_OF_MEMORY;
        }
        return values_.ReadBytes(value::kLunData, {luns_.get(), length_}) ? HXMGT_SUCCESS
                                                                          : HXMGT_REGISTRY_INVALID;
    }

    uint32_t LunVersion() const { return version_; }
    std::span<const uint8_t> Luns() const { return {luns_.get(), length_}; }

    HX_STATUS SetMask(const MaskedTarget& target, std::span<const uint8_t> mask) {
        const uint32_t length =
            WriteStoredMask(version_, {luns_.get(), Room()}, length_, target, mask);
        if (length == 0 || !values_.WriteBytes(value::kLunData, {luns_.get(), length})) {
            return HXMGT_REGISTRY_INVALID;
        }
        return length == length_ || values_.WriteNumber(value::kLunLength, length)
                   ? HXMGT_SUCCESS
                   : HXMGT_REGISTRY_INVALID;
    }

  private:
    size_t Room() const {
        return version_ == kLunVersion1 ? sizeof(LunDataV1) : sizeof(HX_LUN_DATA);
    }

    PortValues values_;
    StoredBlock targets_;
    uint32_t version_ = 0;
    uint32_t length_ = 0;
    frame::Bytes luns_;
};

// The names of a target that the caller gave one of. The other comes from the stored targets; when
// they do not have it, the name given stands for both, so that its record is found again.
MaskedTarget NamesOf(const MaskTarget& target, std::span<const HX_TARGET_ENTRY> stored) {
    MaskedTarget names{};
    names.bySecondName = target.address.type == HX_ADDRESS_PORT_NAME;
    const auto found =
        std::find_if(stored.begin(), stored.end(),
                     [&](const HX_TARGET_ENTRY& entry) { return Names(target, entry); });
    const bool known = found != stored.end();
    const uint8_t* const given = target.address.address;
    std::memcpy(names.nodeName, known ? found->nodeName : given, kNameSize);
    std::memcpy(names.portName, known ? found->portName : given, kNameSize);
    return names;
}

}  // namespace

HX_STATUS ReadMaskFromStore(uint32_t handle, const MaskTarget& target, uint8_t* mask,
                            uint32_t maskSize) {
    MaskStore store;
    if (const HX_STATUS status = store.Open(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    if (const HX_STATUS status = store.ReadTargets(); status != HXMGT_SUCCESS) {
        return status;
    }
    const std::span<const HX_TARGET_ENTRY> stored = store.Targets();
    const auto entry =
        std::find_if(stored.begin(), stored.end(),
                     [&](const HX_TARGET_ENTRY& candidate) { return Names(target, candidate); });
    if (entry == stored.end()) {
        return HXMGT_DEVICE_NOT_FOUND;
    }
    if (const HX_STATUS status = store.ReadLuns(); status != HXMGT_SUCCESS) {
        return status;
    }
    return ReadStoredMask(store.LunVersion(), store.Luns(), *entry, mask, maskSize)
               ? HXMGT_SUCCESS
               : HXMGT_DEVICE_NOT_FOUND;
}

HX_STATUS WriteMaskToStore(uint32_t handle, const MaskTarget& target, const uint8_t* mask,
                           uint32_t maskSize) {
    MaskStore store;
    if (const HX_STATUS status = store.Open(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    if (const HX_STATUS status = store.ReadTargets(); status != HXMGT_SUCCESS) {
        return status;
    }
    if (const HX_STATUS status = store.ReadLuns(); status != HXMGT_SUCCESS) {
        return status;
    }
    return store.SetMask(NamesOf(target, store.Targets()), {mask, maskSize});
}

}  // namespace persist
