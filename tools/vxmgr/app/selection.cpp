// What -a and -p select.
#include <algorithm>

#include "common/console.h"
#include "vxmgr/app/inventory.h"

namespace vxmgr {
namespace {

using tools::ExitCode;

// -a and -p as given, parsed; ends the command when one is wrong.
std::optional<tools::Selector> GivenSelector(tools::Invocation& invocation, const char* option) {
    if (!invocation.Given().Has(option)) {
        return std::nullopt;
    }
    const std::string text = invocation.Given().Text(option);
    tools::Selector selector;
    std::string error;
    if (!tools::ParseSelector(text, &selector, &error)) {
        invocation.Fail(ExitCode::Usage, std::string("--") + option + " " + text + ": " + error,
                        "serial:TEXT, wwn:..., index:N, scsi:N, all, a name or a serial number");
    }
    if (selector.kind == tools::SelectorKind::Bare ||
        selector.kind == tools::SelectorKind::Serial) {
        invocation.Names().Mask(tools::Secret::Serial, selector.text);
    }
    if (selector.bareNumber && invocation.OwnCommand().risk == tools::Risk::Irrecoverable) {
        invocation.Fail(ExitCode::Usage,
                        std::string("--") + option + " " + text +
                            ": a bare number is too easily mistyped for this command",
                        "name the serial number, or say index:" + text);
    }
    return selector;
}

template <typename Object>
const Object& Plain(const Object& object) {
    return object;
}
template <typename Object>
const Object& Plain(const Object* const& object) {
    return *object;
}

template <typename Range>
std::vector<tools::Identity> IdentitiesOf(const Range& objects) {
    std::vector<tools::Identity> identities;
    for (const auto& object : objects) {
        identities.push_back(Plain(object).Identity());
    }
    return identities;
}

std::vector<size_t> SelectFrom(tools::Invocation& invocation, const char* option,
                               const tools::Selector& selector,
                               const std::vector<tools::Identity>& identities) {
    const std::vector<size_t> found = tools::Select(selector, identities);
    const std::string given = std::string("--") + option + " " + invocation.Given().Text(option);
    if (found.empty() && selector.kind != tools::SelectorKind::All) {
        invocation.Fail(ExitCode::NotFound, given + " matches no " + option,
                        identities.empty() && !tools::console::IsElevated()
                            ? "no adapter is visible: run the command from an elevated prompt"
                            : std::string("see `") + option + " list`");
    }
    if (selector.kind == tools::SelectorKind::Bare && found.size() > 1) {
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

}  // namespace

std::vector<const Adapter*> SelectAdapters(tools::Invocation& invocation,
                                           const std::vector<Adapter>& adapters) {
    std::vector<const Adapter*> selected;
    for (const Adapter& adapter : adapters) {
        selected.push_back(&adapter);
    }
    if (const auto selector = GivenSelector(invocation, "adapter")) {
        std::vector<const Adapter*> matching;
        for (const size_t position :
             SelectFrom(invocation, "adapter", *selector, IdentitiesOf(selected))) {
            matching.push_back(selected[position]);
        }
        selected = std::move(matching);
    }
    if (const auto selector = GivenSelector(invocation, "port")) {
        // The adapters that own the ports.
        std::vector<const Port*> ports;
        for (const Adapter* adapter : selected) {
            ports.insert(ports.end(), adapter->ports.begin(), adapter->ports.end());
        }
        const std::vector<size_t> found =
            SelectFrom(invocation, "port", *selector, IdentitiesOf(ports));
        std::vector<const Adapter*> matching;
        for (const Adapter* adapter : selected) {
            const bool owns = std::any_of(found.begin(), found.end(), [&](size_t position) {
                return std::find(adapter->ports.begin(), adapter->ports.end(), ports[position]) !=
                       adapter->ports.end();
            });
            if (owns) {
                matching.push_back(adapter);
            }
        }
        selected = std::move(matching);
    }
    return selected;
}

std::vector<size_t> SelectPositions(tools::Invocation& invocation, const char* option,
                                    const std::vector<tools::Identity>& identities) {
    const auto selector = GivenSelector(invocation, option);
    return SelectFrom(invocation, option, selector.value_or(tools::Selector()), identities);
}

std::vector<const Port*> SelectPorts(tools::Invocation& invocation,
                                     const std::vector<Port>& ports) {
    std::vector<const Port*> selected;
    if (const auto selector = GivenSelector(invocation, "adapter")) {
        const std::vector<Adapter> adapters = GroupAdapters(ports);
        for (const size_t position :
             SelectFrom(invocation, "adapter", *selector, IdentitiesOf(adapters))) {
            const Adapter& adapter = adapters[position];
            selected.insert(selected.end(), adapter.ports.begin(), adapter.ports.end());
        }
    } else {
        for (const Port& port : ports) {
            selected.push_back(&port);
        }
    }
    if (const auto selector = GivenSelector(invocation, "port")) {
        std::vector<const Port*> matching;
        for (const size_t position :
             SelectFrom(invocation, "port", *selector, IdentitiesOf(selected))) {
            matching.push_back(selected[position]);
        }
        selected = std::move(matching);
    }
    return selected;
}

const Port& SelectOnePort(tools::Invocation& invocation, const std::vector<Port>& ports) {
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
