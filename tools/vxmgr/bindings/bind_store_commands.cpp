// bind stores, clean: what is stored for ports of any driver, present or not.
#include "vxmgr/app/inventory.h"
#include "vxmgr/bindings/store_blocks.h"
#include "vxmgr/commands.h"

namespace vxmgr {
namespace {

// As many driver services as can hold data of the same port.
constexpr int kMostServices = 8;

constexpr Argument kCleanArguments[] = {
    {.name = "NAME", .help = "port names; without any all absent ports", .repeated = true},
};

std::vector<Wwn> NamesIn(const HX_WWN_LIST& list) {
    std::vector<Wwn> names;
    for (const uint8_t(&raw)[8] : list.names) {
        if (const Wwn name = Wwn::Of(raw); !name.IsZero()) {
            names.push_back(name);
        }
    }
    return names;
}

// A damaged store still gives the names that were found.
std::vector<Wwn> StoredNames(Invocation& invocation, HX_STATUS (*query)(HX_WWN_LIST*),
                             const char* what) {
    const auto list = std::make_unique<HX_WWN_LIST>();
    const HX_STATUS status = query(list.get());
    if (status != HXMGT_SUCCESS) {
        invocation.Warn(
            std::string("the list of ") + what + " may be incomplete: " + StatusMessage(status),
            "a name or block in the store is damaged");
    }
    return NamesIn(*list);
}

const Port* PortNamed(const std::vector<Port>& ports, const Wwn& name) {
    for (const Port& port : ports) {
        if (port.port && Wwn::Of(port.port->portName) == name) {
            return &port;
        }
    }
    return nullptr;
}

struct StoredPort {
    Wwn name;
    const Port* port;  // null: it is absent

