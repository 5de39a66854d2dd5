// diag register read|write: single registers of the SerDes and of the retimer behind the cage.
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/port_session.h"
#include "vxmgr/commands.h"
#include "vxmgr/diag/register_space.h"

namespace vxmgr {
namespace {

constexpr Argument kRegisterSpaceArgument = {
    .name = "SPACE", .help = "serdes, serdes:LANE, retimer or retimer:DEVICE", .required = true};
constexpr Argument kRegisterReadArguments[] = {
    kRegisterSpaceArgument,
    {.name = "ADDRESS", .help = "of the register: 0x10 (or decimal)", .required = true},
};
constexpr Argument kRegisterWriteArguments[] = {
    kRegisterSpaceArgument,
    {.name = "REGISTER",
     .help = "ADDRESS=VALUE: the register and its new value: 0x10=0x320",
     .required = true},
};

struct RegisterResult {
    const Port* port;
    RegisterSpace space;
    uint32_t address;
    std::optional<uint32_t> value;
    std::optional<uint32_t> previous;

    std::string Space() const { return space.Text(); }
    std::string Address() const { return Hex(address, 2); }
    template <auto member>
    Value Contents() const {
        const std::optional<uint32_t>& contents = this->*member;
        return contents ? Value::Text(Hex(*contents, space.ValueDigits())) : Value();
    }
};

const Fields<RegisterResult> kRegisterFields = {
    {PortKeys(), &RegisterResult::port},
    {"space", "Registers of", kText, &RegisterResult::Space},
    {"address", "Address", kText, &RegisterResult::Address},
    {"value", "Value", kText.OrNull(), &RegisterResult::Contents<&RegisterResult::value>},
    {"previous", "Before", kText.OrNull().Quiet(),
     &RegisterResult::Contents<&RegisterResult::previous>, "before a write"},
};

HX_STATUS ReadRegister(uint32_t handle, const RegisterSpace& space, uint32_t address,
                       uint32_t* value) {
    const auto narrow = static_cast<uint16_t>(address);
    uint16_t word = 0;
    HX_STATUS status = HXMGT_SUCCESS;
    switch (space.kind) {
        case RegisterKind::SerDes:
            status = HXGetFCSerDesRegister(handle, narrow, &word);
            break;
        case RegisterKind::SerDesLane:
            return HXGetFCSerDesRegisterEx(handle, space.unit, address, value);
        case RegisterKind::Retimer:
            status = HXGetQuarnI2CRegister(handle, space.unit, narrow, &word);
            break;
    }
    *value = word;
    return status;
}

HX_STATUS WriteRegister(uint32_t handle, const RegisterSpace& space, uint32_t address,
                        uint32_t value) {
    const auto narrow = static_cast<uint16_t>(address);
    const auto word = static_cast<uint16_t>(value);
    switch (space.kind) {
        case RegisterKind::SerDes:
            break;
        case RegisterKind::SerDesLane:
            return HXSetFCSerDesRegisterEx(handle, space.unit, address, value);
        case RegisterKind::Retimer:
            return HXSetQuarnI2CRegister(handle, space.unit, narrow, word);
    }
    return HXSetFCSerDesRegister(handle, narrow, word);
}

struct GivenRegister {
    RegisterSpace space;
    RegisterChoice choice;
};

GivenRegister GivenOne(Invocation& invocation, const char* argument, bool withValue) {
    GivenRegister given;
    std::string error;
    if (!ParseRegisterSpace(invocation.Given().Text("SPACE"), &given.space, &error)) {
        invocation.Fail(ExitCode::Usage, "SPACE: " + error, "as in serdes:0 or retimer");
    }
    if (!ParseRegister(invocation.Given().Text(argument), given.space, withValue, &given.choice,
                       &error)) {
        invocation.Fail(ExitCode::Usage, std::string(argument) + ": " + error,
                        withValue ? "as in 0x10=0x320" : "as in 0x10");
    }
    return given;
}

std::string RegisterName(const GivenRegister& given) {
    return "register " + Hex(given.choice.address, 2) + " of " + given.space.Text();
}

// Ends the command; what: "cannot be read".
[[noreturn]] void RegisterFails(Invocation& invocation, const PortSession& session,
                                const GivenRegister& given, HX_STATUS status, const char* what) {
    const std::string object = session.port.Object();
    const std::string name = RegisterName(given);
    if (status == HXMGT_DEVICE_NOT_FOUND) {
        invocation.Fail(ExitCode::NotFound, object + ": " + name + " " + what + ": nobody answers",
                        "the retimer has the address 0x18");
    }
    invocation.Fail(
        status,
        name + " " + what + (status == HXMGT_INVALID_PARAMETER ? ": the firmware refuses it" : ""),
        object);
}

uint32_t MustRead(Invocation& invocation, const PortSession& session, const GivenRegister& given) {
    uint32_t value = 0;
    const HX_STATUS status =
        ReadRegister(session.Handle(), given.space, given.choice.address, &value);
    if (status != HXMGT_SUCCESS) {
        RegisterFails(invocation, session, given, status, "cannot be read");
    }
    return value;
}

ExitCode RegisterRead(Invocation& invocation) {
    const GivenRegister given = GivenOne(invocation, "ADDRESS", false);
    const PortSession session = OpenSelectedPort(invocation);
    const uint32_t value = MustRead(invocation, session, given);
    invocation.Result() =
        kRegisterFields.Make({&session.port, given.space, given.choice.address, value, {}});
    return ExitCode::Done;
}

ExitCode RegisterWrite(Invocation& invocation) {
    const GivenRegister given = GivenOne(invocation, "REGISTER", true);
    const uint32_t wanted = *given.choice.value;
    const PortSession session = OpenSelectedPort(invocation);
    GrowingResult<RegisterResult> result(
        invocation.Result(), kRegisterFields,
        {&session.port, given.space, given.choice.address, {}, {}});
    result.value = result.previous = MustRead(invocation, session, given);
    const std::string what = RegisterName(given);
    const std::string change = what + " from " + Hex(*result.previous, given.space.ValueDigits()) +
                               " to " + Hex(wanted, given.space.ValueDigits());
    if (invocation.DryRun()) {
        return invocation.DoneWith("dry run: " + change + " would be written");
    }
    invocation.Confirm(
        QuestionAbout(session, "Write " + change + ".",
                      "A wrong value breaks the link until the adapter is reset, or for good."));
    const HX_STATUS status =
        WriteRegister(session.Handle(), given.space, given.choice.address, wanted);
    if (status != HXMGT_SUCCESS) {
        RegisterFails(invocation, session, given, status, "cannot be written");
    }
    invocation.Changed();
    result.value = MustRead(invocation, session, given);
    if (*result.value != wanted) {
        invocation.Fail(ExitCode::NotProven, what + " was written, but reads back differently",
                        "some registers change by themselves, or keep only a part of their bits");
    }
    return ExitCode::Done;
}

}  // namespace

CommandRows RegisterCommands() {
    static const Command kCommands[] = {
        {.path = "diag register read",
         .help = "read a register of the SerDes or of the retimer",
         .schema = "diag.register",
         .arguments = kRegisterReadArguments,
         .run = RegisterRead,
         .example = "diag register read serdes:0 0x10 -p scsi:3",
         .result = ShapeOf<kRegisterFields>},
        {.path = "diag register write",
         .risk = Risk::Irrecoverable,
         .help = "write a register of the SerDes or of the retimer",
         .schema = "diag.register",
         .arguments = kRegisterWriteArguments,
         .run = RegisterWrite,
         .example = "diag register write serdes:0 0x10=0x320 -p scsi:3",
         .result = ShapeOf<kRegisterFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
