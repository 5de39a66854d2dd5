#include "vxmgr/flash/flash_lock_table.h"

#include "common/text.h"

namespace vxmgr {

std::string SerialOf(const LockRecord& record) {
    return record.hasSerial == 0 ? std::string()
                                 : tools::FieldText(record.serial, sizeof record.serial);
}

const LockRecord* FindLock(const LockTable& table, const std::string& serial) {
    for (const LockRecord& record : table.records) {
        if (!serial.empty() && SerialOf(record) == serial) {
            return &record;
        }
    }
    return nullptr;
}

}  // namespace vxmgr
