#include "vxmgr/fabric/scsi_sense.h"

#include <cstdio>

#include "formats/scsi_data.h"

namespace vxmgr {
namespace {

using namespace formats;

constexpr uint8_t kValid = 0x80;
constexpr uint8_t kResponseMask = 0x7F;
constexpr uint8_t kInformationType = 0;

constexpr const char* kKeys[] = {
    "no sense",       "recovered error", "not ready",      "medium error",
    "hardware error", "illegal request", "unit attention", "data protect",
    "blank check",    "vendor specific", "copy aborted",   "aborted command",
    "reserved",       "volume overflow", "miscompare",     "completed",
};
static_assert(std::size(kKeys) == 16);

struct CodeRow {
    uint8_t code;
    uint8_t qualifier;
    const char* text;
};
constexpr CodeRow kCodes[] = {
    {0x00, 0x00, "no additional information"},
    {0x02, 0x00, "no seek complete"},
    {0x03, 0x00, "peripheral device write fault"},
    {0x04, 0x00, "logical unit not ready, cause not reportable"},
    {0x04, 0x01, "logical unit is becoming ready"},
    {0x04, 0x02, "logical unit not ready, initializing command required"},
    {0x04, 0x03, "logical unit not ready, manual intervention required"},
    {0x04, 0x04, "logical unit not ready, format in progress"},
    {0x04, 0x07, "logical unit not ready, operation in progress"},
    {0x04, 0x0A, "logical unit not accessible, asymmetric access state transition"},
    {0x04, 0x0B, "logical unit not accessible, target port in standby state"},
    {0x04, 0x0C, "logical unit not accessible, target port in unavailable state"},
    {0x08, 0x00, "logical unit communication failure"},
    {0x08, 0x01, "logical unit communication time-out"},
    {0x0C, 0x00, "write error"},
    {0x0C, 0x02, "write error, automatic reallocation failed"},
    {0x10, 0x00, "ID CRC or ECC error"},
    {0x11, 0x00, "unrecovered read error"},
    {0x14, 0x00, "recorded entity not found"},
    {0x17, 0x00, "recovered data with no error correction applied"},
    {0x18, 0x00, "recovered data with error correction applied"},
    {0x1A, 0x00, "parameter list length error"},
    {0x1D, 0x00, "miscompare during verify operation"},
    {0x20, 0x00, "invalid command operation code"},
    {0x21, 0x00, "logical block address out of range"},
    {0x24, 0x00, "invalid field in CDB"},
    {0x25, 0x00, "logical unit not supported"},
    {0x26, 0x00, "invalid field in parameter list"},
    {0x27, 0x00, "write protected"},
    {0x28, 0x00, "not ready to ready change, medium may have changed"},
    {0x29, 0x00, "power on, reset, or bus device reset occurred"},
    {0x29, 0x01, "power on occurred"},
    {0x29, 0x02, "SCSI bus reset occurred"},
    {0x29, 0x03, "bus device reset occurred"},
    {0x29, 0x04, "device internal reset"},
    {0x29, 0x07, "I_T nexus loss occurred"},
    {0x2A, 0x01, "mode parameters changed"},
    {0x2A, 0x03, "reservations preempted"},
    {0x2A, 0x04, "reservations released"},
    {0x2A, 0x06, "asymmetric access state changed"},
    {0x2A, 0x09, "capacity data has changed"},
    {0x2C, 0x00, "command sequence error"},
    {0x2F, 0x00, "commands cleared by another initiator"},
    {0x31, 0x00, "medium format corrupted"},
    {0x32, 0x00, "no defect spare location available"},
    {0x35, 0x00, "enclosure services failure"},
    {0x37, 0x00, "rounded parameter"},
    {0x38, 0x07, "thin provisioning soft threshold reached"},
    {0x39, 0x00, "saving parameters not supported"},
    {0x3A, 0x00, "medium not present"},
    {0x3E, 0x01, "logical unit failure"},
    {0x3F, 0x01, "microcode has been changed"},
    {0x3F, 0x03, "inquiry data has changed"},
    {0x3F, 0x0E, "reported LUNs data has changed"},
    {0x44, 0x00, "internal target failure"},
    {0x47, 0x00, "SCSI parity error"},
    {0x49, 0x00, "invalid message error"},
    {0x4B, 0x00, "data phase error"},
    {0x4E, 0x00, "overlapped commands attempted"},
    {0x53, 0x02, "medium removal prevented"},
    {0x55, 0x03, "insufficient resources"},
    {0x5D, 0x00, "failure prediction threshold exceeded"},
};

std::optional<Sense> DecodeFixed(Bytes bytes) {
    const auto fixed = Padded<FixedSense>(bytes);
    if (bytes.size() <= offsetof(FixedSense, key)) {
        return std::nullopt;
    }
    Sense sense;
    sense.key = fixed.key & 0x0F;
    if ((fixed.response & kValid) != 0 && bytes.size() >= offsetof(FixedSense, additionalLength)) {
        sense.information = BigEndian(fixed.information);
    }
    // What the device did not send is not there, whatever the buffer holds.
    const size_t sent = offsetof(FixedSense, commandSpecific) + fixed.additionalLength;
    const auto reported = Padded<FixedSense>(Part(bytes, 0, sent));
    sense.code = reported.code;
    sense.qualifier = reported.qualifier;
    return sense;
}

std::optional<Sense> DecodeDescriptors(Bytes bytes) {
    if (bytes.size() <= offsetof(DescriptorSense, key)) {
        return std::nullopt;
    }
    const auto head = Padded<DescriptorSense>(bytes);
    Sense sense;
    sense.descriptorFormat = true;
    sense.key = head.key & 0x0F;
    sense.code = head.code;
    sense.qualifier = head.qualifier;
    Bytes rest = Part(bytes, sizeof head, head.additionalLength);
    while (rest.size() >= sizeof(DescriptorHead)) {
        const auto descriptor = Padded<InformationDescriptor>(rest);
        const size_t size = sizeof(DescriptorHead) + descriptor.head.length;
        if (descriptor.head.type == kInformationType && size >= sizeof descriptor &&
            rest.size() >= sizeof descriptor && (descriptor.valid & kValid) != 0) {
            sense.information = BigEndian(descriptor.information);
        }
        rest = Part(rest, size);
    }
    return sense;
}

std::string Codes(const Sense& sense) {
    char text[16];
    std::snprintf(text, sizeof text, "%x/%02x/%02x", sense.key, sense.code, sense.qualifier);
    return text;
}

}  // namespace

std::optional<Sense> DecodeSense(Bytes bytes) {
    if (bytes.empty()) {
        return std::nullopt;
    }
    const uint8_t response = bytes[0] & kResponseMask;
    std::optional<Sense> sense;
    if (response == 0x70 || response == 0x71) {
        sense = DecodeFixed(bytes);
    } else if (response == 0x72 || response == 0x73) {
        sense = DecodeDescriptors(bytes);
    }
    if (sense) {
        sense->deferred = (response & 1) != 0;
    }
    return sense;
}

std::string SenseKeyName(uint8_t key) {
    return kKeys[key & 0x0F];
}

std::string AdditionalSenseText(uint8_t code, uint8_t qualifier) {
    for (const CodeRow& row : kCodes) {
        if (row.code == code && row.qualifier == qualifier) {
            return row.text;
        }
    }
    return (code >= 0x80 || qualifier >= 0x80 ? "vendor specific code " : "code ") + Hex(code, 2) +
           ", qualifier " + Hex(qualifier, 2);
}

std::string SenseText(const Sense& sense) {
    return SenseKeyName(sense.key) + ": " + AdditionalSenseText(sense.code, sense.qualifier) +
           " (" + Codes(sense) + ")" + (sense.deferred ? ", of an earlier command" : "");
}

const Fields<Sense> kSenseFields = {
    {"key", "Sense key", Hexadecimal(1), &Sense::key},
    {"key_name", "Key name", kText, [](const Sense& s) { return SenseKeyName(s.key); }},
    {"asc", "Additional code", Hexadecimal(2), &Sense::code},
    {"ascq", "Qualifier", Hexadecimal(2), &Sense::qualifier},
    {"meaning", "Meaning", kText,
     [](const Sense& s) { return AdditionalSenseText(s.code, s.qualifier); }},
    {"deferred", "Of an earlier command", kFlag, &Sense::deferred},
    {"format", "Format", kText,
     [](const Sense& s) { return s.descriptorFormat ? "descriptor" : "fixed"; }},
    {"information", "Information", Hexadecimal(8).OrNull(), &Sense::information},
};

}  // namespace vxmgr
