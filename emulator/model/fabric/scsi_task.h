// One SCSI command at a target of the fabric.
#pragma once

#include <cstdint>

#include "formats/scsi_data.h"
#include "model/fabric/fabric.h"

namespace vxemu {

enum class ScsiStatus : uint8_t { Good = 0x00, CheckCondition = 0x02 };

inline constexpr uint32_t kLongestCdb = 16;

// Sense key, additional sense code and qualifier (SPC, SBC).
struct Sense {
    uint8_t key;
    uint8_t code;
    uint8_t qualifier;
};
inline constexpr Sense kNoSense = {0x0, 0x00, 0x00};
inline constexpr Sense kMediumNotPresent = {0x2, 0x3A, 0x00};
inline constexpr Sense kInvalidCommand = {0x5, 0x20, 0x00};
inline constexpr Sense kBlockOutOfRange = {0x5, 0x21, 0x00};
inline constexpr Sense kInvalidFieldInCdb = {0x5, 0x24, 0x00};
inline constexpr Sense kLunNotSupported = {0x5, 0x25, 0x00};
inline constexpr Sense kSpaceAllocationFailed = {0x7, 0x27, 0x07};

#pragma pack(push, 1)
// Sense data in fixed format, as far as targets fill it.
struct SenseData {
    formats::FixedSense fixed;
    uint8_t fieldReplaceableUnit;
    uint8_t keySpecific[3];
};
static_assert(sizeof(SenseData) == 18);
#pragma pack(pop)

SenseData SenseDataOf(const Sense& sense);

struct ScsiTask {
    const Port* port;
    const TargetProfile* target;
    const LunProfile* lun;  // null: there is none, or the port's mask hides it
    uint8_t cdb[kLongestCdb];
    // Both may be the same bytes: a command sends data one way only.
    const uint8_t* dataOut;
    uint32_t dataOutLength;
    uint8_t* dataIn;
    uint32_t dataInRoom;

    // What came of it.
    ScsiStatus status;
    Sense sense;
    uint32_t returned;  // bytes of dataIn
    bool overrun;       // the command moves more data than there is room for, or was given
};

// Finds the LUN and runs the command.
void RunScsi(ScsiTask& task, uint32_t lunNumber);

}  // namespace vxemu
