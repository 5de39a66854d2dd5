// adapter add, remove.
#include <algorithm>
#include <cstring>

#include "assignments.h"
#include "commands.h"
#include "field_text.h"
#include "model/bytes/bytes.h"
#include "port_rows.h"
#include "properties/chip_families.h"
#include "records/text.h"
#include "running_driver.h"

namespace vxemu {
namespace {

using tools::ExitCode;
using tools::Invocation;
using tools::kInteger;
using tools::Record;

// An adapter and its ports, as a profile has them.
struct Card {
    uint32_t index;
    AdapterProfile adapter;
    std::vector<PortProfile> ports;
};

const tools::Fields<PortProfile>& CardPortFields() {
    static const tools::Fields<PortProfile> kFields = {
        {"port", "Port", "PORT", tools::kText,
         [](const PortProfile& port) { return PortName(port.scsiPort); }},
        {"port_name", "Port name", "PORT NAME", tools::kWwn,
         [](const PortProfile& port) { return tools::Wwn::Of(port.portName); }},
    };
    return kFields;
}

const tools::Fields<Card>& CardFields() {
    static const tools::Fields<Card> kFields = {
        {"adapter", "Adapter", kInteger, &Card::index, "its place among the adapters, from 0 on"},
        {"serial", "Serial number", tools::kSerial,
         [](const Card& card) { return std::string(card.adapter.serial); }},
        {"device_id", "Device ID", tools::kText,
         [](const Card& card) { return tools::Hex(card.adapter.deviceId, 4); }},
        {"ports", "Ports", CardPortFields(), &Card::ports},
    };
    return kFields;
}

Card CardOf(const Profile& profile, uint32_t index) {
    Card card = {index, profile.adapters[index], {}};
    for (uint32_t at = 0; at < profile.portCount; ++at) {
        if (profile.ports[at].adapter == index) {
            card.ports.push_back(profile.ports[at]);
        }
    }
    return card;
}

uint16_t RequireChip(Invocation& invocation) {
    const std::string text = invocation.Given().Text("CHIP");
    const auto number = tools::ParseNumber(text.starts_with("0x") ? text : "0x" + text);
    std::string known;
    for (const properties::Chip& chip : properties::kChips) {
        if (number == chip.deviceId) {
            return chip.deviceId;
        }
        known += (known.empty() ? "" : ", ") + tools::Hex(chip.deviceId, 4);
    }
    invocation.Fail(ExitCode::Usage, "\"" + text + "\" is not a chip of the family",
                    "chips are " + known);
}

// Free SCSI port numbers: from the one that is asked for on, or behind those that are taken.
std::vector<uint8_t> RequireScsiPorts(Invocation& invocation, const Profile& profile,
                                      size_t count) {
    const auto isFree = [&profile](uint32_t number) {
        return std::none_of(profile.ports, profile.ports + profile.portCount,
                            [&](const PortProfile& port) { return port.scsiPort == number; });
    };
    uint32_t first = 0;
    for (uint32_t at = 0; at < profile.portCount; ++at) {
        first = std::max(first, profile.ports[at].scsiPort + 1u);
    }
    const auto asked = invocation.Given().Number("scsi-port");
    std::vector<uint8_t> numbers;
    for (uint32_t step = 0; step <= kMaxScsiPort && numbers.size() < count; ++step) {
        const uint32_t number =
            (static_cast<uint32_t>(asked.value_or(first)) + step) % (kMaxScsiPort + 1);
        if (isFree(number)) {
            numbers.push_back(static_cast<uint8_t>(number));
        } else if (asked && step == 0) {
            invocation.Fail(ExitCode::Refused, PortName(number) + " is taken",
                            "`vxemu status` shows which are");
        }
    }
    if (numbers.size() < count) {
        invocation.Fail(ExitCode::Refused, "not enough SCSI port numbers are free",
                        "remove an adapter first");
    }
    return numbers;
}

// The adapter that the command line asks for, with the first number whose names, and serial number
// unless it is given, the profile does not have. The profile gets it.
ProfileError Compose(Invocation& invocation, uint16_t chip,
                     const std::vector<Assignment>& assignments, Profile& profile,
                     AdapterRecord& record) {
    const tools::Options& given = invocation.Given();
    record.portCount = static_cast<uint32_t>(given.Number("ports").value_or(1));
    const std::vector<uint8_t> numbers = RequireScsiPorts(invocation, profile, record.portCount);
    ProfileError error = ProfileError::None;
    for (uint32_t number = 1; number <= 2 * kMaxAdapters; ++number) {
        FillAdapter(chip, number, record.adapter, {record.ports, record.portCount});
        for (uint32_t at = 0; at < record.portCount; ++at) {
            record.ports[at].scsiPort = numbers[at];
        }
        if (given.Has("serial")) {
            CopyText(record.adapter.serial, given.Text("serial").c_str());
        }
        for (const Assignment& assignment : assignments) {
            std::memcpy(reinterpret_cast<uint8_t*>(&record.adapter) + assignment.field->offset,
                        assignment.change.value, assignment.field->size);
        }
        error = AppendAdapter(profile, record);
        const bool taken = error == ProfileError::DuplicatePortName ||
                           (error == ProfileError::DuplicateSerial && !given.Has("serial"));
        if (!taken) {
            break;
        }
    }
    return error;
}

void RequireSerial(Invocation& invocation) {
    const Field* field = FindField(FieldScope::Adapter, "serial", sizeof "serial");
    AdapterProfile unused;
    std::string wanted;
    if (invocation.Given().Has("serial") &&
        !ParseField(*field, invocation.Given().Text("serial"),
                    reinterpret_cast<uint8_t*>(unused.serial), &wanted)) {
        invocation.Fail(ExitCode::Usage, "--serial must be " + wanted);
    }
}

ExitCode RunAdapterAdd(Invocation& invocation) {
    const uint16_t chip = RequireChip(invocation);
    RequireSerial(invocation);
    const std::vector<Assignment> assignments = RequireAssignments(invocation, FieldScope::Adapter);
    RunningDriver driver(invocation, true);
    const auto profile = driver.RunningProfile();
    AdapterRecord record = {};
    const ProfileError error = Compose(invocation, chip, assignments, *profile, record);
    if (error != ProfileError::None) {
        invocation.Fail(ExitCode::Refused,
                        std::string(record.adapter.serial) + ": " + ProfileErrorText(error));
    }
    if (!invocation.DryRun()) {
        driver.SendChange(control::kAdapterAdd, record, record.adapter.serial);
        invocation.Changed();
    }
    Record result = CardFields().Make(CardOf(*profile, profile->adapterCount - 1));
    for (const Assignment& assignment : assignments) {
        AddAssignment(assignment, result);
    }
    invocation.Result() = std::move(result);
    return ExitCode::Done;
}

// The adapter with that serial number, or with that port.
Card RequireCard(Invocation& invocation, const Profile& profile) {
    const std::string text = invocation.Given().Text("ADAPTER");
    for (uint32_t index = 0; index < profile.adapterCount; ++index) {
        if (text == profile.adapters[index].serial) {
            return CardOf(profile, index);
        }
    }
    if (text.starts_with(kEmulatedSerialPrefix)) {
        invocation.Fail(ExitCode::NotFound, text + ": not there",
                        "`vxemu status` shows the serial numbers");
    }
    const uint32_t number = RequirePort(invocation, text);
    for (uint32_t at = 0; at < profile.portCount; ++at) {
        if (profile.ports[at].scsiPort == number) {
            return CardOf(profile, profile.ports[at].adapter);
        }
    }
    invocation.Fail(ExitCode::NotFound, PortName(number) + ": not there",
                    "`vxemu status` shows the ports");
}

ExitCode RunAdapterRemove(Invocation& invocation) {
    RunningDriver driver(invocation, true);
    const Card card = RequireCard(invocation, *driver.RunningProfile());
    if (!invocation.DryRun()) {
        driver.SendChange(control::kAdapterRemove, PortSelector{card.ports.front().scsiPort},
                          card.adapter.serial);
        invocation.Changed();
    }
    invocation.Result() = CardFields().Make(card);
    return ExitCode::Done;
}

tools::Shape CardShape() {
    return CardFields().ShapeOfAll();
}

tools::Shape AddedCardShape() {
    return WithAssignments(CardShape(), FieldScope::Adapter);
}

constexpr tools::Argument kAdapterAdd[] = {
    {.name = "CHIP", .help = "device ID of the chip: 0x7740", .required = true},
    {.name = "ASSIGNMENT", .help = "NAME=VALUE, as in a profile file", .repeated = true},
    {.name = "--ports",
     .kind = tools::ArgumentKind::Number,
     .valueName = "N",
     .help = "how many ports it has (1)",
     .least = 1,
     .most = kMaxAdapterPorts},
    {.name = "--scsi-port",
     .kind = tools::ArgumentKind::Number,
     .valueName = "N",
     .help = "SCSI port number of its first port; without: behind those that there are",
     .most = kMaxScsiPort},
    {.name = "--serial",
     .valueName = "TEXT",
     .help = "serial number, which begins with EMU; without: one that is free",
     .naming = tools::Naming::Serial},
};
constexpr tools::Argument kAdapterRemove[] = {
    {.name = "ADAPTER",
     .help = "serial number, or a port of it: scsi:N",
     .required = true,
     .naming = tools::Naming::Selection},
};

}  // namespace

tools::CommandRows AdapterCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "adapter add",
            .risk = tools::Risk::Reversible,
            .help = "plug in an adapter",
            .schema = "adapter.add",
            .arguments = kAdapterAdd,
            .run = RunAdapterAdd,
            .example = "adapter add 0x7742 --ports 2 firmware_version=9.10.00",
            .result = AddedCardShape,
        },
        {
            .path = "adapter remove",
            .risk = tools::Risk::Reversible,
            .help = "pull an adapter out, with all of its ports",
            .schema = "adapter.remove",
            .arguments = kAdapterRemove,
            .run = RunAdapterRemove,
            .example = "adapter remove EMU7404A0002",
            .result = CardShape,
        },
    };
    return kCommands;
}

}  // namespace vxemu
