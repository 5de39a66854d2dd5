// Firmware images for the emulated transceivers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "formats/crc32.h"
#include "model/profile/profile.h"
#include "model/storage/sfp_content.h"

namespace vxemu {

#pragma pack(push, 1)

struct TransceiverFirmwareHead {
    char mark[8];      // kTransceiverMark
    uint8_t type[2];   // identifier and connector of the transceivers that it is for
    char revision[4];  // blank-padded; what they report with it
    uint8_t reserved14[2];
    uint32_t crc;  // CRC-32 of everything behind the head
    uint8_t reserved20[12];
};
static_assert(sizeof(TransceiverFirmwareHead) == 32);
static_assert(offsetof(TransceiverFirmwareHead, crc) == 16);

#pragma pack(pop)

inline constexpr char kTransceiverMark[8] = {'E', 'M', 'U', 'S', 'F', 'P', 'F', 'W'};

// By the beginning of an image.
inline bool SuitsTransceiver(std::span<const uint8_t> image, const PortProfile& port) {
    TransceiverFirmwareHead head;
    if (image.size() < sizeof head) {
        return false;
    }
    std::memcpy(&head, image.data(), sizeof head);
    return std::memcmp(head.mark, kTransceiverMark, sizeof head.mark) == 0 &&
           std::memcmp(head.type, port.transceiverType, sizeof head.type) == 0;
}

// The image is one that suits; false, and nothing changed, when it is damaged.
inline bool InstallTransceiverFirmware(std::span<const uint8_t> image,
                                       formats::SfpIdentity& identity) {
    TransceiverFirmwareHead head;
    std::memcpy(&head, image.data(), sizeof head);
    if (formats::Crc32(image.subspan(sizeof head)) != head.crc) {
        return false;
    }
    std::memcpy(identity.revision, head.revision, sizeof identity.revision);
    UpdateChecksums(identity);
    return true;
}

}  // namespace vxemu
