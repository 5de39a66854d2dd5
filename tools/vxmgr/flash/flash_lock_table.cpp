#include "vxmgr/flash/flash_lock_table.h"

#include "common/text.h"

namespace vxmgr {

std::string SerialOf(const FlashLock& record) {
    return record.serial[0] == 0 ? std::string()
                                 : tools::FieldText(record.serial + 1, sizeof record.serial - 1);
}

const FlashLock* FindLock(const FlashLockArea& table, const std::string& serial) {
    for (const FlashLock& record : table.locks) {
        if (!serial.empty() && SerialOf(record) == serial) {
            return &record;
        }
    }
    return nullptr;
}

}  // namespace vxmgr
