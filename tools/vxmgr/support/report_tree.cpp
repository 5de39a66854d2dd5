// From adapters to mount points.
#include "vxmgr/support/report_parts.h"

namespace vxmgr {
namespace {

// A level of the tree: where its nodes are, and what a node says.
struct TreeLevel {
    const char* list;
    const char* kind;
    std::string (*name)(const ReportJson& node);
    std::string (*about)(const ReportJson& node);
};

std::string Joined(std::initializer_list<std::string> texts) {
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() || text.empty() ? "" : " \u00B7 ") + text;
    }
    return joined;
}

std::string DeviceText(const ReportJson& lun) {
    const std::string disk = ShownAt(lun, "disk");
    return disk.empty() ? Joined({ShownAt(lun, "device_type"), ShownAt(lun, "device")})
                        : "disk " + disk;
}

constexpr TreeLevel kLevels[] = {
    {"adapters", "Adapter", [](const ReportJson& node) { return ShownAt(node, "adapter_serial"); },
     [](const ReportJson& node) { return ShownAt(node, "model"); }},
    {"ports", "", PortTitle,
     [](const ReportJson& node) {
         return Joined({ShownWwn(node, "port_wwn"), ShownAt(node, "speed_gbit", "Gbit/s")});
     }},
    {"targets", "Target", [](const ReportJson& node) { return ShownWwn(node, "target_wwn"); },
     [](const ReportJson& node) {
         return Joined({ShownAt(node, "symbolic_name"), ShownAt(node, "port_id")});
     }},
    {"luns", "LUN", [](const ReportJson& node) { return ShownAt(node, "lun"); }, DeviceText},
    {"volumes", "Volume",
     [](const ReportJson& node) {
         const std::string mounted = ShownAt(node, "mount_points");
         return mounted.empty() ? ShownAt(node, "volume") : mounted;
     },
     [](const ReportJson& node) {
         return ShownAt(node, "mount_points").empty() ? "" : ShownAt(node, "volume");
     }},
};

void AddState(Html& html, const ReportJson& node) {
    const ReportJson& answers = ValueAt(node, "answers");
    const ReportJson& present = ValueAt(node, "present");
    const std::string state = ShownAt(node, "state");
    if (answers.is_boolean() && !answers.get<bool>()) {
        AddBadge(html, Wellness::Critical, "Not answering");
    } else if (!state.empty()) {
        AddBadge(html, WellnessOf(state), LabelOf(state));
    } else if (present.is_boolean()) {
        AddBadge(html, present.get<bool>() ? Wellness::Good : Wellness::Warning,
                 present.get<bool>() ? "Reached" : "Away");
    }
}

void AddLine(Html& html, const TreeLevel& level, const ReportJson& node) {
    html.Add("span", {{"class", "kind"}}, level.kind);
    html.Text(" ");
    html.Add("strong", level.name(node));
    html.Text(" ");
    html.Add("span", {{"class", "muted"}}, level.about(node));
    html.Text(" ");
    AddState(html, node);
}

void AddNodes(Html& html, const TreeLevel* level, const ReportJson& parent, bool open) {
    const ReportJson& nodes = ValueAt(parent, level->list);
    if (!nodes.is_array() || nodes.empty()) {
        return;
    }
    const auto list = html.In("ul", {{"class", level == kLevels ? "tree" : ""}});
    for (const ReportJson& node : nodes) {
        const auto item = html.In("li");
        const TreeLevel* const next = level + 1;
        const ReportJson* const below =
            next == std::end(kLevels) ? nullptr : &ValueAt(node, next->list);
        if (below == nullptr || !below->is_array() || below->empty()) {
            AddLine(html, *level, node);
            continue;
        }
        // A few adapters are shown down to their targets.
        const bool shown = open && next - kLevels < 3;
        const auto details = shown ? html.In("details", {{"open", ""}}) : html.In("details");
        {
            const auto summary = html.In("summary");
            AddLine(html, *level, node);
        }
        AddNodes(html, next, node, open);
    }
}

}  // namespace

void AddTree(Html& html, const ReportDocuments& documents) {
    const ReportJson& result = documents.Result("tree");
    const ReportJson& adapters = documents.List("tree", kLevels[0].list);
    if (adapters.empty()) {
        return;
    }
    constexpr size_t kFew = 8;
    AddSection(html, "tree", "What hangs on what",
               [&] { AddNodes(html, kLevels, result, adapters.size() <= kFew); });
}

}  // namespace vxmgr
