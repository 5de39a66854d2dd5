// Property queries on one adapter, with replies in which every byte counts.
#pragma once

#include <array>
#include <string>
#include <tuple>

#include "support/library_fixture.h"

namespace support {

using properties::LegacySelector;

// Every byte of a reply has a value of its own (modulo 251), so that a field from a wrong place
// shows.
template <typename Record>
Record Patterned() {
    Record record;
    auto* const bytes = reinterpret_cast<uint8_t*>(&record);
    for (size_t i = 0; i < sizeof record; ++i) {
        bytes[i] = static_cast<uint8_t>(1 + i % 251);
    }
    return record;
}

class PropertiesTest : public OneAdapterTest {
  protected:
    // A record full of 0xEE, in which the test puts what it expects from a reply.
    struct Expected {
        explicit Expected(size_t size) : bytes(size, 0xEE) {}
        void Copy(size_t to, const Bytes& reply, size_t from, size_t count) {
            std::copy_n(reply.begin() + static_cast<ptrdiff_t>(from), count,
                        bytes.begin() + static_cast<ptrdiff_t>(to));
        }
        void Put(size_t to, const Bytes& value) { Copy(to, value, 0, value.size()); }
        void Fill(size_t to, size_t count, uint8_t value) { Put(to, Bytes(count, value)); }
        void Text(size_t to, size_t size, std::string_view text) {
            Fill(to, size, 0);
            Put(to, Bytes(text.begin(), text.end()));
        }
        Bytes bytes;
    };
    template <typename Record>
    static Bytes Seen(Guarded<Record>& record) {
        return Bytes(record.Raw().Data(), record.Raw().Data() + sizeof(Record));
    }

    static std::string Text(const char* field, size_t size) {
        return std::string(field, strnlen(field, size));
    }

    // The node record with this manufacturer-and-serial text.
    HX_NODE_PROPERTY NodeWith(std::string_view text, uint32_t flags = 16) {
        SetText(port->node.manufacturerAndSerial, text);
        port->node.flags = flags;
        port->AnswerProbes();
        HX_NODE_PROPERTY record;
        memset(&record, 0xEE, sizeof record);
        EXPECT_EQ(0u, HXGetHbaDeviceNodeProperty(handle, &record));
        return record;
    }

    void AnswerLegacy() {
        properties::LegacyPortAndNodeReply names = {};
        memcpy(names.worldWideName, "\x21\x02\x03\x04\x05\x06\x07\x08", 8);
        names.portType = 0xAF;  // bits 4 to 6: 2
        port->OnPlain(command::LegacyPortAndNode, {.data = BytesOf(names)});
        properties::LegacyAdapterReply adapter = {};
        memcpy(adapter.portId, "\x0A\x0B\x0C", 3);
        memcpy(adapter.firmwareVersion, "\x03\x00\x15", 3);
        memcpy(adapter.optionRomVersion, "\x01\x02\x03\x04", 4);
        memcpy(adapter.serialBytes, "\x01\x02\x03", 3);
        port->OnSelector(LegacySelector::AdapterInformation, {.data = BytesOf(adapter)});
        properties::LegacyTargetListReply targets = {};
        targets.count = 5;
        for (const int valid : {0, 2, 4, 7}) {  // the last one is beyond the count
            targets.entries[valid].loopId = 0x8101;
        }
        port->OnSelector(LegacySelector::TargetList, {.data = BytesOf(targets)});
        SetLinkValue(0x8000);
    }
    void SetLinkValue(uint16_t value) {
        properties::LegacyLinkReply link = {};
        link.linkValue = value;
        port->OnSelector(LegacySelector::LinkValue, {.data = BytesOf(link)});
    }
};

}  // namespace support