    bool IsPresent() const { return port != nullptr; }
    std::optional<uint32_t> Index() const {
        return port ? std::optional(port->index) : std::nullopt;
    }
    std::optional<uint32_t> ScsiPort() const { return port ? port->scsiPort : std::nullopt; }
    std::string Serial() const { return port ? port->Serial() : ""; }
};

struct StoredData {
    std::vector<StoredPort> ports;
    std::vector<Wwn> targets;
};

struct CleanedPort {
    Wwn name;
    const char* outcome;
};

using CleanedPorts = std::vector<CleanedPort>;

const Fields<StoredPort> kStoredPortFields = {
    {"port_wwn", "Port name", "PORT NAME", kWwn, &StoredPort::name},
    {"present", "Present", "PRESENT", kFlag, &StoredPort::IsPresent},
    {"port", "Port", "PORT", kInteger.OrNull(), &StoredPort::Index},
    {"scsi_port", "", kInteger.OrNull(), &StoredPort::ScsiPort},
    {"adapter_serial", "", kSerial.OrNull(), &StoredPort::Serial},
    {"serial", "Adapter", "ADAPTER", kSerial.OrNull(), &StoredPort::Serial},
};
const Fields<Wwn> kStoredTargetFields = {
    {"node_wwn", "Node name", "TARGET NODE NAME", kWwn, std::identity()},
};
const Fields<StoredData> kBindStoresFields = {
    {"ports", "Ports", kStoredPortFields, &StoredData::ports, "nothing is stored",
     "ports that have stored data, of any driver"},
    {"targets", "Targets", kStoredTargetFields, &StoredData::targets, "",
     "targets in any port's stored data"},
};

constexpr const char* kCleanOutcomes[] = {"planned", "deleted", "failed"};
const Fields<CleanedPort> kCleanedPortFields = {
    {"port_wwn", "Port name", "PORT NAME", kWwn, &CleanedPort::name},
    {"outcome", "Outcome", "OUTCOME", Choice(kCleanOutcomes), &CleanedPort::outcome},
};
const Fields<CleanedPorts> kBindCleanFields = {
    {"ports", "Ports", kCleanedPortFields, std::identity(), "nothing is stored for an absent port"},
};

// Ports of which the name is not known could be any of those in the store.
const Port* FirstNameless(const std::vector<Port>& ports) {
    for (const Port& port : ports) {
        if (!port.port) {
            return &port;
        }
    }
    return nullptr;
}

std::vector<Wwn> GivenNames(Invocation& invocation) {
    std::vector<Wwn> names;
    for (const std::string& text : invocation.Given().All("NAME")) {
        const auto name = Wwn::Parse(text);
        if (!name || name->IsZero()) {
            invocation.Fail(ExitCode::Usage, "\"" + text + "\" is no port name",
                            "`bind stores` shows the names");
        }
        names.push_back(*name);
    }
    return names;
}

// The absent ports to clean; ends the command where one of them may be present after all.
std::vector<Wwn> NamesToClean(Invocation& invocation, const std::vector<Port>& ports,
                              const std::vector<Wwn>& stored) {
    std::vector<Wwn> names = GivenNames(invocation);
    for (const Wwn& name : names) {
        if (const Port* port = PortNamed(ports, name)) {
            invocation.Fail(
                ExitCode::Refused,
                name.Colons() + " is present: it is port " + std::to_string(port->index),
                "`bind remove` removes its bindings");
        }
        if (std::find(stored.begin(), stored.end(), name) == stored.end()) {
            invocation.Fail(ExitCode::NotFound, "nothing is stored for " + name.Colons(),
                            "`bind stores` shows what is");
        }
    }
    if (!names.empty()) {
        return names;
    }
    for (const Wwn& name : stored) {
        if (PortNamed(ports, name) == nullptr) {
            names.push_back(name);
        }
    }
    const Port* nameless = FirstNameless(ports);
    if (!names.empty() && (ports.empty() || nameless != nullptr)) {
        invocation.Fail(
            ExitCode::Refused,
            ports.empty() ? std::string("no port is present: the driver may not run")
                          : nameless->Object() + ": the port's name cannot be read",
            "what is stored may be of ports that are only out of reach: name those that "
            "are gone for good");
    }
    return names;
}

bool Delete(Invocation& invocation, const Wwn& name) {
    for (int service = 0; service < kMostServices; ++service) {
        const HX_STATUS status = HXDeletePersistentDeviceEntry(name.bytes.data());
        if (status != HXMGT_SUCCESS) {
            invocation.Report(status, "the stored data cannot be deleted", name.Colons());
            return false;
        }
        invocation.Changed();
        const auto list = std::make_unique<HX_WWN_LIST>();
        HXGetPersistentDeviceEntryList(list.get());
        const std::vector<Wwn> left = NamesIn(*list);
        if (std::find(left.begin(), left.end(), name) == left.end()) {
            return true;
        }
    }
    invocation.Add({Severity::Error,
                    "the stored data was deleted, but is still there",
                    {},
                    name.Colons(),
                    {}});
    return false;
}

Question QuestionAbout(const std::vector<Wwn>& names) {
    Question question;
    question.lines.push_back("Delete the stored bindings and LUN masks of these absent ports:");
    for (const Wwn& name : names) {
        question.lines.push_back("  " + name.Colons());
    }
    question.lines.push_back(
        "They cannot be brought back. An adapter that returns starts without.");
    return question;
}

ExitCode BindStores(Invocation& invocation) {
    const std::vector<Port> ports = ReadPorts(invocation);
    StoredData data;
    for (const Wwn& name :
         StoredNames(invocation, HXGetPersistentDeviceEntryList, "ports with stored data")) {
        data.ports.push_back({name, PortNamed(ports, name)});
    }
    data.targets = StoredNames(invocation, HXGetPersistentTargetEntryList, "stored targets");
    if (const Port* nameless = FirstNameless(ports)) {
        invocation.Warn(nameless->Object() +
                        ": the port's name cannot be read: it may be shown as absent");
    }
    invocation.Result() = kBindStoresFields.Make(data);
    return ExitCode::Done;
}

ExitCode BindClean(Invocation& invocation) {
    const std::vector<Port> ports = ReadPorts(invocation);
    const std::vector<Wwn> stored =
        StoredNames(invocation, HXGetPersistentDeviceEntryList, "ports with stored data");
    const std::vector<Wwn> names = NamesToClean(invocation, ports, stored);
    if (!names.empty() && !invocation.DryRun()) {
        invocation.Confirm(QuestionAbout(names));
    }
    CleanedPorts rows;
    size_t failures = 0;
    for (const Wwn& name : names) {
        invocation.CheckStop();
        const bool planned = invocation.DryRun();
        const bool deleted = planned || Delete(invocation, name);
        failures += deleted ? 0 : 1;
        rows.push_back({name, planned ? "planned" : deleted ? "deleted" : "failed"});
    }
    const bool all = failures == rows.size();
    invocation.Result() = kBindCleanFields.Make(rows);
    if (names.empty()) {
        invocation.Note("nothing to do");
    } else if (invocation.DryRun()) {
        invocation.Note("dry run: nothing was changed");
    }
    return failures == 0 ? ExitCode::Done : all ? ExitCode::Failed : ExitCode::Partial;
}

}  // namespace

CommandRows BindStoreCommands() {
    static const Command kCommands[] = {
        {.path = "bind stores",
         .help = "list the ports that have stored data, absent ones among them",
         .run = BindStores,
         .example = "bind stores",
         .result = ShapeOf<kBindStoresFields>},
        {.path = "bind clean",
         .risk = Risk::InterruptsIo,
         .help = "delete the stored data of absent ports",
         .arguments = kCleanArguments,
         .run = BindClean,
         .example = "bind clean 21:00:02:45:4d:00:09:00",
         .result = ShapeOf<kBindCleanFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
