#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bare_request.h"
#include "benchmarks.h"
#include "dumps/dump_records.h"
#include "flash/flash_records.h"
#include "flash_operations.h"
#include "hxmgtapi.h"
#include "machine/fake_system.h"
#include "measure.h"
#include "operations.h"
#include "properties/driver_replies.h"
#include "statistics/fabric_records.h"

namespace bench {

namespace {

namespace command = transport::command;

// Lets an adapter open: a driver version is all that it needs.
class OpenableDriver : public support::Device {
  public:
    uint32_t Control(uint32_t, const void*, uint32_t, void* output, uint32_t outputSize,
                     uint32_t* returned) override {
        auto& request = *static_cast<transport::ExtRequest*>(output);
        if (outputSize == sizeof request + sizeof(properties::NodeReply)) {
            auto& node = *reinterpret_cast<properties::NodeReply*>(&request + 1);
            memcpy(node.driverVersion, "9.04.02", 8);
        }
        *returned = outputSize;
        return 0;
    }
};

constexpr uint32_t kDumpBytes = 16u << 20;

constexpr flash::DriverRegion kRegions[] = {{200, 0, 0, 1u << 20, 0, 0},
                                            {201, 0, 0, 16u << 20, 0, 0}};

constexpr uint32_t kRemotePorts = 512;

// Succeeds at once: the reply is as long as there is room, whatever it holds. Only the size of the
// firmware dump, the flash layout and the number of remote ports must be said.
BOOL WINAPI NullDeviceIoControl(HANDLE, DWORD, LPVOID, DWORD, LPVOID output, DWORD outputSize,
                                LPDWORD returned, LPOVERLAPPED) {
    if (outputSize == transport::kEnvelopeLength + sizeof(dumps::RawQuery)) {
        auto& reply =
            *reinterpret_cast<dumps::RawQuery*>(static_cast<transport::ExtRequest*>(output) + 1);
        reply.header.length = kDumpBytes;
    }
    if (outputSize == transport::kEnvelopeLength + sizeof(flash::LayoutTable)) {
        auto& table =
            *reinterpret_cast<flash::LayoutTable*>(static_cast<transport::ExtRequest*>(output) + 1);
        table.head.count = static_cast<uint32_t>(std::size(kRegions));
        memcpy(table.regions, kRegions, sizeof kRegions);
    }
    if (outputSize == transport::kEnvelopeLength + sizeof(statistics::RemotePortReply)) {
        auto& reply = *reinterpret_cast<statistics::RemotePortReply*>(
            static_cast<transport::ExtRequest*>(output) + 1);
        reply.head.total = kRemotePorts;
        reply.head.count = static_cast<uint32_t>(std::size(reply.entries));
    }
    *returned = outputSize;
    return TRUE;
}

}  // namespace

void RunAgainstNullDriver(uint32_t samples) {
    support::FakeSystem system;
    OpenableDriver openable;
    system.AttachScsiPort(0, &openable);
    uint32_t handle = 0;
    if (HXOpenDevice(0, &handle) != 0) {
        fprintf(stderr, "the null driver did not open\n");
        exit(1);
    }
    const auto direct = support::RedirectLibrary("DeviceIoControl", &NullDeviceIoControl);
    const Carrier carrier{nullptr, &NullDeviceIoControl};
    std::vector<Result> results;
    for (const uint32_t size : {0u, 696u, 4096u, 65536u, 176136u}) {
        std::vector<uint8_t> reply(size);
        void* const output = size == 0 ? nullptr : reply.data();
        BareExtended extended(carrier, command::PortDatabase, 4, size);
        uint32_t type = 0;
        results.push_back(Measure({"extended, " + std::to_string(size) + " bytes",
                                   [&] {
                                       uint32_t returned = 0;
                                       SRBWithHeaderDeviceIoControl(
                                           handle, command::PortDatabase.code,
                                           command::PortDatabase.subCode, &type, sizeof type,
                                           output, size, &returned);
                                   },
                                   [&] { extended.Send(); }},
                                  samples));
        BarePlain plain(carrier, command::LegacyQuery, std::vector<uint8_t>(12), size);
        const transport::SelectorRecord selector = {};
        results.push_back(Measure({"plain, " + std::to_string(size) + " bytes",
                                   [&] {
                                       SendMiniPortControl(static_cast<int32_t>(handle),
                                                           command::LegacyQuery, &selector,
                                                           sizeof selector, output, size);
                                   },
                                   [&] { plain.Send(); }},
                                  samples));
    }
    for (const Result& result :
         MeasureOperations(handle, carrier, {HX_ADDRESS_PORT_NAME, {}, 0}, samples)) {
        results.push_back(result);
    }
    for (const Result& result : MeasureFlash(handle, carrier, std::max(1u, samples / 10))) {
        results.push_back(result);
    }
    HXCloseDevice(static_cast<int32_t>(handle));
    Print("Driver inside the process that does nothing: the library's own cost", results);
}

}  // namespace bench
