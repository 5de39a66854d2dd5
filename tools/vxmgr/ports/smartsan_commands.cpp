// smartsan get|on|off: the switch of the driver service, which all its adapters share.
#include "vxmgr/app/values.h"
#include "vxmgr/commands.h"

namespace vxmgr {
namespace {

struct SwitchState {
    bool enabled;
    bool previous;
};

const Fields<bool> kEnabledFields = {{"enabled", "SmartSAN", kFlag, OnOffValue}};

const Fields<SwitchState> kSwitchFields = {
    {kEnabledFields, &SwitchState::enabled},
    {"previous", "Before", kFlag,
     [](const SwitchState& state) { return OnOffValue(state.previous); }},
};

// Any port of the driver reaches the switch: the first selected one that can be opened.
Device OpenAnyPort(Invocation& invocation) {
    const std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<const Port*> selected = SelectPorts(invocation, ports);
    if (selected.empty()) {
        invocation.Fail(ExitCode::NotFound, "there is no port", "see `port list`");
    }
    HX_STATUS status = HXMGT_SUCCESS;
    for (const Port* port : selected) {
        Device device;
        status = port->Open(TracePath(invocation), &device);
        if (status == HXMGT_SUCCESS) {
            return device;
        }
    }
    invocation.Fail(status, "no port can be opened", selected.back()->Object());
}

bool IsEnabled(Invocation& invocation, const Device& device) {
    uint8_t enabled = 0;
    invocation.Require(HXGetSmartSANStatusFC(device.Handle(), &enabled),
                       "the SmartSAN switch cannot be read");
    return enabled != 0;
}

template <bool wanted>
ExitCode SwitchSmartSan(Invocation& invocation) {
    const Device device = OpenAnyPort(invocation);
    const bool before = IsEnabled(invocation, device);
    const bool needed = before != wanted;
    if (needed && !invocation.DryRun()) {
        invocation.Require(
            wanted ? HXEnableSmartSANFC(device.Handle()) : HXDisableSmartSANFC(device.Handle()),
            "the SmartSAN switch cannot be written");
        invocation.Changed();
        invocation.AddPending(
            {"driver", "driver_restart", "SmartSAN changes at the next start of the driver"});
    }
    const bool after = IsEnabled(invocation, device);
    invocation.Result() = kSwitchFields.Make({after, before});
    if (!needed) {
        invocation.Note("nothing to do");
    } else if (invocation.DryRun()) {
        invocation.Note(std::string("dry run: SmartSAN would be switched ") +
                        (wanted ? "on" : "off"));
    } else if (after != wanted) {
        invocation.Fail(ExitCode::NotProven, "the switch was written, but does not read back");
    }
    return ExitCode::Done;
}

ExitCode SmartSanGet(Invocation& invocation) {
    const Device device = OpenAnyPort(invocation);
    invocation.Result() = kEnabledFields.Make(IsEnabled(invocation, device));
    return ExitCode::Done;
}

}  // namespace

CommandRows SmartsanCommands() {
    static const Command kCommands[] = {
        {.path = "smartsan get",
         .help = "is SmartSAN on?",
         .run = SmartSanGet,
         .example = "smartsan get",
         .result = ShapeOf<kEnabledFields>},
        {.path = "smartsan on",
         .risk = Risk::Reversible,
         .help = "switch SmartSAN on from the driver's next start",
         .schema = "smartsan.set",
         .run = SwitchSmartSan<true>,
         .example = "smartsan on -p scsi:3",
         .result = ShapeOf<kSwitchFields>},
        {.path = "smartsan off",
         .risk = Risk::Reversible,
         .help = "switch SmartSAN off from the driver's next start",
         .schema = "smartsan.set",
         .run = SwitchSmartSan<false>,
         .example = "smartsan off -p scsi:3",
         .result = ShapeOf<kSwitchFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
