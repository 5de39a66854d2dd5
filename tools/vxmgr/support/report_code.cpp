// Firmware, settings, drivers, dumps, and what the report was made from.
#include "vxmgr/support/report_parts.h"

namespace vxmgr {
namespace {

void AddFirmware(Html& html, const ReportJson& code) {
    if (code.empty()) {
        return;
    }
    ReportTable table{"Firmware and boot code",
                      {"Region", "Adapter", "Running", "Stored", "State", "Problem"}};
    for (const ReportJson& row : code) {
        const std::string state = ShownAt(row, "state");
        table.rows.push_back({{ShownAt(row, "name")},
                              {ShownAt(row, "serial")},
                              {ShownAt(row, "running")},
                              {ShownAt(row, "stored")},
                              {state, WellnessOf(state)},
                              {ShownAt(row, "problem")}});
    }
    AddTable(html, table);
}

ReportCell Checked(const ReportJson& row, const char* key) {
    const ReportJson& value = ValueAt(row, key);
    if (!value.is_boolean()) {
        return {};
    }
    return {value.get<bool>() ? "good" : "damaged",
            value.get<bool>() ? Wellness::Good : Wellness::Critical};
}

void AddSettings(Html& html, const ReportJson& ports) {
    if (ports.empty()) {
        return;
    }
    ReportTable table{"Settings (NVRAM)",
                      {"Port", "Kind", "Signature", "Checksum", "Other bank", "Status"}};
    for (const ReportJson& row : ports) {
        table.rows.push_back({{PortTitle(row)},
                              {ShownAt(row, "kind")},
                              Checked(row, "signature_good"),
                              Checked(row, "checksum_good"),
                              Checked(row, "other_bank_good"),
                              {ShownAt(row, "status")}});
    }
    AddTable(html, table);
}

void AddDrivers(Html& html, const ReportJson& drivers) {
    if (drivers.empty()) {
        return;
    }
    ReportTable table{"Drivers", {"Service", "Version", "SCSI ports", "Interrupts", "Queue depth"}};
    for (const ReportJson& row : drivers) {
        table.rows.push_back({{ShownAt(row, "service")},
                              {ShownAt(row, "version")},
                              {ShownAt(row, "scsi_ports")},
                              {ShownAt(row, "interrupt_mode")},
                              {ShownAt(row, "max_queue_depth"), Wellness::Plain, true}});
    }
    AddTable(html, table);
}

void AddUpdates(Html& html, const ReportJson& updates) {
    if (updates.empty()) {
        return;
    }
    ReportTable table{"Updates of this machine",
                      {"Started", "Adapter", "Kind", "Versions", "Phase", "Outcome"}};
    for (const ReportJson& row : updates) {
        const std::string phase = ShownAt(row, "phase");
        table.rows.push_back({{ShownAt(row, "started")},
                              {ShownAt(row, "adapter_serial")},
                              {ShownAt(row, "kind")},
                              {ShownAt(row, "versions")},
                              {phase, WellnessOf(phase)},
                              {ShownAt(row, "outcome")}});
    }
    AddTable(html, table);
}

void AddDumps(Html& html, const ReportJson& dumps) {
    ReportTable table{"Firmware dumps that wait", {"Kind", "Port", "State", "Bytes"}};
    for (const ReportJson& row : dumps) {
        const std::string state = ShownAt(row, "state");
        if (state == "present" || state == "failed") {
            table.rows.push_back({{ShownAt(row, "what")},
                                  {PortTitle(row)},
                                  {state, Wellness::Warning},
                                  {ShownAt(row, "size"), Wellness::Plain, true}});
        }
    }
    if (!table.rows.empty()) {
        AddTable(html, table);
    }
}

}  // namespace

void AddCode(Html& html, const ReportDocuments& documents) {
    const ReportJson& code = documents.List("fw show", "code");
    const ReportJson& settings = documents.List("nvram verify", "ports");
    const ReportJson& drivers = documents.List("driver show", "drivers");
    if (code.empty() && settings.empty() && drivers.empty()) {
        return;
    }
    AddSection(html, "code", "Firmware and settings", [&] {
        AddFirmware(html, code);
        AddSettings(html, settings);
        AddDrivers(html, drivers);
        AddDumps(html, documents.List("dump list", "dumps"));
        AddUpdates(html, documents.List("fw history", "updates"));
    });
}

void AddSources(Html& html, const ReportDocuments& documents) {
    AddSection(html, "sources", "What this page was made from", [&] {
        ReportTable table{"Commands and how they ended", {"Command", "Exit", "What they said"}};
        for (const ReportDocuments::Entry& entry : documents.All()) {
            std::string said;
            for (const ReportJson& message : ValueAt(entry.envelope, "messages")) {
                const std::string object = ShownAt(message, "object");
                said += (said.empty() ? "" : "; ") + (object.empty() ? "" : object + ": ") +
                        ShownAt(message, "text");
            }
            const std::string exit = ShownAt(entry.envelope, "exit");
            table.rows.push_back(
                {{entry.command == "samples" ? "port stats (samples)" : entry.command},
                 {exit, exit == "0" ? Wellness::Good : Wellness::Warning},
                 {said}});
        }
        AddTable(html, table);
    });
}

}  // namespace vxmgr
