#include <algorithm>
#include <cstdio>
#include <cstring>

#include "bare_request.h"
#include "benchmarks.h"
#include "flash_operations.h"
#include "hxmgtapi.h"
#include "measure.h"
#include "operations.h"
#include "properties/driver_replies.h"

namespace bench {

namespace {

namespace command = transport::command;

template <typename Reply>
BareExtended Ask(const Carrier& carrier, transport::Command command) {
    return BareExtended(carrier, command, 0, sizeof(Reply));
}

// The first target that the adapter discovered, by port name.
HX_SCSI_ADDRESS FirstTarget(uint32_t handle) {
    const uint8_t index[16] = {};
    uint8_t reply[64] = {};
    uint32_t count = 0;
    SRBWithHeaderDeviceIoControl(handle, command::DiscoveredTarget.code,
                                 command::DiscoveredTarget.subCode, index, sizeof index, reply,
                                 sizeof reply, &count);
    HX_SCSI_ADDRESS target = {HX_ADDRESS_PORT_NAME, {}, 0};
    memcpy(target.address, reply + 8, sizeof target.address);
    return target;
}

}  // namespace

void RunAgainstRealDriver(uint32_t samples) {
    uint32_t handle = 0;
    if (const HX_STATUS status = HXOpenDevice(0, &handle); status != 0) {
        printf("\nNo adapter could be opened (0x%08x): nothing measured against a driver.\n",
               status);
        return;
    }
    const HXMGT_API_HANDLE& record = HXGetGlobalDevice()[handle];
    if (record.dwDriverVersion < 70503) {
        printf("\nThe first adapter has a driver below 7.05.03: nothing measured against it.\n");
        HXCloseDevice(static_cast<int32_t>(handle));
        return;
    }
    const std::string name = "\\\\.\\scsi" + std::to_string(record.dwScsiPort) + ":";
    const HANDLE device =
        CreateFileA(name.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    const Carrier carrier{device, &DeviceIoControl};
    BareExtended node = Ask<properties::NodeReply>(carrier, command::NodeProperties);
    BareExtended chip = Ask<properties::ChipReply>(carrier, command::ChipProperties);
    BareExtended port = Ask<properties::PortReplyV2>(carrier, command::PortPropertiesV2);
    BareExtended fetch(carrier, command::FetchEvents, 0, 512);
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, "VXMGMT_BenchMutex");

    std::vector<uint8_t> reply(sizeof(properties::NodeReply));
    HX_NODE_PROPERTY nodeRecord;
    HX_PORT_PROPERTY portRecord;
    uint8_t events[512];
    uint32_t count = 0;
    HXEnableAen(handle);
    const Comparison comparisons[] = {
        {"SRBWithHeaderDeviceIoControl, node properties",
         [&] {
             SRBWithHeaderDeviceIoControl(handle, command::NodeProperties.code,
                                          command::NodeProperties.subCode, nullptr, 0, reply.data(),
                                          static_cast<uint32_t>(reply.size()), &count);
         },
         [&] { node.Send(); }},
        {"HXGetHbaDeviceNodeProperty (2 requests)",
         [&] { HXGetHbaDeviceNodeProperty(handle, &nodeRecord); },
         [&] {
             chip.Send();
             node.Send();
         }},
        {"HXGetHbaDevicePortProperty (3 requests)",
         [&] { HXGetHbaDevicePortProperty(handle, 0, &portRecord); },
         [&] {
             port.Send();
             chip.Send();
             node.Send();
         }},
        {"HXGetAen (1 request under a mutex)",
         [&] { HXGetAen(handle, events, sizeof events, &count); },
         [&] {
             WaitForSingleObject(mutex, INFINITE);
             fetch.Send();
             ReleaseMutex(mutex);
         }},
    };
    std::vector<Result> results;
    for (const Comparison& comparison : comparisons) {
        results.push_back(Measure(comparison, samples));
    }
    HXDisableAen(handle);
    for (const Result& result : MeasureOperations(handle, carrier, FirstTarget(handle), samples)) {
        results.push_back(result);
    }
    for (const Result& result : MeasureFlash(handle, carrier, std::max(1u, samples / 10))) {
        results.push_back(result);
    }
    CloseHandle(mutex);
    CloseHandle(device);
    Print(("Driver of SCSI port " + std::to_string(record.dwScsiPort)).c_str(), results);
    HXCloseDevice(static_cast<int32_t>(handle));
}

}  // namespace bench
