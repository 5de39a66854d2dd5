// One adapter whose port has a store in the registry: blocks to put there, values to look at, and
// writes that fail on the way.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "persist/blocks.h"
#include "properties/port_database_records.h"
#include "support/library_fixture.h"

namespace support {

using Name = std::array<uint8_t, 8>;

// A name that differs from all others in its last byte.
inline Name NameOf(uint8_t last, uint8_t first = 0x50) {
    return {first, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, last};
}

template <typename Record>
void SetNames(Record& record, const Name& node, const Name& port) {
    memcpy(record.nodeName, node.data(), node.size());
    memcpy(record.portName, port.data(), port.size());
}

inline Bytes NumberBytes(uint32_t number) {
    return BytesOf(number);
}

// The n-th registry write from now on fails, and all after it. Counts the library's writes.
class FailingWrites {
  public:
    explicit FailingWrites(uint32_t allowed)
        : redirection_(RedirectLibrary("RegSetValueExA", &Set)) {
        allowed_ = allowed;
        done_ = 0;
    }
    static uint32_t Done() { return done_; }

  private:
    static LSTATUS WINAPI Set(HKEY key, LPCSTR name, DWORD reserved, DWORD type, const BYTE* data,
                              DWORD size) {
        if (done_ == allowed_) {
            return ERROR_DISK_FULL;
        }
        ++done_;
        return RegSetValueExA(key, name, reserved, type, data, size);
    }

    static inline uint32_t allowed_ = 0;
    static inline uint32_t done_ = 0;
    std::unique_ptr<ImportRedirection> redirection_;
};

class PersistTest : public OneAdapterTest {
  protected:
    static constexpr const char* kPort = "21-00-00-24-ff-0a-0b-0c";
    static std::string ServiceKey(const std::string& service) {
        return "SYSTEM\\CurrentControlSet\\Services\\" + service + "\\Parameters";
    }

    void SetUp() override { StartWith("9.04.02.20"); }

    void StartWith(std::string_view driverVersion) {
        Start(driverVersion, 0x7740);
        AnswerPort();
    }
    void ReopenWith(std::string_view driverVersion) {
        Reopen(driverVersion);
        AnswerPort();
    }

    void AnswerPort() {
        registry.SetText("HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port 3", "Driver", "vxfc2");
        const Name name = {0x21, 0x00, 0x00, 0x24, 0xFF, 0x0A, 0x0B, 0x0C};
        properties::PortReplyV2 reply = {};
        memcpy(reply.base.portName, name.data(), name.size());
        port->On(transport::command::PortPropertiesV2, {.data = BytesOf(reply)});
        properties::LegacyPortAndNodeReply names = {};
        memcpy(names.worldWideName, name.data(), name.size());
        port->OnPlain(transport::command::LegacyPortAndNode, {.data = BytesOf(names)});
        port->OnSelector(properties::LegacySelector::AdapterInformation,
                         {.data = BytesOf(properties::LegacyAdapterReply{})});
        port->OnSelector(properties::LegacySelector::LinkValue,
                         {.data = BytesOf(properties::LegacyLinkReply{})});
        AnswerTargetList({});
    }

    // Makes the driver one that keeps its ports in value names.
    void UseValueNames() {
        port->node.vendorSpecificId = 1;
        port->AnswerProbes();
    }

    void AnswerTargetList(const std::vector<HX_TARGET_ENTRY>& entries) {
        properties::LegacyTargetListReply reply = {};
        reply.count = static_cast<uint16_t>(entries.size());
        std::copy(entries.begin(), entries.end(),
                  reinterpret_cast<HX_TARGET_ENTRY*>(reply.entries));
        port->OnSelector(properties::LegacySelector::TargetList, {.data = BytesOf(reply)});
    }

    void AnswerDatabase(const std::vector<properties::PortDatabaseEntry>& entries) {
        Bytes reply = BytesOf(properties::PortDatabaseHeader{7, uint32_t(entries.size())});
        for (const auto& entry : entries) {
            Append(reply, BytesOf(entry));
        }
        port->On(transport::command::PortDatabase, {.data = reply});
    }

    // A block of which every byte has a value of its own, with this many entries in use.
    static HX_TARGET_DATA Targets(uint16_t count) {
        HX_TARGET_DATA block;
        auto* const bytes = reinterpret_cast<uint8_t*>(&block);
        for (size_t i = 0; i < sizeof block; ++i) {
            bytes[i] = static_cast<uint8_t>(1 + i % 251);
        }
        block.count = count;
        for (uint32_t i = 0; i < HX_MAX_TARGETS; ++i) {
            SetNames(block.entries[i], NameOf(static_cast<uint8_t>(i)),
                     NameOf(static_cast<uint8_t>(i), 0x60));
        }
        return block;
    }

    static std::unique_ptr<HX_LUN_DATA> Luns(uint16_t version, uint16_t count) {
        auto block = std::make_unique<HX_LUN_DATA>();
        block->version = version;
        block->count = count;
        for (uint32_t i = 0; i < std::min<uint32_t>(count, HX_MAX_TARGETS); ++i) {
            SetNames(block->records[i], NameOf(static_cast<uint8_t>(i)),
                     NameOf(static_cast<uint8_t>(i), 0x60));
        }
        return block;
    }

    static Bytes BlockBytes(const void* block, size_t size) {
        const auto* const first = static_cast<const uint8_t*>(block);
        return Bytes(first, first + size);
    }

    void Store(const std::string& key, const std::string& name, const Bytes& bytes) {
        registry.SetRaw(key, name.c_str(), REG_BINARY, bytes.data(),
                        static_cast<uint32_t>(bytes.size()));
    }
    void Store(const std::string& key, const std::string& name, uint32_t number) {
        registry.SetRaw(key, name.c_str(), REG_DWORD, &number, sizeof number);
    }
    // A missing value gives no bytes.
    Bytes Stored(const std::string& key, const std::string& name) const {
        return registry.Read(key, name.c_str()).bytes;
    }
    bool IsStored(const std::string& key, const std::string& name) const {
        return registry.Read(key, name.c_str()).exists;
    }
    static void Remove(const std::string& key, const std::string& name) {
        RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, key.c_str(), name.c_str());
    }
};

}  // namespace support
