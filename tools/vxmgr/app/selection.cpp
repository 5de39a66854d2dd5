// What -a and -p select.
#include <algorithm>
#include <utility>

#include "common/console.h"
#include "vxmgr/app/inventory.h"

namespace vxmgr {
namespace {

template <typename Object>
std::vector<Identity> IdentitiesOf(const std::vector<const Object*>& objects) {
    std::vector<Identity> identities;
    for (const Object* object : objects) {
        identities.push_back(object->Identity());
    }
    return identities;
}

template <typename Object>
std::vector<const Object*> PointersTo(const std::vector<Object>& objects) {
    std::vector<const Object*> pointers;
    for (const Object& object : objects) {
        pointers.push_back(&object);
    }
    return pointers;
}

std::vector<const Port*> PortsOf(const std::vector<const Adapter*>& adapters) {
    std::vector<const Port*> ports;
    for (const Adapter* adapter : adapters) {
        ports.insert(ports.end(), adapter->ports.begin(), adapter->ports.end());
    }
    return ports;
}

std::string NoMatchHint(const char* option, const std::vector<Identity>& identities,
                        const std::string& silent) {
    if (!silent.empty()) {
        return silent + " does not answer, and may be the one";
    }
    return identities.empty() && !console::IsElevated()
               ? "no adapter is visible: run the command from an elevated prompt"
               : std::string("see `") + option + " list`";
}

// silent: a port whose names are not known, as it does not answer; empty for none.
std::vector<size_t> SelectFrom(Invocation& invocation, const char* option, const Selector& selector,
                               const std::vector<Identity>& identities, const std::string& silent) {
    const std::vector<size_t> found = Select(selector, identities);
    const std::string given = std::string("--") + option + " " + invocation.Given().Text(option);
    if (found.empty() && selector.kind != SelectorKind::All) {
        invocation.Fail(ExitCode::NotFound, given + " matches no " + option,
                        NoMatchHint(option, identities, silent));
    }
    if (selector.kind == SelectorKind::Bare && found.size() > 1) {
        std::string matches;
        for (const size_t position : found) {
            matches += " index:" + std::to_string(identities[position].index);
        }
        invocation.Fail(ExitCode::Usage,
                        given + " matches " + std::to_string(found.size()) + " " + option + "s",
                        "choose one of" + matches + ", or say serial: or wwn: to mean them all");
    }
    return found;
}

// The first port that does not answer; empty: none.
std::string SilentOne(const std::vector<const Port*>& ports) {
    const auto silent = std::ranges::find(ports, false, &Port::answers);
    return silent != ports.end() ? (*silent)->Object() : std::string();
}

// Those of the ports that -p selects, all of them without it.
std::vector<const Port*> PortsOfOption(Invocation& invocation,
                                       const std::vector<const Port*>& ports) {
    const auto selector = GivenSelector(invocation, "port");
    if (!selector) {
        return ports;
    }
    std::vector<const Port*> matching;
    for (const size_t position :
         SelectFrom(invocation, "port", *selector, IdentitiesOf(ports), SilentOne(ports))) {
        matching.push_back(ports[position]);
    }
    return matching;
}

// Adapters are counted by their serial numbers. A port that does not tell its own counts as an
// adapter, and those behind it may have other numbers than they have on another day.
void CheckNumber(Invocation& invocation, const Selector& selector,
                 const std::vector<const Adapter*>& adapters, const Adapter& chosen) {
    if (selector.kind != SelectorKind::Index) {
        return;
    }
    const uint32_t first = chosen.First().index;
    for (const Adapter* adapter : adapters) {
        const Port& port = adapter->First();
        if (port.index >= first || port.node) {
            continue;
        }
        const std::string text = "the number of the adapter is not certain: " + port.Name() +
                                 " in front of it does not tell its serial number";
        if (invocation.OwnCommand().risk != Risk::Reads) {
            invocation.Fail(ExitCode::Refused, text, "name the adapter by its serial number");
        }
        invocation.Warn(text, "name the adapter by its serial number");
        return;
    }
}

// The adapters that -a selects, all of them without it.
std::vector<const Adapter*> AdaptersOfOption(Invocation& invocation,
                                             const std::vector<Adapter>& adapters) {
    const std::vector<const Adapter*> all = PointersTo(adapters);
    const auto selector = GivenSelector(invocation, "adapter");
    if (!selector) {
        return all;
    }
    std::vector<const Adapter*> selected;
    for (const size_t position :
         SelectFrom(invocation, "adapter", *selector, IdentitiesOf(all), SilentOne(PortsOf(all)))) {
        CheckNumber(invocation, *selector, all, *all[position]);
        selected.push_back(all[position]);
    }
    return selected;
}

SelectionListener listener = nullptr;

// A command may select more than once.
void TellListener(Invocation& invocation, const std::vector<std::string>& serials) {
    for (const std::string& serial : serials) {
        if (listener != nullptr && !serial.empty() && invocation.IsFirst("selected " + serial)) {
            listener(invocation, serial);
        }
    }
}

// A --confirm that names another adapter than those selected is a mistake whatever the command.
template <typename Object>
std::vector<const Object*> Confirmed(Invocation& invocation, std::vector<const Object*> selected) {
    std::vector<std::string> serials;
    for (const Object* object : selected) {
        serials.push_back(object->Identity().serial);
    }
    invocation.CheckConfirmed(serials);
    TellListener(invocation, serials);
    return selected;
}

}  // namespace

void WhenSelected(SelectionListener listen) {
    listener = listen;
}

std::optional<Selector> GivenSelector(Invocation& invocation, const char* option) {
    if (!invocation.Given().Has(option)) {
        return std::nullopt;
    }
    const std::string text = invocation.Given().Text(option);
    Selector selector;
    std::string error;
    if (!ParseSelector(text, &selector, &error)) {
        invocation.Fail(ExitCode::Usage, std::string("--") + option + " " + text + ": " + error,
                        "serial:TEXT, wwn:..., index:N, scsi:N, all, a name or a serial number");
    }
    if (selector.kind == SelectorKind::Bare || selector.kind == SelectorKind::Serial) {
        invocation.Names().Mask(Secret::Serial, selector.text);
    }
    if (selector.bareNumber && invocation.OwnCommand().risk == Risk::Irrecoverable) {
        invocation.Fail(ExitCode::Usage,
                        std::string("--") + option + " " + text +
                            ": a bare number is too easily mistyped for this command",
                        "name the serial number, or say index:" + text);
    }
    return selector;
}

std::vector<const Adapter*> SelectAdapters(Invocation& invocation,
                                           const std::vector<Adapter>& adapters) {
    std::vector<const Adapter*> selected = AdaptersOfOption(invocation, adapters);
    if (invocation.Given().Has("port")) {
        // The adapters that own the ports.
        const std::vector<const Port*> chosen = PortsOfOption(invocation, PortsOf(selected));
        std::erase_if(selected, [&](const Adapter* adapter) {
            return std::ranges::find_first_of(adapter->ports, chosen) == adapter->ports.end();
        });
    }
    return Confirmed(invocation, std::move(selected));
}

std::vector<size_t> SelectPositions(Invocation& invocation, const char* option,
                                    const std::vector<Identity>& identities) {
    const auto selector = GivenSelector(invocation, option);
    return SelectFrom(invocation, option, selector.value_or(Selector()), identities, {});
}

std::vector<const Port*> SelectPorts(Invocation& invocation, const std::vector<Port>& ports) {
    if (!invocation.Given().Has("adapter")) {
        return Confirmed(invocation, PortsOfOption(invocation, PointersTo(ports)));
    }
    const std::vector<Adapter> adapters = GroupAdapters(ports);
    return Confirmed(invocation,
                     PortsOfOption(invocation, PortsOf(AdaptersOfOption(invocation, adapters))));
}

std::vector<Port*> SelectPorts(Invocation& invocation, std::vector<Port>& ports) {
    std::vector<Port*> selected;
    for (const Port* port : SelectPorts(invocation, std::as_const(ports))) {
        selected.push_back(&ports[static_cast<size_t>(port - ports.data())]);
    }
    return selected;
}

const Port& SelectOnePort(Invocation& invocation, const std::vector<Port>& ports) {
    const std::vector<const Port*> selected = SelectPorts(invocation, ports);
    if (selected.empty()) {
        invocation.Fail(ExitCode::NotFound, "there is no port", "see `port list`");
    }
    if (selected.size() > 1) {
        invocation.Fail(ExitCode::Usage,
                        "the command works on one port, and " + std::to_string(selected.size()) +
                            " are selected",
                        "choose one with -p; `port list` shows them");
    }
    return *selected.front();
}

}  // namespace vxmgr
