#include "vxmgr/settings/nvram_change.h"

#include "vxmgr/app/files.h"
#include "vxmgr/settings/nvram_activate.h"
#include "vxmgr/settings/nvram_document.h"
#include "vxmgr/settings/nvram_records.h"
#include "vxmgr/update/update_checks.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::Record;
using tools::Value;

constexpr size_t kRowsInQuestion = 12;
constexpr DifferenceHeadings kHeadings = {"before", "after", "Before", "After"};

tools::Question QuestionOf(const PortSession& session, const PortNvram& before,
                           const NvramDifference& difference, const UpdateOutlook& outlook,
                           const std::string& action, bool activate) {
    tools::Question question = QuestionAbout(
        session, action,
        WhereItGoes(before.bank) +
            (activate ? " The port restarts at once: I/O through it stops for a while."
                      : " Nothing stops now.") +
            " Wrong settings can keep the port from working.");
    for (size_t i = 0; i < difference.changes.size() && i < kRowsInQuestion; ++i) {
        const NvramChange& change = difference.changes[i];
        question.lines.push_back("  " + change.variable->name + ": " +
                                 ShownValue(*change.variable, change.before) + " -> " +
                                 ShownValue(*change.variable, change.after));
    }
    if (difference.changes.size() > kRowsInQuestion) {
        question.lines.push_back("  and " +
                                 std::to_string(difference.changes.size() - kRowsInQuestion) +
                                 " more: see them with --dry-run");
    }
    if (difference.otherBytes != 0) {
        question.lines.push_back("  and " + std::to_string(difference.otherBytes) +
                                 " bytes that belong to no variable");
    }
    question.lines.insert(question.lines.end(), outlook.warnings.begin(), outlook.warnings.end());
    return question;
}

// A change that waits in the other bank would be lost without a word. Whether it waits, or is what
// was in use before, cannot be told.
void WarnOfOtherBank(tools::Invocation& invocation, const PortNvram& nvram,
                     const std::vector<uint8_t>& other) {
    if (!nvram.bank || nvram.fromOther || !IsSound(nvram.map.kind, other)) {
        return;
    }
    const NvramDifference difference = DifferenceOf(nvram.map, nvram.block, other);
    if (!difference.Equal()) {
        invocation.Warn("the " + std::string(nvram.bank->Name()) + " bank holds other settings (" +
                            std::to_string(difference.changes.size()) +
                            " variables differ): they are replaced, also if they wait for a reset",
                        "--bank other starts from them instead");
    }
}

bool Write(tools::Invocation& invocation, const PortSession& session, const PortNvram& before,
           const std::vector<uint8_t>& replaced, std::vector<uint8_t>& block) {
    const auto readInUse = [&](std::vector<uint8_t>* bytes) {
        return ReadBlock(session, before.map.kind, bytes);
    };
    const auto readOther = [&](std::vector<uint8_t>* bytes) {
        return ReadBank(session, *before.bank, bytes);
    };
    SettingsWrite write{"the NVRAM",
                        before.bank,
                        block,
                        before.block,
                        before.fromOther ? ReadBytes(readOther) : ReadBytes(readInUse),
                        before.bank ? ReadBytes(readOther) : ReadBytes(readInUse),
                        replaced,
                        [&](std::vector<uint8_t>& image) {
                            return HXUpdateNVRam(session.Handle(), 0, HX_NVRAM_BLOCK, image.data(),
                                                 static_cast<uint32_t>(image.size()));
                        }};
    const bool interrupted = WriteSettings(invocation, session, write);
    block = write.image;
    return interrupted;
}

void SaveBackup(tools::Invocation& invocation, const PortSession& session, const PortNvram& nvram) {
    const std::string path = invocation.Given().Text("backup");
    if (!path.empty()) {
        const std::string text = DocumentOf(session, nvram);
        SaveFile(invocation, path, {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
        invocation.Note("the block as it is was saved to " + path);
    }
}

}  // namespace

std::string DocumentOf(const PortSession& session, const PortNvram& nvram) {
    const Port& port = session.port;
    NvramOrigin origin;
    if (port.port) {
        origin.port.portName = tools::Wwn::Of(port.port->portName);
    }
    if (port.node) {
        origin.port.nodeName = tools::Wwn::Of(port.node->nodeName);
    }
    origin.port.serial = port.Serial();
    origin.chip = port.chip ? port.chip->deviceId : uint16_t{0};
    return NvramDocumentText(origin, nvram.map, nvram.block);
}

ExitCode ChangeNvram(tools::Invocation& invocation, const PortSession& session,
                     const PortNvram& before, std::vector<uint8_t> block,
                     const std::string& action) {
    const UpdateOutlook outlook = LookBeforeUpdate(invocation, session);
    const bool activate = invocation.Given().Has("activate");
    const NvramDifference difference = DifferenceOf(before.map, before.block, block);
    // A checksum that is made good is a change as well.
    const bool needed = block != before.block;
    std::vector<uint8_t> replaced;
    if (needed && before.bank && ReadBank(session, *before.bank, &replaced) != HXMGT_SUCCESS) {
        replaced.clear();
    }
    if (needed) {
        WarnOfOtherBank(invocation, before, replaced);
    }
    if (needed && !invocation.DryRun()) {
        invocation.Confirm(QuestionOf(session, before, difference, outlook, action, activate));
        SaveBackup(invocation, session, before);
        invocation.CheckStop();
    }
    bool stored = false;
    bool active = false;
    ExitCode exit = ExitCode::Done;
    if (needed && !invocation.DryRun()) {
        if (Write(invocation, session, before, replaced, block)) {
            exit = ExitCode::Cancelled;
        }
        stored = true;
        if (activate && exit == ExitCode::Done) {
            exit = ActivateNvram(invocation, session, before.map.kind, block);
            active = exit == ExitCode::Done;
        }
    }
    Record& result = invocation.Result();
    result.Add("port", "Port", Value::Number(session.port.index));
    result.Add("bank", "Goes to bank", before.bank ? Value::Text(before.bank->Name()) : Value());
    AddDifference(invocation, difference, kHeadings, "no variable changes");
    result.Add("stored", "Stored", Value::Flag(stored));
    result.Add("active", "In use", Value::Flag(active));
    if (!needed) {
        invocation.Note("nothing to do");
    } else if (invocation.DryRun()) {
        invocation.Note("dry run: nothing was written");
    } else if (!active) {
        invocation.AddPending({session.port.Object(), "port_reset",
                               "stored and read back, pending: the firmware uses it from the "
                               "port's next reset on, or from `nvram activate` on"});
    }
    return exit;
}

}  // namespace vxmgr
