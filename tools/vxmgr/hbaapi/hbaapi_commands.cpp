// hbaapi list|show|register|unregister: what a program gets that knows the standard HBA API alone.
// The management API only tells beforehand which port would hold that up.
#include <algorithm>
#include <memory>
#include <numeric>
#include <span>

#include "vxmgr/app/inventory.h"
#include "vxmgr/app/side_by_side.h"
#include "vxmgr/commands.h"
#include "vxmgr/hbaapi/hbaapi_library.h"
#include "vxmgr/hbaapi/hbaapi_records.h"
#include "vxmgr/hbaapi/hbaapi_texts.h"

namespace vxmgr {
namespace {

Identity IdentityOf(const HbaAdapter& adapter) {
    Identity identity;
    identity.index = adapter.index;
    identity.serial = HbaSerial(adapter);
    const HBA_PORTATTRIBUTES& port = adapter.port.record;
    if (adapter.port.Holds()) {
        identity.names = {Wwn::Of(port.PortWWN.wwn), Wwn::Of(port.NodeWWN.wwn)};
        if (const auto scsiPort = ScsiPortOfDevice(port.OSDeviceName, sizeof port.OSDeviceName)) {
            identity.scsiPorts.push_back(*scsiPort);
        }
    }
    return identity;
}

// Here an adapter is a port: -a and -p choose among the same.
std::vector<HbaAdapter> Selected(Invocation& invocation, std::vector<HbaAdapter> adapters) {
    for (const char* option : {"adapter", "port"}) {
        std::vector<Identity> identities;
        for (const HbaAdapter& adapter : adapters) {
            identities.push_back(IdentityOf(adapter));
        }
        std::vector<HbaAdapter> matching;
        for (const size_t position : SelectPositions(invocation, option, identities)) {
            matching.push_back(std::move(adapters[position]));
        }
        adapters = std::move(matching);
    }
    return adapters;
}

ExitCode ReportFailed(Invocation& invocation, const std::vector<HbaAdapter>& adapters) {
    size_t failed = 0;
    ExitCode first = ExitCode::Done;
    for (const HbaAdapter& adapter : adapters) {
        if (!adapter.Failed()) {
            continue;
        }
        const auto failure = adapter.Failure();
        const bool cannot = failure == HBA_STATUS_ERROR_NOT_SUPPORTED;
        first = failed++ != 0 ? first : cannot ? ExitCode::NotSupported : ExitCode::Failed;
        invocation.Add({Severity::Error,
                        adapter.name + (failure ? ": " + HbaStatusText(*failure)
                                                : ": the adapter cannot be opened"),
                        "`port show` asks the management API, which says more",
                        "index:" + std::to_string(adapter.index),
                        {}});
    }
    return failed != 0 && failed < adapters.size() ? ExitCode::Partial : first;
}

// The standard API counts its adapters anew for each that is opened, port after port, and would
// wait every time for one that does not answer.
std::vector<Port> PortsThatAllAnswer(Invocation& invocation) {
    std::vector<Port> ports = ReadPorts(invocation);
    for (const Port& port : ports) {
        if (port.failure == HXMGT_TIMED_OUT) {
            invocation.Fail(port.failure,
                            "the standard API asks every port in turn, and " + port.failedQuery,
                            port.Object());
        }
    }
    return ports;
}

void FindManagedPort(const std::vector<Port>& ports, HbaAdapter& adapter) {
    const Wwn name = Wwn::Of(adapter.port.record.PortWWN.wwn);
    for (const Port& port : ports) {
        if (adapter.port.Holds() && port.port && Wwn::Of(port.port->portName) == name) {
            adapter.managedPort = port.index;
        }
    }
}

// Each open counts the adapters anew, mostly waiting for drivers: some at a time.
std::vector<HbaAdapter> ReadAdapters(Invocation& invocation,
                                     const std::shared_ptr<VendorLibrary>& library,
                                     std::span<const HBA_UINT32> indexes, HbaDepth depth) {
    constexpr size_t kAtATime = 8;
    static constexpr std::chrono::seconds kAdapterTime{60};
    std::vector<HbaAdapter> adapters;
    while (!indexes.empty()) {
        const auto some = indexes.first(std::min(kAtATime, indexes.size()));
        indexes = indexes.subspan(some.size());
        std::vector<PortQuestion<HbaAdapter>> questions;
        for (const HBA_UINT32 index : some) {
            questions.push_back({"adapter " + std::to_string(index) + " of the standard API",
                                 [library, index, depth](PortTask& task, HbaAdapter& adapter) {
                                     task.Answered(kAdapterTime);
                                     adapter = ReadHbaAdapter(library->Api(), index, depth);
                                 }});
        }
        auto made = AskSideBySide(invocation, std::move(questions));
        for (size_t i = 0; i < made.size(); ++i) {
            if (!made[i]) {
                invocation.Fail(HXMGT_TIMED_OUT, "the standard API does not come to an end",
                                "index:" + std::to_string(some[i]));
            }
            // It may have gone since it was counted.
            if (made[i]->named != HBA_STATUS_ERROR_ILLEGAL_INDEX) {
                adapters.push_back(std::move(*made[i]));
            }
        }
    }
    return adapters;
}

using HbaAdapters = std::vector<HbaAdapter>;

const auto kHbaListFields =
    ListOf<HbaAdapters>("adapters", "Adapters", kHbaSummaryFields, "No adapters.");
const auto kHbaShowFields = ListOf<HbaAdapters>("adapters", "Adapters", kHbaDetailFields,
                                                ListLayout::Sections, "No adapters.");

ExitCode Show(Invocation& invocation, HbaDepth depth, const Fields<HbaAdapters>& fields) {
    const auto file = OwnLibraryFile();
    if (!file) {
        invocation.Fail(ExitCode::NotFound, "there is no VXMGMT.DLL beside this program");
    }
    const std::vector<Port> ports = PortsThatAllAnswer(invocation);
    const auto library = std::make_shared<VendorLibrary>();
    std::string error;
    if (!library->Load(*file, &error)) {
        invocation.Fail(ExitCode::Failed, error);
    }
    // To select among them takes their attributes, not everything that can be asked.
    const bool selects = invocation.Given().Has("adapter") || invocation.Given().Has("port");
    std::vector<HBA_UINT32> indexes(library->Api().GetNumberOfAdaptersHandler());
    std::iota(indexes.begin(), indexes.end(), 0);
    std::vector<HbaAdapter> adapters = Selected(
        invocation,
        ReadAdapters(invocation, library, indexes, selects ? HbaDepth::Attributes : depth));
    if (selects && depth == HbaDepth::Everything) {
        indexes.clear();
        for (const HbaAdapter& adapter : adapters) {
            indexes.push_back(adapter.index);
        }
        adapters = ReadAdapters(invocation, library, indexes, depth);
    }
    for (HbaAdapter& adapter : adapters) {
        FindManagedPort(ports, adapter);
    }
    invocation.Result() = fields.Make(adapters);
    return ReportFailed(invocation, adapters);
}

ExitCode HbaList(Invocation& invocation) {
    return Show(invocation, HbaDepth::Attributes, kHbaListFields);
}

ExitCode HbaShow(Invocation& invocation) {
    return Show(invocation, HbaDepth::Everything, kHbaShowFields);
}

// The entry by which the common library of the standard HBA API finds this vendor's.
using File = std::optional<std::string>;

File Registered(Invocation& invocation) {
    File file;
    if (const uint32_t error = ReadRegisteredFile(&file); error != 0) {
        invocation.Fail(error, "the registry entry cannot be read", RegistrationKey());
    }
    return file;
}

struct Registration {
    File previous;
    File file;
};

const Fields<Registration> kRegistrationFields = {
    {"key", "Registry key", kText, [](const Registration&) { return RegistrationKey(); }},
    {"value_name", "Value", kText, [](const Registration&) { return kRegisteredValue; }},
    {"previous", "Before", kText.OrNull(), &Registration::previous, "null: none was registered"},
    {"file", "Library", kText.OrNull(), &Registration::file, "what is registered now"},
};

// Brings the entry from what it is to what it is to be.
ExitCode ChangeRegistration(Invocation& invocation, const File& wanted) {
    const File before = Registered(invocation);
    const bool needed = before != wanted;
    if (needed && !invocation.DryRun()) {
        const uint32_t error = wanted ? WriteRegisteredFile(*wanted) : RemoveRegisteredFile();
        if (error != 0) {
            invocation.Fail(error, "the registry entry cannot be changed", RegistrationKey());
        }
        invocation.Changed();
    }
    const File after = Registered(invocation);
    invocation.Result() = kRegistrationFields.Make({before, after});
    if (!needed) {
        invocation.Note(wanted ? "already registered" : "is not registered");
    } else if (invocation.DryRun()) {
        invocation.Note("dry run: " + (wanted ? *wanted + " would be registered"
                                              : *before + " would no longer be registered"));
    } else if (after != wanted) {
        invocation.Fail(ExitCode::NotProven, "the entry was changed, but does not read back");
    }
    return ExitCode::Done;
}

ExitCode HbaRegister(Invocation& invocation) {
    const File own = OwnLibraryFile();
    if (!own) {
        invocation.Fail(ExitCode::NotFound, "there is no VXMGMT.DLL beside this program",
                        "run the vxmgr.exe that is beside the library to register");
    }
    return ChangeRegistration(invocation, own);
}

ExitCode HbaUnregister(Invocation& invocation) {
    return ChangeRegistration(invocation, std::nullopt);
}

}  // namespace

CommandRows HbaapiCommands() {
    static const Command kCommands[] = {
        {.path = "hbaapi list",
         .help = "list the adapters as the standard HBA API has them",
         .run = HbaList,
         .example = "hbaapi list",
         .result = ShapeOf<kHbaListFields>},
        {.path = "hbaapi show",
         .help = "show all that the standard HBA API tells",
         .run = HbaShow,
         .example = "hbaapi show -p scsi:3",
         .result = ShapeOf<kHbaShowFields>},
        {.path = "hbaapi register",
         .risk = Risk::Reversible,
         .help = "have the common library of the HBA API find this one",
         .schema = "hbaapi.registration",
         .run = HbaRegister,
         .example = "hbaapi register",
         .result = ShapeOf<kRegistrationFields>},
        {.path = "hbaapi unregister",
         .risk = Risk::Reversible,
         .help = "take that registration back",
         .schema = "hbaapi.registration",
         .run = HbaUnregister,
         .example = "hbaapi unregister",
         .result = ShapeOf<kRegistrationFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
